"""Draws a colour wheel in Y, U, V; prints a digest, a pixel in RGB, a thumbnail's mean and SATDs.

Run: python3 demo.py [wheel.ppm]
"""

import sys

import numpy as np

import tavu


def draw(wheel):
    """Hue varies around the centre, saturation increases outwards."""
    y, u, v = wheel.planes
    rows, columns = np.mgrid[-1:1:wheel.height * 1j, -1:1:wheel.width * 1j]
    inside = np.hypot(rows, columns) <= 1
    y[:] = np.where(inside, 150, 255)
    u[:] = np.where(inside, 128 + 110 * columns, 128)
    v[:] = np.where(inside, 128 + 110 * rows, 128)


def main():
    wheel = tavu.Image(256, 256, tavu.YUV444)
    draw(wheel)
    (pixels,) = wheel.converted(tavu.RGB888).planes
    thumbnail = tavu.resized(pixels, 64, 64)
    luma = wheel.planes[0]
    print("digest", wheel.md5())
    print("middle", *pixels[128, 128])
    print("thumbnail", *thumbnail.shape, "mean", round(float(thumbnail.mean()), 1))
    print("SATD to itself", tavu.satd(luma, luma), "and moved by 2 rows",
          tavu.satd(luma, np.roll(luma, 2, axis=0)))
    if len(sys.argv) > 1:
        with open(sys.argv[1], "wb") as file:
            file.write(b"P6\n%d %d\n255\n" % (pixels.shape[1], pixels.shape[0]))
            file.write(pixels.tobytes())


if __name__ == "__main__":
    main()
