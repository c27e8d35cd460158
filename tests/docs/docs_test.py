"""Checks the documents by the source tree: their programs compile without warnings, run, and print
the given output; the files, functions, macros and presets in them exist; their numbers are right.
"""

import fnmatch
import glob
import itertools
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
# Declarations that the code in the header assumes.
GIVEN = """
extern tavu_irsz_t *rsz;
extern int32_t src_h, band_h;
const void *band_at(int32_t row);
"""
SUFFIX = re.compile(r"\.(cpp|h|c|def|py|md|cmake|txt|json|map|in|dot|svg|css|sed)$")
PACKS = glob.glob(f"{ROOT}/samples/fuzz/*.pack")
NUMBERS = ("one two three four five six seven eight nine ten").split()


def read(path):
    with open(path, encoding="utf-8") as file:
        return file.read()


def text_of(*patterns):
    """The text of all matching files."""
    found = [path for pattern in patterns for path in glob.glob(f"{ROOT}/{pattern}", recursive=True)]
    return "\n".join(map(read, sorted(found)))


def tree():
    """Paths of all files and folders, without build output."""
    for folder, folders, files in os.walk(ROOT):
        folders[:] = [name for name in folders if name not in ("build", ".git", "__pycache__")]
        yield from (os.path.relpath(f"{folder}/{name}", ROOT) for name in folders + files)


# (path, text) of every page and manual page.
DOCUMENTS = [(path, read(f"{ROOT}/{path}")) for path in tree()
             if path.endswith(".md") or path.startswith("docs/man/")]


def found(pattern):
    """(path, match) of every match in a document."""
    return [(path, match) for path, text in DOCUMENTS for match in re.findall(pattern, text, re.M)]


def named_files(text):
    """Words in backquotes that are paths: with a source suffix or in a folder of the tree."""
    folders = "|".join({path.split("/")[-1] for path in tree() if os.path.isdir(f"{ROOT}/{path}")})
    for word in re.findall(r"[^\s`]+", " ".join(re.findall(r"`([^`\n]+)`", text))):
        if word.startswith(("/", "~", "build/")):  # on the reader's machine
            continue
        if SUFFIX.search(word) or re.match(rf"\./|({folders})/", word):
            yield word.removeprefix("./").rstrip("/.,;")
    yield from re.findall(r"(?<![\w/])(?:docs|scripts)/[\w./-]*\w", text)


def exported_names():
    symbols = subprocess.check_output(["nm", "-D", "--defined-only", LIBRARY], text=True)
    return set(re.findall(r" [^A] (\w+)@@", symbols))


def anchors(path):
    headings = re.findall(r"^#+ (.*)$", read(path), flags=re.M)
    return {re.sub(r"[^\w -]", "", heading.lower()).replace(" ", "-") for heading in headings}


def kept_inputs():
    for path in PACKS:
        with open(path, "rb") as file:
            while size := file.read(2):
                yield path, file.seek(int.from_bytes(size, "little"), os.SEEK_CUR)


def count_cells():
    lines = subprocess.run([sys.executable, f"{ROOT}/scripts/matrix", "?"], capture_output=True,
                           text=True).stderr.splitlines()
    return len(lines[-1].split("there are ")[1].split())


def count_thread_programs():
    replays = re.search(r"foreach\(target ([^)]*)\)\s+\w+\(thr", text_of("fuzz/CMakeLists.txt"))
    return len(replays.group(1).split()) + len(glob.glob(f"{ROOT}/tests/threads/*_test.cpp"))


COUNTS = {
    r"(\d[\d,]*) exported names": lambda: len(exported_names()),
    r"(\d[\d,]*) targets under AddressSanitizer": lambda: len(PACKS),
    r"(\d[\d,]*) kept inputs": lambda: len(list(kept_inputs())),
    r"(\d[\d,]*) cells from": count_cells,
    r"(\d[\d,]*) programs under ThreadSanitizer": count_thread_programs,
    r"(\w+) programs in `examples/`": lambda: len(glob.glob(f"{ROOT}/examples/*.c")),
    r"x86-64 at (\w+) levels": lambda: len(set(
        re.findall(r"^ *tavu_level_objects\(\w+ (\d)", text_of("cmake/library.cmake"), flags=re.M))),
    r"(\w+) pixel formats": lambda: len(re.findall(
        r"^ *TAVU_IRSZ_\dB\w* = ", text_of("include/tavu.h"), flags=re.M)),
}


# A block marked output is the output of the program before it. The manual page also has a program.
def programs():
    """(page and number, source, expected output or None) of every program."""
    for page, text in DOCUMENTS:
        blocks = itertools.pairwise([*BLOCK.findall(text), ("", None)])
        for i, ((language, source), (after, output)) in enumerate(blocks, 1):
            if language == "c":
                yield f"{page}, block {i}", source, output if after == "output" else None
    manual = text_of("docs/man/libtavu.3")
    for source in re.findall(r"^\.Bd -literal.*?\n(.*?)^\.Ed", manual, flags=re.M | re.S):
        yield "libtavu.3", source, None


