"""tavu convert: every pixel checked by the documented equations."""

import functools
import random

from tool_case import CLIP, HAVE_FFMPEG, Case, decoded, needs_ffmpeg, read

W, H = 21, 6
PLANES = [random.Random(seed).randbytes(W * H) for seed in range(4)]
PACKED = {"rgb888": "rgb", "bgr888": "bgr", "rgba8888": "rgba", "bgra8888": "bgra"}
PLANAR = {"yuv444": "yuv", "yuv444a8": "yuva"}


def from_yuv(y, u=128, v=128, a=255):
    rgb = (y + ((359 * (v - 128) + 128) >> 8),
           y - ((183 * (v - 128) + 88 * (u - 128) + 128) >> 8), y + ((454 * (u - 128) + 128) >> 8))
    return dict(zip("rgbyuva", (*(min(max(c, 0), 255) for c in rgb), y, u, v, a)))


def from_rgb(r, g, b, a=255):
    chroma = ((-43 * r - 85 * g + 128 * b + 128) >> 8, (128 * r - 107 * g - 21 * b + 128) >> 8)
    yuv = (77 * r + 150 * g + 29 * b + 128) >> 8, *(min(c + 128, 255) for c in chroma)
    return dict(zip("rgbyuva", (r, g, b, *yuv, a)))


def layout(target, pixels):
    """The pixels as bytes of a layout."""
    if target in PLANAR:
        return bytes(p[key] for key in PLANAR[target] for p in pixels)
    if target in PACKED:
        return bytes(p[key] for p in pixels for key in PACKED[target])
    units = [(p["r"] >> 3 << 11 | p["g"] >> 2 << 5 | p["b"] >> 3).to_bytes(2, "little")
             for p in pixels]
    alpha = [bytes([p["a"]]) for p in pixels]
    return b"".join({"rgb565": units, "rgb565a8": units + alpha,
                     "rgba5658": map(bytes.__add__, units, alpha)}[target])


