"""Standard streams, terminals and signals."""

import os
import pty
import re
import select
import signal
import subprocess
import time

from tool_case import CLIP, COMMANDS, TAVU, Case, read, run, sample

# By default these do not end a program, or cannot be caught; sanitizers handle the last four.
SURVIVED = {signal.SIGCHLD, signal.SIGCONT, signal.SIGSTOP, signal.SIGTSTP, signal.SIGTTIN,
            signal.SIGTTOU, signal.SIGURG, signal.SIGWINCH, signal.SIGKILL, signal.SIGSEGV,
            signal.SIGBUS, signal.SIGFPE, signal.SIGILL}


class Streams(Case):
    def piped(self, *args, source):
        return self.ok(*args, input=read(source), text=False)

    def test_standard_input_gives_the_same_as_a_file(self):
        for name in "h264.mp4", "h264.h264", "wmv2.avi":  # index last, none, first
            for command in "probe", "digest":
                expected = self.ok(command, sample(name)).encode()
                self.assertEqual(self.piped(command, "-", source=sample(name)), expected)
                with open(sample(name)) as file:
                    self.assertEqual(run(command, "-", stdin=file, text=False).stdout, expected)
        total = self.piped("compare", CLIP, "-", source=CLIP).split()[-4:]
        self.assertEqual(total, [b"0", b"0", b"inf", b"0"])
        self.fails("probe", "-", says="standard input: not a media", stdin=subprocess.DEVNULL)

    def test_standard_output_gets_the_same_bytes(self):
        for args in ["sheet", CLIP, "-o"], ["convert", CLIP], ["probe", CLIP, "--plot"], \
                ["compare", CLIP, sample("h264.h264"), "-o"]:
            self.assertEqual(self.ok(*args, self.path("out.bin"), "--quiet"), "")
            self.assertEqual(self.piped(*args, "-", source=CLIP), read(self.path("out.bin")), args)
            self.fails(*args, "-", "--json", status=2)
        self.assertEqual(self.files(), ["out.bin"])

    def test_quiet(self):
        for command, args in COMMANDS.items():
            loud, quiet = [command, *args], [command, *args, "-q"]
            self.assertEqual(self.ok(*quiet, cwd=self.directory), "")
            self.assertGreater(len(self.ok(*loud, cwd=self.directory)), 10)
            self.assertEqual(list(self.json(*quiet, cwd=self.directory)),
                             list(self.json(*loud, cwd=self.directory)))


class Signals(Case):
    def setUp(self):
        super().setUp()
        self.raw = self.written("endless.yuv", b"")
        os.truncate(self.raw, 64 * 64 * 50_000_001)  # a sparse file
        self.endless = ["convert", self.raw, self.path("out.rgb"), "--size", "64x64", "--cs",
                        "yuv400", "--frame", "50000000"]

    def test_signals_leave_no_file(self):
        self.written("out.rgb", b"old")
        for number in set(signal.Signals) - SURVIVED:
            process = subprocess.Popen([TAVU, *self.endless])
            while len(self.files()) < 3:
                self.assertIsNone(process.poll())
                time.sleep(0.005)
            process.send_signal(number)
            self.assertEqual(process.wait(60), -number, number)
            self.assertEqual(self.files(), ["endless.yuv", "out.rgb"])

    def test_reader_that_closes_the_pipe(self):
        read, write = os.pipe()
        os.close(read)
        for args in ["probe", CLIP], ["compare", CLIP, CLIP, "-o", self.path("heat.png")]:
            self.assertEqual(run(*args, stdout=write).returncode, -signal.SIGPIPE)
        self.assertEqual(self.files(), ["endless.yuv"])

    def on_terminal(self, *args, until, seconds=60, **variables):
        """The output of a command on a terminal, until it ends or matches `until`."""
        terminal, end = pty.openpty()
        with subprocess.Popen([TAVU, *args], stdin=end, stdout=end, stderr=end,
                              env={**os.environ, "TERM": "xterm", **variables}) as process:
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
        line = r"\d+ frames, \d+/s, \d+ %, \d+:\d\d left"
        self.assertRegex(self.on_terminal(*self.endless, until=line), line)
        self.assertEqual(self.on_terminal(*self.endless, "-q", until=line, seconds=1.5), "")

    def test_colours_and_binary_data_on_terminals(self):
        self.assertNotIn("\033", self.on_terminal(*self.endless, until="%", seconds=1.5,
                                                  TERM="dumb"))
        for path, until in (self.path("none"), "No such file.*\n"), \
                (sample("h263.3gp"), "agreements"):
            self.assertIn("\033[", self.on_terminal("probe", path, until=until))
            for variables in {"NO_COLOR": "1"}, {"TERM": "dumb"}:
                self.assertNotIn("\033", self.on_terminal("probe", path, until=until, **variables))
        self.assertRegex(self.on_terminal("sheet", CLIP, "-o", "-", until="\n"),
                         "tavu:.* standard output: cannot write: it is a terminal")
        self.assertRegex(self.on_terminal("probe", "-", until="\n"), "standard input: it is a term")
