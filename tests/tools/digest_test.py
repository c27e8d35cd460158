"""tavu digest, checked by ffmpeg's frame digests."""

import hashlib
import re

from tool_case import YUV420, Case, ffmpeg, needs_ffmpeg, sample, stream


def frame_digests(path):
    text = ffmpeg("-i", path, "-map", "0:v", "-fps_mode", "passthrough", "-f", "framemd5", "-")
    return re.findall(r"(\w{32})$", text.decode(), re.M)


@needs_ffmpeg
class Digest(Case):
    def test_digests_times_and_sizes_equal_ffmpegs(self):
        for name in YUV420:
            with self.subTest(name):
                indices, times, sizes, digests = zip(*self.digests(sample(name)))
                self.assertEqual(list(digests), frame_digests(sample(name)))
                self.assertEqual(indices, tuple(map(str, range(len(indices)))))
                size = "{width}x{height}".format(**stream(sample(name), "width,height"))
                self.assertEqual(set(sizes), {size})
                rate = 20 if name.startswith("h264") else 10
                for index, time in enumerate(times):
                    self.assertAlmostEqual(float(time) - float(times[0]), index / rate, delta=0.002)

    def test_other_layouts(self):
        """The upper half of the chroma of YUV 4:2:2; grey."""
        raw, area = ffmpeg("-i", sample("huffyuv.avi"), "-f", "rawvideo", "-"), 64 * 48
        expected = [hashlib.md5(frame[:area] + frame[area:][:area // 4] +
                                frame[area * 3 // 2:][:area // 4]).hexdigest()
                    for frame in (raw[at:at + 2 * area] for at in range(0, len(raw), 2 * area))]
        self.assertEqual([row[3] for row in self.digests(sample("huffyuv.avi"))], expected)
        grey = self.made("grey.mkv", "64x48", "-c:v", "ffv1", "-pix_fmt", "gray")
        self.assertEqual([row[3] for row in self.digests(grey)], frame_digests(grey))
        deep = self.made("deep.mkv", "64x48", "-c:v", "ffv1", "-pix_fmt", "yuv420p10le")
        self.fails("digest", deep, says="yuv420p10le")
