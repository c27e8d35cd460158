"""Errors: one line that names the file, an exit status, and no partly written file."""

import functools
import json
import os
import random
import resource

from tool_case import (CLIP, COMMANDS, PLAYLISTS, Case, ffmpeg, needs_ffmpeg, packets, png_head,
                       read, sample)

# A line feed, escape sequences of both kinds, bytes that are not UTF-8, and printable characters.
CONTROLS = b"a\n\x1b[1m\x7f\xc2\x9b2J\xff\xc0\xaf\xed\xa0\x80\xc3: \xc3\xa9\xf0\x9f\x8e\xac"
SHOWN = r"a\x0a\x1b[1m\x7f\xc2\x9b2J\xff\xc0\xaf\xed\xa0\x80\xc3: é🎬"


class Failures(Case):
    def everywhere(self, path, says=""):
        for command in "probe", "probe --json", "digest", "sheet -o out.png":
            self.fails(*command.split(), path, says=says or path, cwd=self.directory)

    def test_files_that_are_not_media(self):
        self.everywhere(self.path("missing.mp4"))
        self.everywhere(self.directory)
        self.everywhere(self.written("empty.mp4", b""))
        self.everywhere(self.written("words.txt", b"nothing to see here\n" * 99))
        self.everywhere(self.written("noise.avi", random.Random(1).randbytes(20000)))
        self.everywhere(self.written(CONTROLS, b""), says=SHOWN)

    def test_truncated_files(self):
        for name, size in {"h264.mp4": 120000, "mpeg4.avi": 20000, "mpeg4.mp4": 30000}.items():
            self.everywhere(self.written(name, read(sample(name))[:size]))
        path = self.path("h264.mp4")
        part, whole = self.fails("digest", path), self.ok("digest", CLIP)
        self.assertGreater(part.count("\n"), 50)
        self.assertEqual(part.splitlines()[:50], whole.splitlines()[:50])
        units = json.loads(self.fails("probe", path, "--json"))["tracks"][0]["units"]
        self.assertGreater(len(units), 50)
        self.assertEqual(self.files(), ["h264.mp4", "mpeg4.avi", "mpeg4.mp4"])

    @needs_ffmpeg
    def test_containers_that_end_early(self):
        """Their demuxers treat any end as a regular one."""
        video = {"x.mkv": ["-c", "copy"], "x.ogv": ["-an", "-c:v", "libtheora"],
                 "live.mkv": ["-c", "copy", "-live", "1"]}
        for name, options in video.items():
            ffmpeg("-i", CLIP, *options, self.path(name))
        for path in *map(self.path, video), sample("wmv1.wmv"), sample("div3.avi"):
            self.ok("probe", path)
            cut = self.written("cut" + path[-4:], read(path)[:os.path.getsize(path) // 2])
            out = self.fails("digest", cut, says="truncated: " if "live" not in path else cut)
            self.assertGreater(len(out.splitlines()), 5, path)
            self.fails("probe", cut, says=cut)

    def test_no_other_file_is_read(self):
        """Neither through a playlist nor through a name that is a pattern."""
        for name, text in PLAYLISTS.items():
            path = self.written(name, text.format(CLIP).encode())
            self.everywhere(path, says="only the named file")
        picture = b"P6 2 2 255\n" + bytes(12)
        self.written("img0.ppm", picture)
        self.fails("convert", self.path("img%d.ppm"), self.path("out.ppm"), says="No such file")
        self.ok("convert", self.written("img%d.ppm", picture), self.path("out.ppm"))
        head = b"\0\0\2" + bytes(9) + b"\2\0\2\0\x18\0"  # a format recognised only by file name
        self.ok("convert", self.written("x.tga", head + bytes(12)), self.path("out.png"))

    def test_large_pictures_are_refused_before_allocation(self):
        large = self.written("large.png", png_head(16000, 16000))
        for options, status in {"": 1, "--size 60000x60000 --cs yuv400": 2,
                                "--resize 60000x60000": 2}.items():
            self.fails("convert", large, self.path("out.png"), *options.split(), status=status,
                       says=" GB of memory; the limit is 134217728")

    @needs_ffmpeg
    def test_no_video_and_damaged_video(self):
        audio = self.path("audio.m4a")
        ffmpeg("-i", CLIP, "-vn", "-c", "copy", audio)
        self.assertIn("AUD_AAC", self.ok("probe", audio))
        self.fails("digest", audio, says="no video")
        self.fails("sheet", audio, "-o", self.path("out.png"), says="no video")
        self.fails("probe", audio, "--plot", self.path("out.png"), says="no video units")
        self.assertEqual(self.files(), ["audio.m4a"])
        data = bytearray(read(sample("mpeg4.avi")))
        packet = packets(sample("mpeg4.avi"))[12]
        at, size = int(packet["pos"]) + 8, int(packet["size"])
        data[at:at + size] = b"\xaa" * size
        out = self.fails("digest", self.written("damaged.avi", data), says="packet 12")
        self.assertGreater(len(out.splitlines()), 28)

    def test_output_that_cannot_be_written(self):
        old = self.written("old.png", b"old")
        limit = lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (4096, 4096))
        # SIGXFSZ stays ignored, as in Python, so that the write fails.
        self.fails("sheet", CLIP, "-o", old, preexec_fn=limit, restore_signals=False)
        self.fails("sheet", self.written("bad.mp4", b"bad"), "-o", old)
        os.mkfifo(self.path("pipe"))
        for target in "missing/out.png", "old.png/out.png", ".", "pipe":
            self.fails("sheet", CLIP, "-o", self.path(target), says=target)
        self.assertEqual(read(old), b"old")
        self.assertEqual(self.files(), ["bad.mp4", "old.png", "pipe"])
        self.ok("sheet", CLIP, "-o", old)
        self.assertGreater(os.path.getsize(old), 4096)
        with open("/dev/full", "w") as full:
            self.fails("digest", CLIP, stdout=full)

    def test_inputs_are_not_written(self):
        """Under any of their names."""
        clip = self.written("clip.mp4", read(CLIP))
        os.link(clip, self.path("hard"))
        os.symlink("clip.mp4", self.path("soft"))
        kept = self.files()
        refused = functools.partial(self.fails, status=2, says="it is the input")
        for name in "clip.mp4", "./clip.mp4", "hard", "soft", "/proc/self/cwd/soft":
            name = self.path(name)
            for args in ["convert", clip, name], ["sheet", clip, "-o", name], \
                    ["probe", self.path("hard"), "--plot", name], \
                    ["compare", clip, CLIP, "-o", name], ["compare", CLIP, clip, "-o", name]:
                refused(*args, cwd=self.directory)
        with open(clip, "r+b") as file:
            refused("convert", "-", clip, stdin=file)
            refused("convert", clip, "-", stdout=file)
            refused("convert", clip, f"/dev/fd/{file.fileno()}", pass_fds=[file.fileno()])
        self.assertEqual(self.files(), kept)
        self.assertEqual(self.ok("digest", clip), self.ok("digest", CLIP))

    def test_targets_keep_their_modes_and_names(self):
        clip, old = sample("mpeg4.avi"), self.written("old.png", b"old")
        os.link(old, self.path("hard.png"))
        os.symlink("old.png", self.path("soft.png"))
        os.chmod(old, 0o600)
        self.written(".tavu-1.tmp", b"left over")
        self.addCleanup(os.umask, os.umask(0o022))
        for name, of, mode in ("soft.png", "old.png", 0o600), ("new.png", "new.png", 0o644):
            self.ok("sheet", clip, "-o", self.path(name))
            self.assertEqual(os.lstat(self.path(of)).st_mode & 0o777, mode)
        self.assertTrue(os.path.islink(self.path("soft.png")))
        self.assertEqual(os.path.getsize(self.path("hard.png")), 3)
        self.assertGreater(os.path.getsize(old), 3)

    def test_usage(self):
        self.written("clip", read(CLIP))
        for args, says in {
                **dict.fromkeys(["", "paint clip", "probe", "sheet clip", "digest --csv clip",
                                 "sheet clip -o out --columns 0", "sheet clip -o out --every 0",
                                 "sheet clip -o out --every 2x", "sheet clip -o out --width 1",
                                 "sheet clip -o - --json", "bench --csv --json", "bench none",
                                 "compare - -", "--version probe"], ""),
                "--json probe clip": "got --json", "sheet --widht 9 clip": "unknown option --widht",
                "sheet clip --width -o out": "--width: expected a value",
                "sheet clip -o out --width 9px": "from 16 to 4096, got 9px",
                "sheet clip -qo": "-o: expected a value", "probe clip --json=no": "takes no value",
                "sheet clip --width 20 --width=20": "--width: given twice",
                "convert clip out --list": "IN has no effect with --list",
                "convert --list -q": "--quiet has no effect with --list",
                "bench --list sad": "PATTERN has no effect with --list",
                "convert clip out --resize 100000x9": "from 1 to 65535",
                "convert clip out --frame -1": "got -1",
                "probe clip extra": "unexpected argument extra"}.items():
            self.fails(*args.split(), status=2, says=says, cwd=self.directory)
        self.assertEqual(self.files(), ["clip"])
        self.assertRegex(self.ok("--version"), r"\Atavu \d+\.\d+\.\d+ \(library dated .+\)\n\Z")
        for command in COMMANDS:
            self.assertIn(f"Example:\n  tavu {command} ", self.ok(command, "--help"))
