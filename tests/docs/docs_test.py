"""The programs in the documents: each is compiled without a warning, run, and prints what is said.

usage: docs_test.py ROOT LIBRARY EMULATOR COMPILER [FLAGS]

A block marked c that has no main() is the inside of one. A block marked output tells what the program
before it prints. The manual page has a program too, and names functions.
"""

import glob
import os
import re
import shlex
import subprocess
import sys
import tempfile
import unittest

ROOT, LIBRARY, EMULATOR = sys.argv[1:4]
COMPILE = [*sys.argv[4:], "-std=c99", "-pedantic", "-Wall", "-Wextra", "-Werror"]
BLOCK = re.compile(r"^```(\w+)\n(.*?)^```$", flags=re.M | re.S)
MANUAL = f"{ROOT}/docs/man/libtavu.3"


def read(path):
    with open(path, encoding="utf-8") as file:
        return file.read()


def pages():
    return sorted(glob.glob(f"{ROOT}/*.md") + glob.glob(f"{ROOT}/docs/*.md"))


def programs():
    """(page and number, source, expected output or None) of every program."""
    for page in pages():
        blocks = BLOCK.findall(read(page))
        for i, (language, text) in enumerate(blocks):
            if language == "c":
                after = blocks[i + 1] if i + 1 < len(blocks) else ("", None)
                yield f"{os.path.basename(page)}, block {i + 1}", text, \
                    after[1] if after[0] == "output" else None
    for text in re.findall(r"^\.Bd -literal.*?\n(.*?)^\.Ed", read(MANUAL), flags=re.M | re.S):
        yield "libtavu.3", text, None


def complete(source):
    if re.search(r"\bint main\b", source):
        return source
    includes = "".join(re.findall(r"^#include.*\n", source, flags=re.M))
    return f"{includes}int main(void) {{\n{re.sub('^#include.*', '', source, flags=re.M)}return 0;\n}}\n"


def run(command):
    return subprocess.run(command, capture_output=True, text=True)


class Documents(unittest.TestCase):
    def test_programs(self):
        count = 0
        with tempfile.TemporaryDirectory() as folder:
            for name, source, expected in programs():
                count += 1
                with self.subTest(name):
                    self.check(folder, complete(source), expected)
        self.assertGreaterEqual(count, 10)

    def test_functions_of_the_manual_page_exist(self):
        named = re.findall(r"^\.Fn (\w+)", read(MANUAL), flags=re.M)
        self.assertGreater(len(named), 20)
        header = set(re.findall(r"\w+", read(f"{ROOT}/include/tavu.h")))
        self.assertEqual([name for name in named if name not in header], [])

    def check(self, folder, source, expected):
        path, program = f"{folder}/program.c", f"{folder}/program"
        with open(path, "w", encoding="utf-8") as file:
            file.write(source)
        built = run([*COMPILE, f"-I{ROOT}/include", path, LIBRARY,
                     f"-Wl,-rpath,{os.path.dirname(LIBRARY)}", "-o", program])
        self.assertEqual((built.returncode, built.stderr), (0, ""))
        result = run([*shlex.split(EMULATOR.replace(";", " ")), program])
        self.assertEqual((result.returncode, result.stderr), (0, ""))
        if expected is not None:
            self.assertEqual(result.stdout, expected)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
