"""Levels share no code. The linker keeps one body of each weak symbol, and a body compiled for v3 must
not end up in code for v2. Weak symbols of kernel files are therefore named after their level.

usage: levels_test.py COMPILE_COMMANDS
"""

import json
import os
import re
import shlex
import subprocess
import sys
import tempfile
import unittest
from multiprocessing.pool import ThreadPool

# Without inlining every function that is called has a body.
PLAIN = ["-O0", "-U_FORTIFY_SOURCE", "-w"]


def weak_symbols(unit):
    """Those of a file's object, without those named after the level."""
    command = shlex.split(unit["command"])
    level = re.search(r"-DTAVU_LEVEL=(\d)", unit["command"]).group(1)
    with tempfile.NamedTemporaryFile(suffix=".o") as file:
        command[command.index("-o") + 1] = file.name
        subprocess.run(command + PLAIN, cwd=unit["directory"], check=True)
        names = subprocess.run(["nm", file.name], check=True, capture_output=True, text=True).stdout
    return [name for name in re.findall(r"^\w+ [uvVW] (\S+)$", names, flags=re.M)
            if f"4tavu6level{level}" not in name]


class Levels(unittest.TestCase):
    def test_nothing_can_be_merged_across_levels(self):
        with open(sys.argv[1], encoding="utf-8") as file:
            units = [unit for unit in json.load(file)
                     if re.search("-DTAVU_LEVEL=[34]", unit["command"])]
        self.assertGreater(len(units), 10)
        with ThreadPool(os.cpu_count()) as pool:
            for unit, weak in zip(units, pool.map(weak_symbols, units)):
                self.assertEqual(weak, [], unit["file"])


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
