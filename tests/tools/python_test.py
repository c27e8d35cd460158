"""The Python module of the examples, checked by NumPy's own arithmetic."""

import gc
import hashlib
import importlib.util
import os
import subprocess
import sys
import unittest

from tool_case import PROJECT

FOLDER = os.path.join(PROJECT, "examples", "python")
if not os.environ.get("TAVU_LIBRARY") or not importlib.util.find_spec("numpy"):
    raise unittest.SkipTest("needs NumPy, and a library that an ordinary Python can load")

import numpy as np  # noqa: E402

sys.path.insert(0, FOLDER)
import tavu  # noqa: E402


def noise(*shape, seed=1):
    return np.random.default_rng(seed).integers(0, 256, shape, np.uint8)


class Python(unittest.TestCase):
    def image(self, width, height, cs):
        image = tavu.Image(width, height, cs)
        for seed, plane in enumerate(image.planes):
            plane[:] = noise(*plane.shape, seed=seed)
        return image

    def test_planes_are_the_librarys_memory(self):
        shapes = {tavu.YUV420: [(9, 21), (5, 11), (5, 11)], tavu.YUV422: [(9, 21)] + [(9, 11)] * 2,
                  tavu.YUV440: [(9, 21)] + [(5, 21)] * 2, tavu.YUV444A8: [(9, 21)] * 4,
                  tavu.RGB565: [(9, 21, 2)], tavu.RGBA8888: [(9, 21, 4)]}
        for cs, expected in shapes.items():
            planes = self.image(21, 9, cs).planes
            gc.collect()  # the image itself is no longer in use
            self.assertEqual([plane.shape for plane in planes], expected)
            for seed, plane in enumerate(planes):
                np.testing.assert_array_equal(plane, noise(*plane.shape, seed=seed))

    def test_digest(self):
        image = self.image(37, 10, tavu.YUV420)
        self.assertEqual(image.md5(), hashlib.md5(b"".join(image.planes)).hexdigest())

    def test_conversion(self):
        image = self.image(53, 7, tavu.YUV444)
        y, u, v = (plane.astype(int) for plane in image.planes)
        u, v = u - 128, v - 128
        expected = np.dstack([y + (359 * v + 128 >> 8), y - (183 * v + 88 * u + 128 >> 8),
                              y + (454 * u + 128 >> 8)]).clip(0, 255)
        np.testing.assert_array_equal(image.converted(tavu.RGB888).planes[0], expected)
        rgba = image.converted(tavu.RGBA8888).planes[0]
        np.testing.assert_array_equal(rgba[:, :, :3], expected)
        self.assertTrue((rgba[:, :, 3] == 255).all())
        image.planes[1][:] = image.planes[2][:] = 128
        image.planes[0][:] = 77
        small = image.converted(tavu.RGB888, 20, 3).planes[0]
        np.testing.assert_array_equal(small, np.full((3, 20, 3), 77))

    def test_resizing(self):
        rows, columns = np.mgrid[:40, :60]
        ramp = (2 * columns + 3 * rows).astype(np.uint8)
        at_row, at_column = np.mgrid[:33, :90]
        expected = 2 * at_column * 59 / 90 + 3 * at_row * 39 / 33
        self.assertLess(abs(tavu.resized(ramp, 90, 33) - expected).max(), 2)
        colours = np.stack([ramp, ramp // 2, 255 - ramp], axis=-1)
        for channel in range(3):
            np.testing.assert_array_equal(tavu.resized(colours[:, ::2], 90, 33)[:, :, channel],
                                          tavu.resized(colours[:, ::2, channel], 90, 33))

    def test_satd(self):
        two = np.array([[1, 1], [1, -1]])
        hadamard = np.kron(np.kron(two, two), two)
        a, b = noise(16, 24, seed=1), noise(16, 24, seed=2)
        blocks = (a.astype(int) - b).reshape(2, 8, 3, 8).transpose(0, 2, 1, 3)
        sums = abs(hadamard @ blocks @ hadamard).sum(axis=(2, 3))
        self.assertEqual(tavu.satd(a, b), ((sums + 2) // 4).sum())

    def test_invalid_arguments_are_refused(self):
        for call, *args in [
                (tavu.Image, 5, 0, tavu.YUV420), (tavu.Image, 5, 5, 99),
                (tavu.Image(8, 8, tavu.YUV420).converted, tavu.RGB888),
                (tavu.resized, noise(4, 4, 2), 8, 8), (tavu.resized, noise(4, 4), 0, 8),
                (tavu.satd, noise(8, 8), noise(8, 16)), (tavu.satd, noise(8, 9), noise(8, 9))]:
            self.assertRaises(tavu.Error, call, *args)

    def test_demo(self):
        result = subprocess.run([sys.executable, "-B", os.path.join(FOLDER, "demo.py")],
                                capture_output=True, text=True)
        self.assertEqual(result.stderr, "")
        self.assertRegex(result.stdout, r"digest [0-9a-f]{32}\nmiddle \d+ \d+ \d+\n"
                         r"thumbnail 64 64 3 mean 1\d\d\.\d\nSATD to itself 0 and moved .* [1-9]")
