"""Standard streams, terminals and signals."""

import json
import os
import pty
import re
import select
import signal
import subprocess
import time

from tool_case import TAVU, Case, run, sample

# By default they do not end a program, or cannot be caught; sanitizers take four for themselves.
SURVIVED = {signal.SIGCHLD, signal.SIGCONT, signal.SIGSTOP, signal.SIGTSTP, signal.SIGTTIN,
            signal.SIGTTOU, signal.SIGURG, signal.SIGWINCH, signal.SIGKILL, signal.SIGSEGV,
            signal.SIGBUS, signal.SIGFPE, signal.SIGILL}
ENDLESS = ["--size", "64x64", "--cs", "yuv400", "--frame", 50_000_000]


class Streams(Case):
    def piped(self, *args, source):
        with open(source, "rb") as file:
            result = subprocess.run([TAVU, *args], input=file.read(), capture_output=True)
        self.assertEqual((result.returncode, result.stderr), (0, b""))
        return result.stdout

    def test_standard_input_is_like_a_file(self):
        for name in "h264.mp4", "h264.h264", "wmv2.avi":  # tables at the end, none, at the front
            for command in "probe", "digest":
                expected = self.ok(command, sample(name)).encode()
                self.assertEqual(self.piped(command, "-", source=sample(name)), expected)
                with open(sample(name)) as file:
                    self.assertEqual(run(command, "-", stdin=file).stdout.encode(), expected)
        clip = sample("h264.mp4")
        total = self.piped("compare", clip, "-", source=clip).split()[-4:]
        self.assertEqual(total, [b"0", b"0", b"inf", b"0"])
        self.fails("probe", "-", says="standard input: not a media", stdin=subprocess.DEVNULL)

    def test_standard_output_takes_the_same_bytes(self):
        clip = sample("h264.mp4")
        for args, option in (["sheet", clip], ["-o"]), (["convert", clip], []), \
                (["compare", clip, sample("h264.h264")], ["-o"]), (["probe", clip], ["--plot"]):
            quiet = self.ok(*args, *option, self.path("out.bin"), "--quiet")
            self.assertEqual(quiet, "")
            with open(self.path("out.bin"), "rb") as file:
                self.assertEqual(self.piped(*args, *option, "-", source=clip), file.read(), args)
            self.fails(*args, *option, "-", "--json", status=2)
        self.assertEqual(os.listdir(self.directory), ["out.bin"])

    def test_quiet(self):
        clip = sample("mpeg4.avi")
        for args in ["probe", clip], ["digest", clip], ["compare", clip, clip], \
                ["sheet", clip, "-o", self.path("a.png")], ["convert", clip, self.path("b.png")], \
                ["bench", "sad2x2"]:
            self.assertEqual(self.ok(*args, "-q"), "")
            self.assertGreater(len(self.ok(*args)), 10)
            self.assertEqual(keys_only(self.ok(*args, "-q", "--json")),
                             keys_only(self.ok(*args, "--json")))


def keys_only(text):
    return list(json.loads(text))


class Signals(Case):
    def setUp(self):
        super().setUp()
        self.raw = self.path("endless.yuv")
        with open(self.raw, "wb") as file:
            file.truncate(64 * 64 * (ENDLESS[-1] + 1))  # without blocks on the disk

    def start(self, *args, **options):
        command = [TAVU, "convert", self.raw, *args, *ENDLESS]
        return subprocess.Popen([*map(str, command)], **options)

    def test_signals_leave_no_file(self):
        self.written("out.rgb", b"old")
        for number in set(signal.Signals) - SURVIVED:
            process = self.start(self.path("out.rgb"))
            while len(os.listdir(self.directory)) < 3:
                self.assertIsNone(process.poll())
                time.sleep(0.005)
            process.send_signal(number)
            self.assertEqual(process.wait(60), -number, number)
            self.assertEqual(sorted(os.listdir(self.directory)), ["endless.yuv", "out.rgb"])

    def test_reader_that_goes_away(self):
        clip = sample("h264.mp4")
        read, write = os.pipe()
        os.close(read)
        for args in ["probe", clip], ["compare", clip, clip, "-o", self.path("heat.png")]:
            self.assertEqual(run(*args, capture_output=False, stdout=write).returncode,
                             -signal.SIGPIPE)
        self.assertEqual(os.listdir(self.directory), ["endless.yuv"])

    def on_terminal(self, *args, until, seconds=60, **variables):
        """What a command writes to a terminal, until it ends or has written some text."""
        environment = {**os.environ, "TERM": "xterm", **variables}
        terminal, end = pty.openpty()
        with subprocess.Popen([TAVU, *map(str, args)], stdin=end, stdout=end, stderr=end,
                              env=environment) as process:
            os.close(end)
            text, start = "", time.monotonic()
            while not re.search(until, text) and time.monotonic() < start + seconds:
                if select.select([terminal], [], [], 0.05)[0]:
                    try:
                        text += os.read(terminal, 4096).decode()
                    except OSError:  # the other end is closed
                        break
            process.kill()
        os.close(terminal)
        return text

    def test_progress(self):
        args = ["convert", self.raw, self.path("out.rgb"), *ENDLESS]
        line = r"\d+ frames, \d+/s, \d+ %, \d+:\d\d left"
        self.assertRegex(self.on_terminal(*args, until=line), line)
        self.assertEqual(self.on_terminal(*args, "-q", until=line, seconds=1.5), "")

    def test_colours_and_binary_data_on_terminals(self):
        missing = ["probe", self.path("none")]
        self.assertIn("\033[", self.on_terminal(*missing, until="No such file.*\n"))
        clip = ["probe", sample("h263.3gp")]
        self.assertIn("\033[", self.on_terminal(*clip, until="agreements"))
        self.assertNotIn("\033", self.on_terminal(
            "convert", self.raw, self.path("out.rgb"), *ENDLESS, until="%", seconds=1.5,
            TERM="dumb"))
        for args, until in (missing, "No such file.*\n"), (clip, "agreements"):
            for variables in {"NO_COLOR": "1"}, {"TERM": "dumb"}:
                self.assertNotIn("\033", self.on_terminal(*args, until=until, **variables))
        self.assertRegex(self.on_terminal("sheet", sample("h264.mp4"), "-o", "-", until="\n"),
                         "tavu:.* standard output: cannot write: it is a terminal")
        self.assertRegex(self.on_terminal("probe", "-", until="\n"), "standard input: it is a term")
