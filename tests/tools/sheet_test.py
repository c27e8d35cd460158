"""tavu sheet: its pictures, read back and compared with ffmpeg's."""

import itertools

from tool_case import CLIP, Case, decoded, ffmpeg, needs_ffmpeg, read, sample, stream


class Picture:
    """A sheet, read from PPM."""

    def __init__(self, ppm, width):
        _, size, _, self.rgb = ppm.split(b"\n", 3)
        self.width, self.height = map(int, size.split())
        self.gap = min(max(width // 24, 4), 32)
        self.label = min(max(width // 14, 15), 40)
        self.columns = (self.width - self.gap) // (width + self.gap)

    def cell(self, index, w, h):
        """The picture and its caption."""
        x = self.gap + index % self.columns * (w + self.gap)
        y = self.gap + index // self.columns * (h + self.label + self.gap)
        starts = [3 * (self.width * row + x) for row in range(y, y + h + self.label)]
        rows = [self.rgb[at:at + 3 * w] for at in starts]
        return b"".join(rows[:h]), b"".join(rows[h:])


def scaled(rgb, sw, sh, w, h):
    """Bilinear: target pixel i is at i * (source - 1) / target."""
    out = []
    for y in range(h):
        row, part = divmod(y * (sh - 1) / h, 1)
        upper, lower = (rgb[3 * sw * r:3 * sw * (r + 1)] for r in (int(row), int(row) + 1))
        line = [a + (b - a) * part for a, b in zip(upper, lower)]
        for x in range(w):
            column, part = divmod(x * (sw - 1) / w, 1)
            for at in range(3 * int(column), 3 * int(column) + 3):
                out.append(line[at] + (line[at + 3] - line[at]) * part)
    return out


def difference(a, b):
    return sum(abs(x - y) for x, y in zip(a, b)) / len(a)


@needs_ffmpeg
class Sheet(Case):
    def sheet(self, path, width, *args):
        self.ok("sheet", path, "-o", self.path("out.png"), "--width", width, *args)
        ppm = ffmpeg("-i", self.path("out.png"), "-f", "image2pipe", "-c:v", "ppm", "-")
        return Picture(ppm, width)

    def references(self, path, w, h, select):
        """ffmpeg's pictures in RGB, scaled to the library's sample positions."""
        sw, sh = stream(path, "width,height").values()
        raw = decoded(path, "-map", "0:v", "-fps_mode", "passthrough", "-vf",
                      f"select={select},scale=flags=bilinear+full_chroma_int+accurate_rnd")
        return [scaled(raw[i:i + 3 * sw * sh], sw, sh, w, h)
                for i in range(0, len(raw), 3 * sw * sh)]

    def check_pictures(self, sheet, columns, path, h, select):
        """The sheet has ffmpeg's pictures in order."""
        expected = self.references(path, 160, h, select)
        rows = -(-len(expected) // columns)
        self.assertEqual((sheet.columns, sheet.height),
                         (columns, sheet.gap + rows * (h + sheet.label + sheet.gap)))
        for index, own in enumerate(expected):
            picture, _ = sheet.cell(index, 160, h)
            self.assertLess(difference(picture, own), 7)
            if path == CLIP:
                others = [difference(picture, other) for other in expected if other != own]
                self.assertGreater(min(others), 20)
        return len(expected)

    def test_key_frames_equal_ffmpegs_in_order(self):
        for name, h in {"h264.mp4": 90, "hevc.mp4": 96, "mpeg4.avi": 89, "h263.3gp": 131}.items():
            with self.subTest(name):
                sheet = self.sheet(sample(name), 160)
                self.check_pictures(sheet, 4, sample(name), h, "key")

    def ink(self, label, width):
        """The number of columns from the first to the last with ink."""
        inked = [at // 3 % width for at, value in enumerate(label) if value > 100]
        return max(inked) - min(inked)

    def test_every_columns_and_labels(self):
        sheet = self.sheet(CLIP, 160, "--every", 45, "--columns", 5)
        self.assertEqual(self.check_pictures(sheet, 5, CLIP, 90, r"not(mod(n\,45))"), 6)
        labels = {sheet.cell(index, 160, 90)[1] for index in range(6)}
        self.assertEqual(len(labels), 6)
        self.assertGreater(min(map(max, labels)), 150)
        self.assertEqual(set(sheet.cell(6, 160, 90)[0]), {sheet.rgb[0]})
        counting = self.sheet(sample("mpeg4.avi"), 64, "--every", 1)
        self.assertEqual(len({counting.cell(index, 64, 36)[1] for index in range(30)}), 30)
        late = self.made("late.mkv", "64x48", "-c:v", "ffv1", "-fps_mode", "passthrough",
                         "-frames:v", "2", "-vf", "setpts=N*3661.5/TB")
        hours = self.sheet(late, 160, "--every", 1)
        short, long = (self.ink(hours.cell(index, 160, 120)[1], 160) for index in (0, 1))
        self.assertGreater(long, 1.2 * short)
        self.assertEqual(self.sheet(CLIP, 64, "--columns", 100).columns, 8)

    def test_colours_of_every_source_format(self):
        """Flat pictures, coded by the defining equations: matrix, range, depth, subsampling."""
        matrices = {"bt709": (.2126, .0722), "bt2020nc": (.2627, .0593),
                    "smpte170m": (.299, .114), "unknown": (.299, .114)}
        formats = {"yuv420p": (2, 2, 8), "yuv422p": (2, 1, 8), "yuv444p": (1, 1, 8),
                   "yuv420p10le": (2, 2, 10), "yuv444p16le": (1, 1, 16), "gray": (0, 0, 8),
                   "gray10le": (0, 0, 10), "gray16le": (0, 0, 16)}
        colours = [(200, 50, 100), (20, 180, 60), (255, 255, 255), (0, 0, 0), (30, 60, 220),
                   (75, 0, 61), (0, 0, 224), (255, 200, 0)]
        for layout, matrix, extent in itertools.product(formats, matrices, ("pc", "tv")):
            (across, down, bits), (kr, kb) = formats[layout], matrices[matrix]
            top, unit, area = 2 ** bits - 1, 2 ** (bits - 8), 32 * 32
            chroma = area // across // down if across else 0
            raw, shown = b"", []
            for rgb in colours:
                r, g, b = (c / 255 for c in rgb)
                y = kr * r + (1 - kr - kb) * g + kb * b
                u, v = (b - y) / (2 - 2 * kb), (r - y) / (2 - 2 * kr)
                coded = ([y * top, u * top + 128 * unit, v * top + 128 * unit] if extent == "pc"
                         else [unit * c for c in (16 + 219 * y, 128 + 224 * u, 128 + 224 * v)])
                shown.append(rgb if chroma else (255 * y,) * 3)
                for value, count in zip(coded, (area, chroma, chroma)):
                    raw += min(round(value), top).to_bytes((bits + 7) // 8, "little") * count
            # ffmpeg converts frames unless their tags equal those of the file.
            ffmpeg("-f", "rawvideo", "-pix_fmt", layout, "-s", "32x32", "-i", "-", "-vf",
                   f"setparams=range={extent}:colorspace={matrix}", "-c:v", "ffv1", "-strict", "-2",
                   "-colorspace", matrix, "-color_range", extent, self.path("x.mkv"), stdin=raw)
            sheet = self.sheet(self.path("x.mkv"), 32, "--every", 1)
            for at, rgb in enumerate(shown):
                middle = sheet.cell(at, 32, 32)[0][3 * 32 * 16 + 48:][:3]
                with self.subTest(layout=layout, matrix=matrix, extent=extent, rgb=rgb):
                    self.assertLessEqual(max(abs(a - b) for a, b in zip(middle, rgb)), 2)

    def test_pictures_are_upright(self):
        lying = self.made("lying.mp4", "64x48", "-c:v", "mpeg4", "-q:v", "1", "-frames:v", "1")
        data = bytearray(read(lying))
        matrix = data.index(b"tkhd") + 44
        for turns, (a, b) in enumerate([(1, 0), (0, 1), (-1, 0), (0, -1)]):
            rows = [a, b, 0, -b, a, 0, 0, 0, 1 << 14]
            data[matrix:matrix + 36] = b"".join((n << 16).to_bytes(4, "big", signed=True)
                                                for n in rows)
            w, h = (64, 48) if turns % 2 == 0 else (48, 64)
            path = self.written("turned.mp4", data)
            raw = decoded(path)
            self.assertEqual(len(raw), 3 * w * h)
            picture = self.sheet(path, w).cell(0, w, h)[0]
            turned = b"".join(raw[at:at + 3] for at in range(0, len(raw), 3)[::-1])
            upright, inverted = (difference(picture, scaled(rgb, w, h, w, h))
                                 for rgb in (raw, turned))
            # Sample positions differ by up to a pixel.
            self.assertLess(2.5 * upright, inverted, turns)

    def test_shapes(self):
        """Non-square pixels, changing sizes, a narrow strip, hundreds of pictures."""
        wide = self.made("wide.mp4", "64x48", "-c:v", "mpeg4", "-vf", "setsar=2")
        self.assertEqual(self.sheet(wide, 64).height, 2 * 4 + 24 + 15)
        small, large = (self.made(f"{size}.m4v", size, "-f", "m4v") for size in ("64x48", "130x76"))
        both = self.written("both.m4v", read(small) + read(large))
        sizes = [row[2] for row in self.digests(both)]
        self.assertEqual(sizes, ["64x48"] * 10 + ["130x76"] * 10)
        sheet = self.sheet(both, 64, "--every", 10)
        for index, path in enumerate((small, large)):
            expected = self.references(path, 64, 48, r"eq(n\,0)")[0]
            self.assertLess(difference(sheet.cell(index, 64, 48)[0], expected), 7)
        sliver = self.made("sliver.mkv", "512x2", "-c:v", "ffv1", "-frames:v", "1")
        self.assertEqual(self.sheet(sliver, 16).height, 2 * 4 + 1 + 15)
        tall = self.made("tall.mkv", "2x9000", "-c:v", "ffv1", "-frames:v", "1")
        self.fails("sheet", tall, "-o", self.path("tall.png"), says="2x9000")
        # The last row and column of an odd size have their own chroma.
        odd = self.made("odd.mkv", "16x16", "-frames:v", "1", "-c:v", "ffv1", "-vf",
                        "scale=3:3,format=gbrp,geq=r=255*lt(max(X\\,Y)\\,2):g=0:b=255-r(X\\,Y)")
        picture = self.sheet(odd, 16, "--every", 1).cell(0, 16, 16)[0]
        for corner in 15, 15 * 16, 16 * 16 - 1:
            red, _, blue = picture[3 * corner:3 * corner + 3]
            self.assertLess(red, blue)
        many = self.made("many.avi", "32x24", "-c:v", "mjpeg", "-pix_fmt", "yuvj420p", seconds=40)
        self.assertEqual(self.sheet(many, 32).height, 4 + 100 * (24 + 15 + 4))