class Convert(Case):
    def converted(self, path, *args, out="out.bin"):
        self.ok("convert", path, self.path(out), *args)
        return read(self.path(out))

    def sources(self):
        """(path, options, function from samples to a pixel, samples of each pixel)"""
        size = ["--size", f"{W}x{H}", "--cs", "43"]
        yield self.written("four.yuv", b"".join(PLANES)), size, from_yuv, zip(*PLANES)
        head = f"YUV4MPEG2 W{W} H{H} F25:1 Ip C444 XCOLORRANGE=FULL\nFRAME\n".encode()
        yield self.written("x.y4m", head + b"".join(PLANES[:3])), [], from_yuv, zip(*PLANES[:3])
        for kind, count, meaning in ("RGB", 3, from_rgb), ("RGB_ALPHA", 4, from_rgb), \
                ("GRAYSCALE", 1, from_yuv), ("GRAYSCALE_ALPHA", 2, lambda y, a: from_yuv(y, a=a)):
            planes = PLANES[:count]
            head = f"P7\nWIDTH {W}\nHEIGHT {H}\nDEPTH {count}\nMAXVAL 255\nTUPLTYPE {kind}\n"
            pixels = bytes(value for pixel in zip(*planes) for value in pixel)
            picture = self.written(kind + ".pam", f"{head}ENDHDR\n".encode() + pixels)
            yield picture, [], meaning, zip(*planes)
        if HAVE_FFMPEG:
            clip = self.made("x.avi", "64x48", "-c:v", "mjpeg", "-pix_fmt", "yuvj444p", "-vf",
                             f"format=yuv444p,crop={W}:{H},noise=alls=60:allf=t")
            raw = decoded(clip, layout="yuvj444p")[3 * 3 * W * H:4 * 3 * W * H]
            yield clip, ["--frame", 3], from_yuv, zip(*(raw[p * W * H:][:W * H] for p in range(3)))

    def test_every_source_to_every_target(self):
        for path, options, meaning, samples in self.sources():
            pixels = [meaning(*sample) for sample in samples]
            for target in [*PACKED, *PLANAR, "rgb565", "rgb565a8", "rgba5658"]:
                if target == "rgba5658":  # exists only for Y, U, V
                    pixels = [from_yuv(*(p[key] for key in "yuva")) for p in pixels]
                with self.subTest(source=path, target=target):
                    self.assertEqual(self.converted(path, "--to", target, *options),
                                     layout(target, pixels))

    def test_chroma_is_interpolated(self):
        """Chroma sample x / 2 is at sample x; samples between are the mean of two or four."""
        for cs, across, down in ("yuv420", 2, 2), ("yuv422", 2, 1), ("yuv440", 1, 2):
            w, h = -(-W // across), -(-H // down)
            around = lambda at, step, end: (at // step, min(-(-at // step), end - 1))
            expected = raw = PLANES[0]
            for plane in PLANES[1:3]:
                raw += plane[:w * h]
                expected += bytes(sum(plane[r * w + c] for r in around(y, down, h)
                                      for c in around(x, across, w)) // 4
                                  for y in range(H) for x in range(W))
            options = ["--size", f"{W}x{H}", "--cs", cs, "--to", "yuv444"]
            self.assertEqual(self.converted(self.written("x.yuv", raw), *options), expected, cs)
        grey = self.converted(self.path("x.yuv"), "--size", f"{W}x{H}", "--cs", "yuv400")
        self.assertEqual(grey, bytes(value for value in PLANES[0] for _ in range(3)))

    def test_limited_range(self):
        raw = self.written("flat.yuv", bytes([180] * 256 + [90] * 64 + [160] * 64))
        options = ["--size", "16x16", "--cs", "11", "--limited", "--to", "yuv444"]
        for value, true in zip(self.converted(raw, *options)[::256], (191.0, 84.7, 164.4)):
            self.assertAlmostEqual(value, true, delta=1)

    @needs_ffmpeg
    def test_picture_files(self):
        clip = [CLIP, "--frame", 90, "--to"]
        for target, layout in {"rgb888": "rgb24", "bgr888": "bgr24", "bgra8888": "bgra"}.items():
            self.converted(*clip, target, out="x.PNG")
            shown = decoded(self.path("x.PNG"), layout=layout)
            self.assertEqual(shown, self.converted(*clip, target))
        ppm = self.converted(*clip, "400", out="x.ppm")
        self.assertEqual(ppm, b"P6\n320 180\n255\n" + self.converted(*clip, "rgb888"))
        true = decoded(CLIP, "-vf", r"select=eq(n\,90)", "-frames:v", 1, layout=layout)
        self.assertLess(sum(abs(a - b) for a, b in zip(shown, true)) / len(true), 5)

    def test_resizing(self):
        """The value of a ramp identifies the source position of each sample."""
        ramp = lambda x, y: 2 * x + 3 * y
        raw = bytes(ramp(x, y) for y in range(40) for x in range(60))
        options = [self.written("ramp.yuv", raw), "--size", "60x40", "--cs", "10", "--to", "yuv444",
                   "--resize"]
        for w, h in (90, 33), (25, 80):
            true = [ramp(x * 59 / w, y * 39 / h) for y in range(h) for x in range(w)]
            out = self.converted(*options, f"{w}x{h}")
            self.assertEqual(out[w * h:], bytes([128] * 2 * w * h))
            self.assertLess(max(abs(a - b) for a, b in zip(out, true)), 2)
        self.assertEqual(self.converted(*options, "60x40")[:2400], raw)
        ppm = self.written("x.ppm", b"P6 40 20 255\n" + raw)
        for target in "rgb888", "rgba8888":
            to = [ppm, "--to", target, "--resize", "50x9"]
            self.assertEqual(self.converted(*to, "--one-pass"), self.converted(*to))

    def test_sizes_that_the_routines_do_not_support(self):
        """Up to 8192 units of 1 << shift pixels, where shift is the decimation shift."""
        refused = functools.partial(self.fails, says="too large to scale")
        for w, h, to, check in (8192, 2, "9000x2", self.ok), (8193, 2, "9000x2", refused), \
                (2, 12000, "8x11000", refused), (12000, 3, "8000x64", refused), \
                (16384, 2, "5461x2", self.ok), (16385, 2, "5461x2", refused):
            path = self.written("x.ppm", f"P6 {w} {h} 255\n".encode() + bytes(3 * w * h))
            for one_pass in [], ["--one-pass"]:
                check("convert", path, self.path("out.rgb"), "--resize", to, *one_pass)

    def test_list(self):
        rows = self.ok("convert", "--list").split("\n\n")[0].splitlines()[1:]
        rows = {" ".join(row.split()[:4:2]): row.split(None, 4)[4].split(None, 2) for row in rows}
        self.assertEqual((len(rows), [row[1] for row in rows.values()].count("yes")), (17, 6))
        for pair, drawing in {"13 500": "R G B 255", "700 430": "R G B A", "43 430":
                              "gggbbbbb rrrrrggg A", "600 650": "gggbbbbb rrrrrggg | 255"}.items():
            self.assertEqual((rows[pair][0], rows[pair][2]), ("yes", drawing))

    def test_failures_leave_no_file(self):
        raw, size = self.written("in.yuv", bytes(100)), "--size 10x10 --cs"
        for args in "out.png", f"out.png {size} yuv420", f"out.png {size} 10 --frame 1":
            self.fails("convert", raw, *args.split(), says=raw, cwd=self.directory)
        self.fails("convert", raw, self.path("none/out"), *f"{size} 10".split(), says="none/out")
        for args in "", "out.png --size 10x10", f"out.png {size} rgb888", "out.png --to rgb565", \
                "out.png --resize 9x", "out.png --resize 9x70000", "out.png --one-pass", \
                "out.png --frame -1", "out.ppm --to bgr888", f"out.png {size} 10 --limited", \
                f"out {size} 10 --to 200 --resize 8x8 --one-pass":
            self.fails("convert", raw, *args.split(), status=2, cwd=self.directory)
        self.assertEqual(self.files(), ["in.yuv"])
