"""Common code of the program's tests: running it, and ffmpeg's results for comparison."""

import json
import os
import pathlib
import shutil
import struct
import subprocess
import tempfile
import unittest
import zlib

TAVU = os.environ["TAVU"]
PROJECT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
HAVE_FFMPEG = shutil.which("ffmpeg") and shutil.which("ffprobe")
NAMES = ["h264.mp4", "h264.h264", "hevc.mp4", "mpeg4.avi", "mpeg4.mp4", "h263.3gp", "wmv1.wmv",
         "wmv2.avi", "div3.avi", "huffyuv.avi"]
YUV420 = [name for name in NAMES if name != "huffyuv.avi"]
PLAYLISTS = {"list.m3u8": "#EXTM3U\n#EXT-X-TARGETDURATION:9\n#EXTINF:9,\n{}\n#EXT-X-ENDLIST\n",
             "list.ffconcat": "ffconcat version 1.0\nfile '{}'\n",
             "list.mpd": '<?xml version="1.0"?><MPD profiles="urn:mpeg:dash:profile:isoff-live:2011"'
                         '><BaseURL>{}</BaseURL></MPD>',
             "list.sdp": "v=0\no=- 0 0 IN IP4 127.0.0.1\ns=x\nc=IN IP4 127.0.0.1\nt=0 0\n"
                         "m=video 5004 RTP/AVP 96\na=rtpmap:96 H264/90000\na=control:{}\n"}


def sample(name):
    return os.path.join(os.environ["TAVU_SAMPLES"], name)


CLIP = sample("h264.mp4")
# Arguments for every command.
COMMANDS = {"probe": [CLIP], "sheet": [CLIP, "-o", "out.png"], "digest": [CLIP],
            "compare": [CLIP, CLIP], "convert": [CLIP, "out.png"], "bench": ["sad2x2"]}


def read(path):
    return pathlib.Path(path).read_bytes()


def run(*args, **options):
    options = {"stdout": subprocess.PIPE, "stderr": subprocess.PIPE, "text": True, **options}
    return subprocess.run([TAVU, *map(str, args)], **options)


def ffmpeg(*args, stdin=None):
    command = ["ffmpeg", "-v", "error", "-y", "-fflags", "+bitexact", *map(str, args)]
    return subprocess.run(command, input=stdin or b"", capture_output=True, check=True).stdout


def decoded(path, *args, layout="rgb24"):
    """The bytes of all frames."""
    return ffmpeg("-i", path, *args, "-f", "rawvideo", "-pix_fmt", layout, "-")


def ffprobe(path, section, entries):
    command = ["ffprobe", "-v", "error", "-select_streams", "v", "-of", "json", "-show_entries",
               f"{section}={entries}", path]
    return json.loads(subprocess.check_output(command))[section + "s"]


def stream(path, entries):
    return ffprobe(path, "stream", entries)[0]


def packets(path):
    return ffprobe(path, "packet", "flags,size,pts_time,pos")


def png_head(width, height):
    """A PNG file with too little pixel data."""
    head = b"IHDR" + struct.pack(">IIBBBBB", width, height, 8, 6, 0, 0, 0)
    data = b"IDAT" + zlib.compress(bytes(4096))
    return b"\x89PNG\r\n\x1a\n" + b"".join(struct.pack(">I", len(chunk) - 4) + chunk + struct.pack(
        ">I", zlib.crc32(chunk)) for chunk in (head, data, b"IEND"))


needs_ffmpeg = unittest.skipUnless(HAVE_FFMPEG, "needs ffmpeg and ffprobe")


class Case(unittest.TestCase):
    def setUp(self):
        self.directory = self.enterContext(tempfile.TemporaryDirectory())

    def path(self, name):
        return os.path.join(self.directory, name)

    def written(self, name, data):
        """`name` may be bytes."""
        path = pathlib.Path(self.directory, os.fsdecode(name))
        path.write_bytes(data)
        return str(path)

    def made(self, name, size, *args, seconds=1):
        # The pattern counts the frames.
        ffmpeg("-f", "lavfi", "-i", f"testsrc2=s={size}:r=10:d={seconds}", *args, self.path(name))
        return self.path(name)

    def files(self):
        return sorted(os.listdir(self.directory))

    def ok(self, *args, **options):
        result = run(*args, **options)
        self.assertEqual(result.returncode, 0, (args, result.stderr))
        self.assertFalse(result.stderr, args)
        return result.stdout

    def json(self, *args, **options):
        return json.loads(self.ok(*args, "--json", **options))

    def fails(self, *args, status=1, says="", **options):
        """Runs a command that fails with one line containing `says`."""
        result = run(*args, **options)
        self.assertEqual(result.returncode, status, (args, result.stderr))
        self.assertRegex(result.stderr, r"\Atavu: [^\n]+\n\Z", args)
        self.assertIn(says, result.stderr, args)
        return result.stdout

    def video(self, path):
        tracks = self.json("probe", path)["tracks"]
        return next(track for track in tracks if track["kind"] == "video")

    def digests(self, path):
        """The columns of each row: index, time, size and digest."""
        head, *rows = self.ok("digest", path).splitlines()
        self.assertEqual(head[0], "#")
        return [row.split(",") for row in rows]
