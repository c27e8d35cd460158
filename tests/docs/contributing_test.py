"""The example of CONTRIBUTING.md, applied to a copy of the sources: it compiles without a warning,
and the test of the table runs the new kernel at every level."""

import json
import re
import shlex
import shutil
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

ROOT, BUILD, COMPILER = map(Path, sys.argv[1:4])
LIBRARIES = sys.argv[4:]
STEP = re.compile(r"^In `(\S+)`, after `([^`]*)`:\n\n```cpp\n(.*?)^```$", flags=re.M | re.S)
TABLE = ["kernel_table/metric_kernels.cpp", "kernel_table/variants.cpp"]


def run(*command, **options):
    return subprocess.run(command, capture_output=True, text=True, check=False, **options)


class Example(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        self.folder = Path(self.enterContext(tempfile.TemporaryDirectory(dir=BUILD)))
        for name in ("include", "src", "kernel_table"):
            shutil.copytree(ROOT / name, self.folder / name)
        steps = STEP.findall((ROOT / "CONTRIBUTING.md").read_text(encoding="utf-8"))
        self.assertGreaterEqual(len(steps), 3)
        for name, anchor, code in steps:
            self.edit(name, rf"^.*{re.escape(anchor)}.*\n", lambda line, code=code: line[0] + code)
        changed = [*TABLE, *(name for name, _, _ in steps)]
        self.units = [unit for unit in
                      json.loads((BUILD / "compile_commands.json").read_text(encoding="utf-8"))
                      if unit["file"].removeprefix(f"{ROOT}/") in changed
                      and "tavu_abi" not in unit["command"]]

    def edit(self, name, pattern, text):
        path = self.folder / name
        source, count = re.subn(pattern, text, path.read_text(encoding="utf-8"), count=1, flags=re.M)
        self.assertEqual(count, 1, pattern)
        path.write_text(source, encoding="utf-8")

    def compile(self, units):
        for unit in units:
            command = re.sub(rf"{ROOT}/(include|src|kernel_table)\b", rf"{self.folder}/\1",
                             re.sub(r" -o \S+", f" -o {self.units.index(unit)}.o", unit["command"]))
            self.run_well(*shlex.split(command), cwd=self.folder)

    def run_well(self, *command, **options):
        result = run(*command, **options)
        self.assertEqual((result.returncode, result.stderr), (0, ""))

    def run_test_of_table(self):
        """Links the new objects with the test of the build."""
        self.run_well(COMPILER, next(BUILD.rglob("metric_test.cpp.o")), *self.folder.glob("*.o"),
                      *LIBRARIES, "-o", self.folder / "test")
        return run(self.folder / "test", "--gtest_filter=MetricTable.*")

    def test_new_kernel_is_tested_at_every_level(self):
        self.compile(self.units)
        result = self.run_test_of_table()
        self.assertEqual(result.returncode, 0, result.stdout)
        kernels = [unit for unit in self.units if unit["file"].endswith("src/metric/sad.cpp")]
        self.edit("src/metric/sad.cpp", r"\(at\) \+", "(at) -")
        self.compile(kernels[:1])
        self.assertRegex(self.run_test_of_table().stdout, r"\bsad24x24 v2\b")


unittest.main(argv=sys.argv[:1])
