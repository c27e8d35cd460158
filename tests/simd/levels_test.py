"""Levels share no code: the names of weak symbols of kernel files contain their level."""

import json
import re
import shlex
import subprocess
import sys
import tempfile
import unittest


# The linker keeps one body of each weak symbol. Code for v2 must not use a body compiled for v3.
def weak_symbols(unit):
    """The weak symbols of a file's object whose names do not contain the level."""
    level = re.search(r"-march=x86-64-v(\d)", unit["command"]).group(1)
    with tempfile.NamedTemporaryFile(suffix=".o") as file:
        # Without inlining, every called function has a body.
        command = re.sub(r" -o \S+", f" -o {file.name} -O0 -U_FORTIFY_SOURCE -w", unit["command"])
        subprocess.run(shlex.split(command), cwd=unit["directory"], check=True)
        names = subprocess.check_output(["nm", file.name], text=True)
    return [name for name in re.findall(r"^\w+ [uvVW] (\S+)$", names, flags=re.M)
            if f"4tavu6level{level}" not in name]


class Levels(unittest.TestCase):
    def test_nothing_can_be_merged_across_levels(self):
        with open(sys.argv[1], encoding="utf-8") as commands:
            units = [unit for unit in json.load(commands)
                     if re.search("-DTAVU_TOP_LEVEL.*-march=x86-64-v[34]", unit["command"])]
        self.assertGreater(len(units), 10)
        for unit in units:
            self.assertEqual(weak_symbols(unit), [], unit["file"])


unittest.main(argv=sys.argv[:1])
