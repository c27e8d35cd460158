"""tavu compare: sums checked by plain arithmetic, PSNR by ffmpeg's, and heat maps."""

import json
import math
import random
import re
import subprocess

from tool_case import Case, decoded, ffmpeg, needs_ffmpeg, read, sample, stream


def ratio(ssd, samples):
    return round(10 * math.log10(255 ** 2 * samples / ssd), 9) if ssd else None


def satd(residual, w, h, x0, y0):
    """SATD of one 8x8 block by the definition of the transform; the residual is 0 outside."""
    hadamard = [[(-1) ** bin(i & j).count("1") for j in range(8)] for i in range(8)]
    product = lambda a, b: [[sum(map(int.__mul__, row, column)) for column in zip(*b)] for row in a]
    block = [[residual[y * w + x] if x < w and y < h else 0 for x in range(x0, x0 + 8)]
             for y in range(y0, y0 + 8)]
    transformed = product(product(hadamard, block), hadamard)
    return (sum(abs(c) for row in transformed for c in row) + 2) // 4


class Compare(Case):
    def clip(self, name, w, h, frames):
        """A clip of luma only."""
        head = f"YUV4MPEG2 W{w} H{h} F10:1 Ip A1:1 Cmono\n".encode()
        return self.written(name, head + b"".join(b"FRAME\n" + bytes(frame) for frame in frames))

    def frames(self, a, b):
        report = json.loads(self.ok("compare", a, b, "--json"),
                            parse_float=lambda text: round(float(text), 9))
        self.assertEqual((report["a"], report["b"]), (a, b))
        return report["frames"], report["total"]

    def test_sums(self):
        for w, h in (5, 3), (19, 13), (70, 66):
            first = [random.Random(seed).randbytes(w * h) for seed in range(3)]
            second = [first[2], first[1], bytes(v ^ 1 for v in first[2])]
            a, b = self.clip("a.y4m", w, h, first), self.clip("b.y4m", w, h, second)
            expected = []
            for index in range(3):
                residual = [i - j for i, j in zip(first[index], second[index])]
                ssd = sum(d * d for d in residual)
                expected.append({"index": index, "time": index / 10, "psnr": ratio(ssd, w * h),
                                 "sad": sum(map(abs, residual)), "ssd": ssd, "satd": sum(
                                     satd(residual, w, h, x, y)
                                     for y in range(0, h, 8) for x in range(0, w, 8))})
            frames, total = self.frames(a, b)
            self.assertEqual(frames, expected)
            sums = {key: sum(f[key] for f in expected) for key in ("sad", "ssd", "satd")}
            self.assertEqual(total, {"frames": 3, "psnr": ratio(sums["ssd"], 3 * w * h), **sums})
        rows = [line.split() for line in self.ok("compare", a, b).splitlines()]
        self.assertEqual(rows[2], ["1", "0.100000", "0", "0", "inf", "0"])
        self.assertEqual(rows[4][:3], ["total", str(total["sad"]), str(total["ssd"])])

    @needs_ffmpeg
    def test_psnr_equals_ffmpegs(self):
        for name in "h264.mp4", "hevc.mp4", "mpeg4.avi", "wmv2.avi", "huffyuv.avi":
            other = self.path("other.nut")
            ffmpeg("-i", sample(name), "-map", "0:v", "-fps_mode", "passthrough", "-vf",
                   r"gblur=1.5:enable=not(eq(n\,3))", "-c:v", "ffv1", other)
            pair = "[0:v]settb=1/10,setpts=N[a];[1:v]settb=1/10,setpts=N[b];[a][b]psnr=stats_file="
            result = subprocess.run(["ffmpeg", "-i", sample(name), "-i", other, "-lavfi",
                                     pair + self.path("stats"), "-f", "null", "-"],
                                    capture_output=True, text=True, check=True)
            expected = re.findall(rb"psnr_y:(\S+)", read(self.path("stats")))
            frames, total = self.frames(sample(name), other)
            with self.subTest(name):
                self.assertEqual(len(frames), len(expected))
                for frame, true in zip(frames, expected):
                    self.assertAlmostEqual(frame["psnr"] or math.inf, float(true), delta=0.0051)
                average = re.search(r"PSNR y:(\S+)", result.stderr)[1]
                self.assertAlmostEqual(total["psnr"], float(average), delta=0.00001)

    @needs_ffmpeg
    def test_ranges_depths_and_rgb_are_converted(self):
        limited = self.made("limited.mkv", "64x48", "-c:v", "ffv1", "-pix_fmt", "yuv420p")
        for options in ["-vf", "scale=out_range=full", "-color_range", "pc"], \
                ["-pix_fmt", "yuv420p10le"], ["-pix_fmt", "gbrp"]:
            ffmpeg("-i", limited, *options, "-c:v", "ffv1", self.path("other.mkv"))
            total = self.frames(limited, self.path("other.mkv"))[1]
            self.assertGreater(total["psnr"] or math.inf, 42, options)

    @needs_ffmpeg
    def test_heat_map(self):
        """Shows the frame with the highest SATD: differing blocks tinted, others unchanged."""
        w, h = 44, 30
        first = [bytes(random.Random(seed).choices(range(128), k=w * h)) for seed in range(4)]
        second = [bytearray(frame) for frame in first]
        second[0][0] += 8
        for frame in second[1:3]:  # the first of equal ones is shown
            frame[29 * w + 43] += 8
            for y in range(8, 16):
                frame[y * w + 16] += 127
        self.ok("compare", self.clip("a.y4m", w, h, first), self.clip("b.y4m", w, h, second),
                "-o", self.path("heat.png"))
        rgb = decoded(self.path("heat.png"))
        line = stream(self.path("heat.png"), "width")["width"]
        warmth = lambda x, y: rgb[3 * (y * line + x)] - rgb[3 * (y * line + x) + 2]
        self.assertGreater(warmth(16, 8), 50)
        self.assertLess(warmth(43, 29), -20)
        for at, value in enumerate(first[1]):
            if (at % w // 8, at // w // 8) not in ((2, 1), (5, 3)):
                place = 3 * (at // w * line + at % w)
                self.assertEqual(rgb[place:place + 3], bytes([value] * 3), (at % w, at // w))

    def test_pictures_wider_than_any_label(self):
        wide = [self.written(f"{value}.pgm", b"P5 40000 8 255\n" + bytes([value]) * 320000)
                for value in (9, 99)]
        self.ok("compare", *wide, "-o", self.path("heat.png"))

    def test_sizes_and_counts_that_differ(self):
        three, two, wide = (self.clip(name, w, 7, [bytes(w * 7)] * count)
                            for name, w, count in (("3", 9, 3), ("2", 9, 2), ("wide", 10, 3)))
        heat = ["-o", self.path("heat.png")]
        for pair in (three, two), (two, three):
            out = self.fails("compare", *pair, *heat, says=f"{two}: ends after 2 frames, {three}")
            self.assertEqual(len(out.splitlines()), 1 + 2 + 1)
        self.fails("compare", three, wide, *heat, says=f"of 9x7, but {wide} has 10x7")
        self.fails("compare", three, self.path("none.y4m"), *heat, says="none.y4m: ")
        self.fails("compare", three, two, "-o", self.path("none/heat.png"))
        self.fails("compare", three, status=2)
        self.assertEqual(self.files(), ["2", "3", "wide"])
