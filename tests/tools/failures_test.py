"""What goes wrong: one line that names the file, a status, and no half-written file."""

import json
import os
import random
import resource
import subprocess

from tool_case import COMMANDS, TAVU, Case, ffmpeg, needs_ffmpeg, packets, run, sample


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

    @needs_ffmpeg
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
                ["sheet", clip, "-o", out, "--columns", "0"], ["digest", "--csv", clip], \
                ["sheet", clip, "-o", "-", "--json"], ["bench", "--csv", "--json"], \
                ["bench", "no such kernel"], ["compare", "-", "-"], \
                ["sheet", clip, "-o", out, "--every", "0"], \
                ["sheet", clip, "-o", out, "--every", "2x"], \
                ["sheet", clip, "-o", out, "--width", "1"]:
            with self.subTest(args):
                self.fails(*args, status=2)
        self.assertEqual(os.listdir(self.directory), [])
        self.assertRegex(self.ok("--version"), r"\Atavu \d+\.\d+\.\d+ \(library of .+\)\n\Z")
        for command in COMMANDS:
            self.assertIn(f"Example:\n  tavu {command} ", self.ok(command, "--help"))
