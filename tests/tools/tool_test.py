"""Tests of the tavu program: every answer against ffmpeg's and ffprobe's, and what goes wrong."""

import hashlib
import json
import os
import random
import re
import resource
import shutil
import subprocess
import tempfile
import unittest

TAVU = os.environ["TAVU"]
SAMPLES = os.environ["TAVU_SAMPLES"]
HAVE_FFMPEG = shutil.which("ffmpeg") and shutil.which("ffprobe")
NAMES = ["h264.mp4", "h264.h264", "hevc.mp4", "mpeg4.avi", "mpeg4.mp4", "h263.3gp", "wmv1.wmv",
         "wmv2.avi", "div3.avi", "huffyuv.avi"]
YUV420 = [name for name in NAMES if name != "huffyuv.avi"]
COUNTING = "testsrc2=s={}:r=10:d={}"


def sample(name):
    return os.path.join(SAMPLES, name)


def run(*args, **options):
    return subprocess.run([TAVU, *map(str, args)], capture_output=True, text=True, **options)


def ffmpeg(*args, stdin=None):
    command = ["ffmpeg", "-v", "error", "-y", "-fflags", "+bitexact", *map(str, args)]
    return subprocess.run(command, input=stdin or b"", capture_output=True, check=True).stdout


def ffprobe(path, entries, *args):
    command = ["ffprobe", "-v", "error", "-select_streams", "v", "-of", "json", "-show_entries",
               entries, *args, path]
    return json.loads(subprocess.run(command, capture_output=True, check=True).stdout)


def packets(path):
    return ffprobe(path, "packet=flags,size,pts_time,pos")["packets"]


class Case(unittest.TestCase):
    def setUp(self):
        directory = tempfile.TemporaryDirectory()
        self.addCleanup(directory.cleanup)
        self.directory = directory.name

    def path(self, name):
        return os.path.join(self.directory, name)

    def written(self, name, data):
        with open(self.path(name), "wb") as file:
            file.write(data)
        return self.path(name)

    def made(self, name, size, *args, seconds=1):
        ffmpeg("-f", "lavfi", "-i", COUNTING.format(size, seconds), *args, self.path(name))
        return self.path(name)

    def ok(self, *args):
        result = run(*args)
        self.assertEqual((result.returncode, result.stderr), (0, ""))
        return result.stdout

    def fails(self, *args, status=1, says="", **options):
        """Runs into an error: one line, which names the file or the argument."""
        result = run(*args, **options)
        self.assertEqual(result.returncode, status, result.stderr)
        self.assertRegex(result.stderr, r"\Atavu: [^\n]+\n\Z")
        self.assertIn(says, result.stderr)
        return result.stdout

    def video(self, path):
        tracks = json.loads(self.ok("probe", path, "--json"))["tracks"]
        return next(track for track in tracks if track["kind"] == "video")


