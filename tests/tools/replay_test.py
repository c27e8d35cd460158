"""Every command on damaged and odd files ends in time, with a status and at most one error line."""

import concurrent.futures
import json
import os
import random
import re
import struct
import subprocess

from tool_case import NAMES, PLAYLISTS, TAVU, Case, png_head, read, sample

SEED = 20  # the same files in every run
SECONDS, MEMORY = 30, 1 << 20  # limits of processor time and, in KiB, of memory
RAW = ["h264", "hevc", "m4v", "h263", "h261", "mjpeg", "mpg", "vc1", "aac", "mp3", "ac3", "ts",
       "mkv", "yuv"]
SIZES = [(1, 1), (1, 32768), (32768, 1), (40000, 16), (16, 40000), (12000, 16), (16, 12000),
         (200000, 1), (3, 66000), (257, 255)]
VARIANTS = {
    "probe": [[], ["--json"], ["--plot", "OUT"]],
    "digest": [[], ["--json"]],
    "sheet": [["-o", "OUT"], ["-o", "OUT", "--every", "1", "--width", "64", "--json"],
              ["-o", "OUT", "--every", "2", "--columns", "1", "--width", "16"]],
    "compare": [["OTHER"], ["OTHER", "-o", "OUT", "--json"], ["FILE", "-o", "OUT"]],
    "convert": [["OUT"], ["OUT", "--one-pass", "--resize", "11000x16"],
                ["OUT.png", "--one-pass", "--resize", "16x8000", "--to", "rgba8888"],
                ["OUT", "--one-pass", "--resize", "8000x64"], ["OUT", "--to", "rgba5658"],
                ["OUT.png", "--resize", "65x33", "--to", "bgra8888"],
                ["OUT", "--to", "rgb565a8", "--frame", "2"], ["OUT", "--to", "yuv444a8", "--json"],
                ["OUT", "--resize", "1x1", "--one-pass"]]}


def damaged(dice):
    """Truncated files; files with wrong bytes in the header or anywhere, or with a zeroed part."""
    for name in NAMES:
        whole = read(sample(name))
        size = len(whole)
        yield f"truncated-{name}", whole[:dice.randrange(size)]
        for kind, count, end in ("head1", 8, 4096), ("head2", 8, 4096), ("body", size // 100, size):
            data = bytearray(whole)
            for _ in range(count):
                data[dice.randrange(end)] = dice.randrange(256)
            yield f"{kind}-{name}", data
        at = dice.randrange(size - 2048)
        yield f"zeroed-{name}", whole[:at] + bytes(2048) + whole[at + 2048:]


def tiny(dice):
    for name in RAW:
        for size, head in (0, b""), (4, b"\0\0\1\x65"), (dice.randrange(1, 17), b""), \
                (16, b"\0\0\0\1\x67\x64"):
            yield f"{size}-{head.hex()}.{name}", head + dice.randbytes(size - len(head))


def crafted(dice):
    for w, h in SIZES:
        yield f"{w}x{h}.ppm", f"P6 {w} {h} 255\n".encode() + dice.randbytes(3 * w * h)
        frame = b"FRAME\n" + dice.randbytes(w * h + 2 * ((w + 1) // 2) * ((h + 1) // 2))
        head = f"YUV4MPEG2 W{w} H{h} F25:1 C420jpeg\n".encode()
        yield f"{w}x{h}.y4m", head + 3 * frame + frame[:9]
    for w, h in (16000, 16000), (2 ** 31 - 1, 2 ** 31 - 1), (1, 2 ** 31 - 1), (0, 5), (40000, 300):
        yield f"{w}x{h}.png", png_head(w, h)
        bmp = b"BM" + struct.pack("<4I2i2H", 60000, 0, 54, 40, w, -h, 1, 24)
        yield f"{w}x{h}.bmp", bmp + bytes(3024)
        yield f"{w}x{h}-head.ppm", f"P6 {w} {h} 255\n".encode() + bytes(99)
    for name, text in PLAYLISTS.items():
        yield name, text.format(sample("mpeg4.avi")).encode()
    for name, head in {"x.mkv": "1a45dfa3 84 4286 8101 18538067 01ffffffffffffff 1f43b675 ff",
                       "y.mkv": "1a45dfa3 40", "x.mp4": "00000010 66747970 00000001 6d646174 ffff",
                       "y.mp4": "00000001 66747970 7fffffffffffffff", "x.ogg": "4f676753 00 ff",
                       "x.avi": "52494646 ffffffff 41564920", "y.avi": "52494646 00000000 41564920",
                       "x.wmv": "3026b2758e66cf11a6d900aa0062ce6c ffffffffffffff7f"}.items():
        yield name, bytes.fromhex(head) + dice.randbytes(500)


class Replay(Case):
    def check(self, args, target, leaks):
        """Leaks are optional, because looking for them takes longer than most runs."""
        sanitizer = f"exitcode=99:detect_leaks={int(leaks)}"
        environment = os.environ | {"ASAN_OPTIONS": sanitizer, "UBSAN_OPTIONS": sanitizer}
        with open(target + ".out", "wb") as out, open(target + ".err", "wb") as err:
            process = subprocess.Popen(["prlimit", f"--cpu={SECONDS}", TAVU, *args], stdout=out,
                                       stdin=subprocess.DEVNULL, stderr=err, env=environment)
            _, status, usage = os.wait4(process.pid, 0)
            process.returncode = os.waitstatus_to_exitcode(status)
        message, text = read(target + ".err"), read(target + ".out")
        left = os.listdir(target)
        right = {0: rb"", 1: rb"tavu: .*\n"}.get(process.returncode, b"(?!)")
        if not re.fullmatch(right, message) or usage.ru_maxrss > MEMORY or \
                len(left) != (target + "/out" in " ".join(args) and process.returncode == 0):
            self.faults.append((args, process.returncode, message, usage.ru_maxrss, left))
        if "--json" in args and text:
            json.loads(text)
        for name in left:
            os.remove(os.path.join(target, name))

    def replay(self, number, name, data):
        path, target = self.written(name, data), self.path(f"target{number}")
        os.mkdir(target)
        words = {"OUT": target + "/out", "OUT.png": target + "/out.png", "FILE": path,
                 "OTHER": sample("mpeg4.avi")}
        for index, (command, variants) in enumerate(VARIANTS.items()):
            # Variants that depend on the size of pictures get every size.
            every = command == "convert" and name.endswith(".ppm") and "head" not in name
            for variant in variants if every else [variants[number % len(variants)]]:
                self.check([command, path, *(words.get(word, word) for word in variant)], target,
                           index == number % len(VARIANTS))
        os.remove(path)

    def test_no_file_breaks_a_command(self):
        dice = random.Random(SEED)
        files = [*damaged(dice), *tiny(dice), *crafted(dice)]
        dice.shuffle(files)  # so that every kind of file gets every variant and check for leaks
        self.assertGreater(len(files), 150)
        self.assertEqual(len(files), len(dict(files)))
        self.faults = []
        with concurrent.futures.ThreadPoolExecutor(2) as pool:
            list(pool.map(self.replay, range(len(files)), *zip(*files)))
        self.assertEqual(self.faults, [])
