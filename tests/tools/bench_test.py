"""tavu bench: it lists every kernel, and its numbers are consistent."""

import csv
import re

from tool_case import PROJECT, Case, read


class Bench(Case):
    def test_every_kernel_is_listed(self):
        table = read(PROJECT + "/kernel_table/kernels.def").decode()
        kernels = re.findall(r"^(?!KERNEL)[A-Z_]+\(tavu_(\w+)", table, re.M)
        listed = self.ok("bench", "--list").split()
        self.assertEqual(len(listed), len(set(listed)))
        self.assertEqual({name for name in listed if not name.startswith("resize")}, set(kernels))
        header = read(PROJECT + "/include/tavu.h")
        resizers = set(re.findall(rb"\btavu_irsz\w+_(?:full|line)\b", header))
        self.assertEqual(sum(name.startswith("resize") for name in listed), len(resizers))

    def test_forms(self):
        pixels = 1920 * 1080
        for pattern, bytes_of in {
                "satd8x8": {"satd8x8": 128}, "hadamard": {"hadamard4x4": 32},
                "diff4": {"diff4x4": 64}, "mset_x32": {"mset_x32": 16384, "mset_x32ax4": 16384},
                "line_565": {"resize_line_565": 2 * 2 * 1920 + 2 * 1280},
                "csc_r8g8b8_to_rgb565": {"csc_r8g8b8_to_rgb565": (3 + 2) * pixels}}.items():
            kernels = self.json("bench", pattern)["kernels"]
            self.assertEqual({k["kernel"]: k["bytes"] for k in kernels}, bytes_of)
            rows = csv.DictReader(self.ok("bench", pattern, "--csv").splitlines())
            head, *text = self.ok("bench", pattern).splitlines()
            forms = [form["form"] for kernel in kernels for form in kernel["forms"]]
            self.assertEqual(forms[:2], ["model", "exported"])
            self.assertEqual([row["form"] for row in rows], forms)
            self.assertEqual([line[head.index("form"):].split()[0] for line in text], forms)
            for kernel in kernels:
                for form in kernel["forms"]:
                    self.assertGreater(form["ns"], 0)
                    self.assertAlmostEqual(form["bytes_per_second"] * form["ns"] / 1e9,
                                           kernel["bytes"], delta=1e-6 * kernel["bytes"])