# A block marked c without a main() is the body of one.
def complete(source):
    if re.search(r"\bint main\b", source):
        return source
    includes = "".join(re.findall(r"^#include.*\n", source, flags=re.M))
    return f"{includes}int main(void) {{\n{re.sub('^#include.*', '', source, flags=re.M)}return 0;\n}}\n"


class Documents(unittest.TestCase):
    def run_well(self, *command, **options):
        result = subprocess.run(command, capture_output=True, text=True, **options)
        self.assertEqual((result.returncode, result.stderr), (0, ""), options)
        return result.stdout

    def test_programs(self):
        self.assertGreaterEqual(len(list(programs())), 10)
        program = self.enterContext(tempfile.TemporaryDirectory()) + "/program"
        rpath = f"-Wl,-rpath,{os.path.dirname(LIBRARY)}"
        for name, source, expected in programs():
            with self.subTest(name):
                self.run_well(*COMPILE, f"-I{ROOT}/include", "-xc", "-", "-xnone", LIBRARY, rpath,
                              "-o", program, input=complete(source))
                output = self.run_well(*shlex.split(EMULATOR.replace(";", " ")), program)
                if expected is not None:
                    self.assertEqual(output, expected)

    # It is only compiled, as the body of a function unless it begins with a declaration.
    def test_code_in_the_header(self):
        for code in re.findall(r"@code.*?\n(.*?)@endcode", text_of("include/tavu.h"), flags=re.S):
            code = re.sub(r"^ *\* ?", "", code, flags=re.M)
            if not re.match(r"static|struct|typedef|int main", code):
                code = f"void f(void);\nvoid f(void) {{\n{code}}}\n"
            self.run_well(*COMPILE, "-Wno-unused-function", f"-I{ROOT}/include", "-fsyntax-only",
                          "-xc", "-", input=f"#include <tavu.h>\n{GIVEN}{code}")

    def assert_all(self, good, pairs):
        """Asserts good(page, name) for all (page, name) pairs."""
        pairs = set(pairs)
        self.assertTrue(pairs)
        self.assertEqual(sorted(pair for pair in pairs if not good(*pair)), [])

    def test_files_exist(self):
        paths = list(tree())

        def exists(_, name):
            pattern = re.sub(r"(?<![A-Za-z])X(?![A-Za-z])", "*", name)  # a placeholder
            return fnmatch.filter(paths, pattern) or fnmatch.filter(paths, f"*/{pattern}")
        self.assert_all(exists, ((page, name) for page, text in
                                 [*DOCUMENTS, ("tavu.h", text_of("include/tavu.h"))]
                                 for name in named_files(text)))

    def test_link_targets_exist(self):
        def target_exists(page, link):
            target, _, anchor = link.partition("#")
            path = os.path.join(ROOT, os.path.dirname(page), target) if target else f"{ROOT}/{page}"
            return os.path.exists(path) and (not anchor or anchor in anchors(path))
        self.assert_all(target_exists, found(r"\]\((?!\w+://)([^)\s]+)\)"))

    def test_names_exist(self):
        functions = exported_names()
        cmake = text_of("CMakeLists.txt", "*/CMakeLists.txt", "cmake/*.cmake")
        known = set(re.findall(r"\w+", text_of("include/tavu.h") + cmake))
        known |= set(re.findall(r"\bTAVU_\w+", text_of("src/**/*.h")))
        known |= {name for _, name in found(r"^TAVU_API .*\b(tavu_\w+);")}  # added by an example
        self.assert_all(lambda _, name: "".join(name) in functions,
                        found(r"\b((?:tavu|bilinear)_\w+)\(\)|^\.Fn (\w+)"))
        self.assert_all(lambda _, name: name in known or name.endswith("_") and any(
            other.startswith(name) for other in known), found(r"\b(?:tavu|TAVU|bilinear)_\w+"))

    def test_commands_exist(self):
        for pattern, known in {
                r"--preset[ =]([\w-]+)":
                    re.findall(r'"name": "([\w-]+)"', text_of("CMakePresets.json")) + ["X"],
                r"\bscripts/[\w-]+ [^`\n|#]*?(--[a-z-]+)":
                    re.findall(r"--[a-z-]+", text_of("scripts/*")) + ["--csv", "--markdown"],
                r"(?:ctest\b.* -R |--gtest_filter=)['^*]*(?:tools_)?(\w+)":
                    text_of("tests/**/*.cpp", "tests/**/CMakeLists.txt", "fuzz/CMakeLists.txt"),
        }.items():
            self.assert_all(lambda _, name, known=known: name in known, found(pattern))

    def test_numbers(self):
        for pattern, count in COUNTS.items():
            stated = [number.lower().replace(",", "") for _, number in found(pattern)]
            number = count()
            spelt = {str(number), *NUMBERS[number - 1:number]}
            self.assertTrue(stated and set(stated) <= spelt, f"{pattern}: {stated}, not {number}")


unittest.main(argv=sys.argv[:1])
