"""tavu probe, checked by ffprobe, and rare parameter sets."""

import re

from tool_case import (CLIP, NAMES, Case, decoded, ffmpeg, needs_ffmpeg, packets, read, run,
                       sample, stream)


@needs_ffmpeg
class Probe(Case):
    def check_units(self, units, path):
        for unit, packet in zip(units, packets(path), strict=True):
            self.assertEqual(unit["bytes"], int(packet["size"]))
            self.assertEqual(unit["container_key"], "K" in packet["flags"])
            if "pts_time" in packet:
                self.assertAlmostEqual(unit["time"], float(packet["pts_time"]), places=5)

    def test_units_equal_the_containers_and_detector_agrees(self):
        for name in NAMES:
            with self.subTest(name):
                units = self.video(sample(name))["units"]
                self.check_units(units, sample(name))
                for unit in units:
                    self.assertEqual(unit["detector_key"], unit["container_key"])

    def test_key_flags_that_the_detector_does_not_follow(self):
        ffmpeg("-i", sample("hevc.mp4"), "-c", "copy", self.path("sets.h265"))
        ffmpeg("-i", sample("h263.3gp"), "-c", "copy", self.path("raw.h263"))
        self.made("cra.mp4", "64x48", "-c:v", "libx265", "-tag:v", "hvc1", "-pix_fmt", "yuv420p",
                  "-x265-params", "log-level=error:keyint=5:min-keyint=5:scenecut=0:pools=none:"
                  "frame-threads=1:info=0:open-gop=1:bframes=2")
        self.made("open.h264", "64x48", "-c:v", "libx264", "-x264-params",
                  "keyint=5:min-keyint=1:open-gop=1:scenecut=0:bframes=2")
        # Each key unit begins with a parameter set, from which the detector decides. Later key
        # frames are clean random access pictures, or intra pictures with a recovery point message,
        # not IDR slices. Without a container, ffmpeg flags every H.263 picture.
        for name, keys in {"sets.h265": (4, 0), "cra.mp4": (2, 1), "open.h264": (2, 1),
                           "raw.h263": (24, 4)}.items():
            with self.subTest(name):
                track = self.video(self.path(name))
                self.check_units(track["units"], self.path(name))
                agreements = sum(unit["container_key"] == unit["detector_key"]
                                 for unit in track["units"])
                names = "container_keys", "detector_keys", "agreements"
                self.assertEqual(tuple(map(track["summary"].get, names)), (*keys, agreements))

    def test_tracks_are_named(self):
        expected = {"h264.h264": ("H264", 104), "hevc.mp4": ("hvc1", 120),
                    "wmv2.avi": ("WMV2", 106), "mpeg4.avi": ("FMP4", 102),
                    "h263.3gp": ("s263", 103), "div3.avi": ("DIV3", 110)}
        for name, (fourcc, media_type) in expected.items():
            names = {"fourcc": fourcc, "media_type": media_type,
                     "fourcc_number": int.from_bytes(fourcc.encode(), "little")}
            track = self.video(sample(name))
            self.assertEqual(track | names | stream(sample(name), "width,height"), track)
        self.written("colon:1.mp4", read(CLIP))
        text = run("probe", "colon:1.mp4", cwd=self.directory).stdout
        self.assertIn("track 0: video  avc1  0x31637661  media type 104 VID_H264  320x180", text)
        self.assertIn("track 1: audio  mp4a  0x6134706d  media type 306 AUD_AAC", text)
        self.assertIn("240 units, 8 container key frames, 8 detector key frames, 240 agree", text)

    def test_plot(self):
        """A red bar for each key frame, blue bars for the others."""
        self.ok("probe", CLIP, "--plot", self.path("plot.png"))
        rgb = decoded(self.path("plot.png"), "-vf", "crop=1200:420:0:0")  # without the legend
        columns = [{rgb[at:at + 3] for at in range(3 * x, len(rgb), 3600)} for x in range(1200)]
        red = [b"\xcc\x33\x11" in column for column in columns]
        self.assertEqual(sum(b and not a for a, b in zip(red, red[1:])), 8)
        self.assertGreater(sum(b"\x77\x99\xbb" in column for column in columns), 200)
        self.fails("probe", CLIP, "--plot", self.path("x.png"), says="gnuplot",
                   env={"PATH": self.directory})
        self.assertEqual(self.files(), ["plot.png"])

    def check_sequence(self, path):
        sequence = self.video(path)["sequence"]
        sequence["level"] = sequence["level_idc"]
        self.assertEqual(sequence | stream(path, "profile,level,width,height"), sequence)

    def test_sequence_parameter_sets(self):
        x264 = ["-c:v", "libx264", "-frames:v", "2", "-pix_fmt"]
        self.check_sequence(CLIP)
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
        rest = re.search(rb"\0\0\x01\x68.*?(?=\0\0\x01\x67)", read(sample("h264.h264")), re.S)[0]
        return self.written("rare.h264", b"\0\0\0\1" + escaped + b"\0" + rest)

    def test_sequences_with_rare_fields(self):
        self.check_sequence(self.rare_sequence(66, "", 0))
        self.check_sequence(self.rare_sequence(100, "010", 8))
        self.check_sequence(self.rare_sequence(244, "00100" + "0", 12))
        # ffmpeg does not support separate colour planes.
        sequence = self.video(self.rare_sequence(244, "00100" + "1", 12))["sequence"]
        self.assertEqual((sequence["width"], sequence["height"]), (320 - 9, 256 - 4 * 2))

    def test_lengths_and_parameter_sets_that_do_not_fit(self):
        data = bytearray(read(CLIP))
        at = int(packets(CLIP)[1]["pos"])
        data[at:at + 4] = b"\xff\xff\xff\xff"
        out = self.fails("probe", self.written("length.mp4", data), says="unit 1: a NAL unit")
        self.assertIn("240 units, 8 container key frames, 8 detector key frames", out)
        self.fails("digest", self.path("length.mp4"), says="packet 1:")
        avcc = data.index(b"avcC") + 4
        data[avcc + 6:avcc + 8] = b"\x7f\xff"
        self.fails("probe", self.written("set.mp4", data), says="parameter set")
        self.ok("probe", self.written("slice.h264", b"\0\0\1\x65"))  # ends with its first byte
        self.assertEqual({len(repr(unit["time"]).split(".")[1]) for unit in
                          self.video(sample("wmv1.wmv"))["units"]}, {1})
