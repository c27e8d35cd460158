"""tavu digest against ffmpeg's frame digests."""

import hashlib

from tool_case import YUV420, Case, ffmpeg, ffprobe, needs_ffmpeg, sample


@needs_ffmpeg
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