@unittest.skipUnless(HAVE_FFMPEG, "needs ffmpeg and ffprobe")
class Probe(Case):
    def test_units_are_the_containers_and_detector_agrees(self):
        for name in NAMES:
            with self.subTest(name):
                units = self.video(sample(name))["units"]
                expected = packets(sample(name))
                self.assertEqual([unit["bytes"] for unit in units],
                                 [int(packet["size"]) for packet in expected])
                for key in "container_key", "detector_key":
                    self.assertEqual([unit[key] for unit in units],
                                     ["K" in packet["flags"] for packet in expected])
                for unit, packet in zip(units, expected):
                    if "pts_time" in packet:
                        self.assertAlmostEqual(unit["time"], float(packet["pts_time"]), places=5)

    def test_streams_whose_key_flags_mean_more_than_the_detector_looks_for(self):
        x265 = "log-level=error:keyint=5:min-keyint=5:scenecut=0:pools=none:frame-threads=1:"
        hevc = ["-c:v", "libx265", "-tag:v", "hvc1", "-pix_fmt", "yuv420p", "-x265-params"]
        clips = {
            # Each key unit begins with a parameter set, which the detector takes for its answer.
            "parameter sets first": self.path("sets.h265"),
            # Later key frames are clean random access pictures, no IDR slices.
            "CRA": self.made("cra.mp4", "64x48", *hevc, x265 + "info=0:open-gop=1:bframes=2"),
            # Later key frames are intra pictures with a recovery point message, no IDR slices.
            "recovery point": self.made("open.h264", "64x48", "-c:v", "libx264", "-x264-params",
                                        "keyint=5:min-keyint=1:open-gop=1:scenecut=0:bframes=2"),
            # Read without a container, ffmpeg flags every H.263 picture.
            "raw H.263": self.path("raw.h263"),
        }
        ffmpeg("-i", sample("hevc.mp4"), "-c", "copy", clips["parameter sets first"])
        ffmpeg("-i", sample("h263.3gp"), "-c", "copy", clips["raw H.263"])
        expected = {"parameter sets first": (4, 0), "CRA": (2, 1),
                    "recovery point": (2, 1), "raw H.263": (24, 4)}
        for what, path in clips.items():
            with self.subTest(what):
                track = self.video(path)
                self.assertEqual([unit["container_key"] for unit in track["units"]],
                                 ["K" in packet["flags"] for packet in packets(path)])
                summary = track["summary"]
                self.assertEqual((summary["container_keys"], summary["detector_keys"]),
                                 expected[what])
                self.assertEqual(summary["agreements"],
                                 sum(unit["container_key"] == unit["detector_key"]
                                     for unit in track["units"]))

    def test_tracks_are_named(self):
        expected = {"h264.h264": ("H264", 104), "hevc.mp4": ("hvc1", 120),
                    "wmv2.avi": ("WMV2", 106), "mpeg4.avi": ("FMP4", 102),
                    "h263.3gp": ("s263", 103), "div3.avi": ("DIV3", 110)}
        for name, (fourcc, media_type) in expected.items():
            track = self.video(sample(name))
            self.assertEqual((track["fourcc"], track["media_type"]), (fourcc, media_type))
            self.assertEqual(track["fourcc_number"], int.from_bytes(fourcc.encode(), "little"))
            stream = ffprobe(sample(name), "stream=width,height")["streams"][0]
            self.assertEqual((track["width"], track["height"]),
                             (stream["width"], stream["height"]))
        shutil.copy(sample("h264.mp4"), self.path("colon:1.mp4"))
        text = run("probe", "colon:1.mp4", cwd=self.directory).stdout
        self.assertIn("track 0: video  avc1  0x31637661  media type 104 VID_H264  320x180", text)
        self.assertIn("track 1: audio  mp4a  0x6134706d  media type 306 AUD_AAC", text)
        self.assertIn("240 units, 8 container key frames, 8 detector key frames, 240 agree", text)

    def check_sequence(self, path):
        sequence = self.video(path)["sequence"]
        stream = ffprobe(path, "stream=profile,level,width,height")["streams"][0]
        self.assertEqual((sequence["profile"], sequence["level_idc"], sequence["width"],
                          sequence["height"]),
                         (stream["profile"], stream["level"], stream["width"], stream["height"]))

    def test_sequence_parameter_sets(self):
        x264 = ["-c:v", "libx264", "-frames:v", "2", "-pix_fmt"]
        self.check_sequence(sample("h264.mp4"))
        self.check_sequence(sample("h264.h264"))
        variants = {"64x48": ["yuv420p", "-profile:v", "baseline"],
                    "70x50": ["yuv422p10le"], "67x53": ["yuv444p"],
                    "98x76": ["yuv420p", "-x264-params", "interlaced=1"],
                    "82x58": ["yuv420p", "-x264-params", "cqm=jvt", "-level", "4.2"]}
        for size, options in variants.items():
            for container in "mp4", "h264", "ts":
                with self.subTest(size=size, container=container):
                    self.check_sequence(self.made("x." + container, size, *x264, *options))

    def rare_sequence(self, profile, chroma, lists):
        """Order count type 1, scaling lists, fields, large crops, and bytes 00 00 03."""
        ue = lambda n: format(n + 1, "b").zfill(2 * (n + 1).bit_length() - 1)
        se = lambda n: ue(2 * n - 1 if n > 0 else -2 * n)
        if chroma:
            chroma += ue(0) + ue(0) + "0" + "1" + "1" + se(0) * 16 + "1" + se(-8) + "0" * 4
            chroma += ("1" + se(5) * 64).ljust(64 * 7 + lists - 6, "0")
        order = ue(1) + "0" + se(16384) + se(16384) + ue(3) + se(-2) + se(70) + se(0)
        frame = ue(19) + ue(7) + "0" + "1" + "1" + "1" + ue(5) + ue(4) + ue(1) + ue(3) + "0"
        bits = ue(0) + chroma + ue(4) + order + ue(4) + "0" + frame
        bits = (bits + "1").ljust((len(bits) + 8) // 8 * 8, "0")
        nal = bytes([0x67, profile, 0, 13]) + int(bits, 2).to_bytes(len(bits) // 8, "big")
        escaped = re.sub(rb"\0\0(?=[\0-\3])", b"\0\0\3", nal)
        self.assertNotEqual(escaped, nal)
        with open(sample("h264.h264"), "rb") as file:
            rest = file.read()
        rest = rest[rest.index(b"\0\0\1\x68"):]
        rest = rest[:rest.index(b"\0\0\1\x67")]
        return self.written("rare.h264", b"\0\0\0\1" + escaped + b"\0" + rest)

    def test_sequences_with_rare_fields(self):
        self.check_sequence(self.rare_sequence(66, "", 0))
        self.check_sequence(self.rare_sequence(100, "010", 8))
        self.check_sequence(self.rare_sequence(244, "00100" + "0", 12))
        # Planes coded apart are beyond ffmpeg.
        sequence = self.video(self.rare_sequence(244, "00100" + "1", 12))["sequence"]
        self.assertEqual((sequence["width"], sequence["height"]), (320 - 9, 256 - 4 * 2))

    def test_lengths_and_parameter_sets_that_do_not_fit(self):
        with open(sample("h264.mp4"), "rb") as file:
            data = bytearray(file.read())
        second = packets(sample("h264.mp4"))[1]
        at = int(second["pos"])
        data[at:at + 4] = b"\xff\xff\xff\xff"
        out = self.fails("probe", self.written("length.mp4", data), says="unit 1: a NAL unit")
        self.assertIn("240 units, 8 container key frames, 8 detector key frames", out)
        self.fails("digest", self.path("length.mp4"), says="packet 1:")
        avcc = data.index(b"avcC") + 4
        data[avcc + 6:avcc + 8] = b"\x7f\xff"
        self.fails("probe", self.written("set.mp4", data), says="parameter set")


@unittest.skipUnless(HAVE_FFMPEG, "needs ffmpeg and ffprobe")
class Digest(Case):
    def test_digests_times_and_sizes_are_ffmpegs(self):
        for name in YUV420:
            with self.subTest(name):
                lines = ffmpeg("-i", sample(name), "-map", "0:v", "-fps_mode", "passthrough", "-f",
                               "framemd5", "-").decode().splitlines()
                expected = [line.split(",")[-1].strip() for line in lines if line[0] != "#"]
                head, *rows = self.ok("digest", sample(name)).splitlines()
                self.assertEqual(head[0], "#")
                rows = [row.split(",") for row in rows]
                self.assertEqual([row[3] for row in rows], expected)
                self.assertEqual([int(row[0]) for row in rows], list(range(len(rows))))
                stream = ffprobe(sample(name), "stream=width,height,avg_frame_rate")["streams"][0]
                self.assertEqual({row[2] for row in rows},
                                 {"{width}x{height}".format(**stream)})
                times = [float(row[1]) for row in rows]
                rate = 20 if name.startswith("h264") else 10
                for index, time in enumerate(times):
                    self.assertAlmostEqual(time - times[0], index / rate, delta=0.002)

    def test_other_layouts(self):
        raw = ffmpeg("-i", sample("huffyuv.avi"), "-f", "rawvideo", "-")
        w, h = 64, 48
        luma, chroma = w * h, w // 2 * h
        expected = []
        for start in range(0, len(raw), luma + 2 * chroma):
            parts = [raw[start:start + luma]]
            for plane in start + luma, start + luma + chroma:
                parts.append(raw[plane:plane + chroma // 2])
            expected.append(hashlib.md5(b"".join(parts)).hexdigest())
        rows = self.ok("digest", sample("huffyuv.avi")).splitlines()[1:]
        self.assertEqual([row.split(",")[3] for row in rows], expected)
        grey = self.made("grey.mkv", "64x48", "-c:v", "ffv1", "-pix_fmt", "gray")
        lines = ffmpeg("-i", grey, "-f", "framemd5", "-").decode().splitlines()
        self.assertEqual([row.split(",")[3] for row in self.ok("digest", grey).splitlines()[1:]],
                         [line.split(",")[-1].strip() for line in lines if line[0] != "#"])
        deep = self.made("deep.mkv", "64x48", "-c:v", "ffv1", "-pix_fmt", "yuv420p10le")
        self.fails("digest", deep, says="yuv420p10le")


class Picture:
    """A sheet read back through ffmpeg."""

    def __init__(self, path, width):
        stream = ffprobe(path, "stream=width,height")["streams"][0]
        self.width, self.height = stream["width"], stream["height"]
        self.rgb = ffmpeg("-i", path, "-f", "rawvideo", "-pix_fmt", "rgb24", "-")
        self.gap = min(max(width // 24, 4), 32)
        self.label = min(max(width // 14, 15), 40)
        self.columns = (self.width - self.gap) // (width + self.gap)

    def cut(self, x, y, w, h):
        rows = [3 * (self.width * row + x) for row in range(y, y + h)]
        return b"".join(self.rgb[row:row + 3 * w] for row in rows)

    def cell(self, index, w, h):
        """The picture and the text under it."""
        x = self.gap + index % self.columns * (w + self.gap)
        y = self.gap + index // self.columns * (h + self.label + self.gap)
        return self.cut(x, y, w, h), self.cut(x, y + h, w, self.label)


def scaled(rgb, sw, sh, w, h):
    """Bilinear: target pixel i lies at i * (source - 1) / target."""
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


@unittest.skipUnless(HAVE_FFMPEG, "needs ffmpeg and ffprobe")
class Sheet(Case):
    def sheet(self, path, width, *args):
        self.ok("sheet", path, "-o", self.path("out.png"), "--width", width, *args)
        return Picture(self.path("out.png"), width)

    def references(self, path, w, h, select):
        """ffmpeg's pictures in RGB, scaled to the library's sample positions."""
        stream = ffprobe(path, "stream=width,height")["streams"][0]
        sw, sh = stream["width"], stream["height"]
        raw = ffmpeg("-i", path, "-map", "0:v", "-fps_mode", "passthrough", "-vf",
                     f"select={select},scale=flags=bilinear+full_chroma_int+accurate_rnd",
                     "-f", "rawvideo", "-pix_fmt", "rgb24", "-")
        return [scaled(raw[i:i + 3 * sw * sh], sw, sh, w, h)
                for i in range(0, len(raw), 3 * sw * sh)]

    def test_key_frames_are_ffmpegs_in_order(self):
        for name, h in {"h264.mp4": 90, "hevc.mp4": 96, "mpeg4.avi": 89, "h263.3gp": 131}.items():
            with self.subTest(name):
                expected = self.references(sample(name), 160, h, "key")
                sheet = self.sheet(sample(name), 160)
                self.assertEqual(sheet.columns, 4)
                rows = (len(expected) + 3) // 4
                self.assertEqual(sheet.height, sheet.gap + rows * (h + sheet.label + sheet.gap))
                for index, own in enumerate(expected):
                    picture, _ = sheet.cell(index, 160, h)
                    self.assertLess(difference(picture, own), 7)
                    if name == "h264.mp4":
                        others = [difference(picture, other) for other in expected if other != own]
                        self.assertGreater(min(others), 20)

    def ink(self, label, width):
        """Columns from the first to the last that has ink."""
        inked = [at // 3 % width for at, value in enumerate(label) if value > 100]
        return max(inked) - min(inked)

    def test_every_columns_and_labels(self):
        sheet = self.sheet(sample("h264.mp4"), 160, "--every", 45, "--columns", 5)
        self.assertEqual((sheet.columns, sheet.height),
                         (5, sheet.gap + 2 * (90 + sheet.label + sheet.gap)))
        expected = self.references(sample("h264.mp4"), 160, 90, r"not(mod(n\,45))")
        self.assertEqual(len(expected), 6)
        labels = set()
        for index, own in enumerate(expected):
            picture, label = sheet.cell(index, 160, 90)
            self.assertLess(difference(picture, own), 7)
            self.assertGreater(max(label), 150)
            labels.add(label)
        self.assertEqual(len(labels), 6)
        counting = self.sheet(sample("mpeg4.avi"), 64, "--every", 1)
        self.assertEqual(len({counting.cell(index, 64, 36)[1] for index in range(30)}), 30)
        late = self.made("late.mkv", "64x48", "-c:v", "ffv1", "-fps_mode", "passthrough",
                         "-frames:v", "2", "-vf", "setpts=N*3661.5/TB")
        hours = self.sheet(late, 160, "--every", 1)
        short, long = (self.ink(hours.cell(index, 160, 120)[1], 160) for index in (0, 1))
        self.assertGreater(long, 1.2 * short)
        ground = sheet.cell(6, 160, 90)[0]
        self.assertEqual(set(ground), {sheet.rgb[0]})
        few = self.sheet(sample("h264.mp4"), 64, "--columns", 100)
        self.assertEqual(few.columns, 8)

    def test_colours_whatever_the_source(self):
        """Flat pictures, coded by the defining equations: matrix, range, depth, subsampling."""
        matrices = {"bt709": (.2126, .0722), "smpte170m": (.299, .114), "unknown": (.299, .114)}
        formats = {"yuv420p": (2, 2, 8), "yuv422p": (2, 1, 8), "yuv444p": (1, 1, 8),
                   "yuv420p10le": (2, 2, 10), "yuv444p16le": (1, 1, 16)}
        colours = [(200, 50, 100), (20, 180, 60), (255, 255, 255), (0, 0, 0), (30, 60, 220)]
        for layout, (across, down, bits) in formats.items():
            for matrix, (kr, kb) in matrices.items():
                for full in True, False:
                    raw = b""
                    for rgb in colours:
                        r, g, b = (c / 255 for c in rgb)
                        y = kr * r + (1 - kr - kb) * g + kb * b
                        u, v = (b - y) / (2 - 2 * kb), (r - y) / (2 - 2 * kr)
                        top, unit = 2 ** bits - 1, 2 ** (bits - 8)
                        coded = ([y * top, u * top + 128 * unit, v * top + 128 * unit] if full else
                                 [unit * (16 + 219 * y), unit * (128 + 224 * u),
                                  unit * (128 + 224 * v)])
                        chroma = 32 * 32 // across // down
                        for value, count in zip(coded, (32 * 32, chroma, chroma)):
                            value = min(round(value), top)
                            raw += value.to_bytes((bits + 7) // 8, "little") * count
                    clip = self.path("flat.mkv")
                    ffmpeg("-f", "rawvideo", "-pix_fmt", layout, "-s", "32x32", "-i", "-", "-c:v",
                           "ffv1", "-strict", "-2", "-colorspace", matrix, "-color_range",
                           "pc" if full else "tv", clip, stdin=raw)
                    sheet = self.sheet(clip, 32, "--every", 1)
                    for index, rgb in enumerate(colours):
                        middle = sheet.cell(index, 32, 32)[0][3 * 32 * 16 + 48:][:3]
                        with self.subTest(layout=layout, matrix=matrix, full=full, rgb=rgb):
                            self.assertLessEqual(max(abs(a - b) for a, b in zip(middle, rgb)), 2)

    def test_shapes(self):
        """Pixels that are no squares, sizes that change, a sliver, hundreds of pictures."""
        wide = self.made("wide.mp4", "64x48", "-c:v", "mpeg4", "-vf", "setsar=2")
        self.assertEqual(self.sheet(wide, 64).height, 2 * 4 + 24 + 15)
        small, large = (self.made(f"{size}.m4v", size, "-f", "m4v") for size in ("64x48", "130x76"))
        with open(small, "rb") as one, open(large, "rb") as two:
            both = self.written("both.m4v", one.read() + two.read())
        sizes = [row.split(",")[2] for row in self.ok("digest", both).splitlines()[1:]]
        self.assertEqual(sizes, ["64x48"] * 10 + ["130x76"] * 10)
        sheet = self.sheet(both, 64, "--every", 10)
        for index, path in enumerate((small, large)):
            expected = self.references(path, 64, 48, r"eq(n\,0)")[0]
            self.assertLess(difference(sheet.cell(index, 64, 48)[0], expected), 7)
        sliver = self.made("sliver.mkv", "512x2", "-c:v", "ffv1", "-frames:v", "1")
        self.assertEqual(self.sheet(sliver, 16).height, 2 * 4 + 1 + 15)
        tall = self.made("tall.mkv", "2x9000", "-c:v", "ffv1", "-frames:v", "1")
        self.fails("sheet", tall, "-o", self.path("tall.png"), says="2x9000")
        # The last row and column of an odd size have chroma of their own.
        odd = self.made("odd.mkv", "16x16", "-frames:v", "1", "-c:v", "ffv1", "-vf",
                        "scale=3:3,format=gbrp,geq=r=255*lt(max(X\\,Y)\\,2):g=0:b=255-r(X\\,Y)")
        picture = self.sheet(odd, 16, "--every", 1).cell(0, 16, 16)[0]
        for corner in 15, 15 * 16, 16 * 16 - 1:
            red, _, blue = picture[3 * corner:3 * corner + 3]
            self.assertLess(red, blue)
        many = self.made("many.avi", "32x24", "-c:v", "mjpeg", "-pix_fmt", "yuvj420p", seconds=40)
        self.assertEqual(self.sheet(many, 32).height, 4 + 100 * (24 + 15 + 4))


class Failures(Case):
    def everywhere(self, path, says=""):
        for command in ["probe", path], ["probe", path, "--json"], ["digest", path], \
                ["sheet", path, "-o", self.path("out.png")]:
            with self.subTest(command):
                self.fails(*command, says=says or path)

    def test_files_that_are_no_media(self):
        self.everywhere(self.path("missing.mp4"))
        self.everywhere(self.directory)
        self.everywhere(self.written("empty.mp4", b""))
        self.everywhere(self.written("words.txt", b"nothing to see here\n" * 99))
        self.everywhere(self.written("noise.avi", random.Random(1).randbytes(20000)))
        self.everywhere(self.written("line\nfeed: 1.mp4", b""), says="line feed: 1.mp4")

    def test_truncated_files(self):
        for name, size in {"h264.mp4": 120000, "mpeg4.avi": 20000, "mpeg4.mp4": 30000}.items():
            with open(sample(name), "rb") as file:
                self.everywhere(self.written(name, file.read(size)))
        path = self.path("h264.mp4")
        whole = run("digest", sample("h264.mp4")).stdout.splitlines()
        part = self.fails("digest", path).splitlines()
        self.assertGreater(len(part), 50)
        self.assertEqual(part[:50], whole[:50])
        units = json.loads(self.fails("probe", path, "--json"))["tracks"][0]["units"]
        self.assertGreater(len(units), 50)
        self.assertEqual(sorted(os.listdir(self.directory)), ["h264.mp4", "mpeg4.avi", "mpeg4.mp4"])

    @unittest.skipUnless(HAVE_FFMPEG, "needs ffmpeg")
    def test_no_video_and_damaged_video(self):
        audio = self.path("audio.m4a")
        ffmpeg("-i", sample("h264.mp4"), "-vn", "-c", "copy", audio)
        self.assertIn("AUD_AAC", self.ok("probe", audio))
        for command in ["digest", audio], ["sheet", audio, "-o", self.path("out.png")]:
            self.fails(*command, says="no video")
        with open(sample("mpeg4.avi"), "rb") as file:
            data = bytearray(file.read())
        damaged = packets(sample("mpeg4.avi"))[12]
        at = int(damaged["pos"]) + 8
        data[at:at + int(damaged["size"])] = b"\xaa" * int(damaged["size"])
        out = self.fails("digest", self.written("damaged.avi", data), says="packet 12")
        self.assertGreater(len(out.splitlines()), 28)

    def test_output_that_cannot_be_written(self):
        old = self.written("old.png", b"old")
        limit = lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (4096, 4096))
        ignore = ["env", "--ignore-signal=XFSZ", TAVU, "sheet", sample("h264.mp4"), "-o", old]
        result = subprocess.run(ignore, capture_output=True, text=True, preexec_fn=limit)
        self.assertEqual((result.returncode, result.stderr.count("\n")), (1, 1), result.stderr)
        self.fails("sheet", self.written("bad.mp4", b"bad"), "-o", old)
        os.mkfifo(self.path("pipe"))
        for target in "missing/out.png", "old.png/out.png", ".", "pipe":
            self.fails("sheet", sample("h264.mp4"), "-o", os.path.join(self.directory, target),
                       says=target)
        with open(old, "rb") as file:
            self.assertEqual(file.read(), b"old")
        self.assertEqual(sorted(os.listdir(self.directory)), ["bad.mp4", "old.png", "pipe"])
        self.ok("sheet", sample("h264.mp4"), "-o", old)
        self.assertGreater(os.path.getsize(old), 4096)
        with open("/dev/full", "w") as full:
            result = subprocess.run([TAVU, "digest", sample("h264.mp4")], stdout=full,
                                    stderr=subprocess.PIPE, text=True)
        self.assertEqual((result.returncode, result.stderr.count("\n")), (1, 1), result.stderr)

    def test_usage(self):
        clip, out = sample("h264.mp4"), self.path("out.png")
        for args in [], ["paint", clip], ["probe"], ["probe", clip, "extra"], ["sheet", clip], \
                ["sheet", clip, "-o", out, "--columns", "0"], ["digest", "--json", clip], \
                ["sheet", clip, "-o", out, "--every", "0"], \
                ["sheet", clip, "-o", out, "--every", "2x"], \
                ["sheet", clip, "-o", out, "--width", "1"]:
            with self.subTest(args):
                self.fails(*args, status=2)
        self.assertEqual(os.listdir(self.directory), [])
        self.assertRegex(self.ok("--version"), r"\A\d+\.\d+\.\d+\n\Z")
        for command in "probe", "sheet", "digest":
            self.assertIn(f"Example:\n  tavu {command} samples/", self.ok(command, "--help"))


if __name__ == "__main__":
    unittest.main()
