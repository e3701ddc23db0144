#!/usr/bin/env python3
"""Draws every picture under resources/. Run it from anywhere; the files it writes are committed with it."""
import math
import pathlib

from raster import Canvas, bmp24, box, disc, ico, mix, png, ring, stroke, union

RESOURCES = pathlib.Path(__file__).resolve().parents[2] / 'resources'

TEAL = (0.10, 0.75, 0.72, 1)
INDIGO = (0.30, 0.27, 0.86, 1)
NIGHT = (0.055, 0.06, 0.13, 1)


def cross(c, reach, half_width):
    return union(stroke(c - reach, c - reach, c + reach, c + reach, half_width),
                 stroke(c - reach, c + reach, c + reach, c - reach, half_width))


def close_icon():
    """White cross on a soft dark disc: to be seen on any page. Grey only, so that no channel order matters."""
    c = Canvas(72, 72)
    c.fill(disc(36, 36.5, 31), (0, 0, 0, 0.30), softness=7)            # a breath of shadow on bright pages
    c.fill(disc(36, 36, 30), (0.11, 0.11, 0.11, 0.74))
    c.fill(ring(disc(36, 36, 29.4), 0.7), (1, 1, 1, 0.30))             # an edge on dark pages
    c.fill(cross(36, 10.6, 2.7), (1, 1, 1, 1))
    return c


def close_bitmap():
    c = Canvas(140, 140, (0, 0, 0, 1))
    c.fill(cross(70, 38, 7), (1, 1, 1, 1))
    return c


def mark(size):
    """Two stacked sheets, the front one carrying a Z: a page laid over the game."""
    s = size / 64
    c = Canvas(size, size)

    def at(x0, y0, x1, y1):
        return lambda x, y: ((x - x0 * s) * (x1 - x0) + (y - y0 * s) * (y1 - y0)) / (s * ((x1 - x0) ** 2 + (y1 - y0) ** 2))
    ramp = at(10, 10, 56, 58)
    if size >= 32:
        c.fill(box(37 * s, 27 * s, 24 * s, 24 * s, 9 * s), (0.36, 0.42, 0.95, 0.55))
    front = box(*((29 * s, 35 * s, 26 * s, 26 * s, 10 * s) if size >= 32 else (32 * s, 32 * s, 30 * s, 30 * s, 12 * s)))
    c.fill(front, lambda x, y: mix(TEAL, INDIGO, ramp(x, y)))
    cx, cy = (29, 35) if size >= 32 else (32, 32)
    w = 3.6 if size >= 32 else 4.4
    r = 10.5 if size >= 32 else 13
    z = union(*(stroke((cx + a * r) * s, (cy + b * r) * s, (cx + p * r) * s, (cy + q * r) * s, w * s)
                for a, b, p, q in ((-1, -1, 1, -1), (1, -1, -1, 1), (-1, 1, 1, 1))))
    c.fill(z, (1, 1, 1, 1))
    return c


def planet(size):
    """The start page's picture: a lit sphere with two bands."""
    c = Canvas(size, size)
    m, r = size / 2, size * 0.46

    def shade(x, y):
        u, v = (x - m) / r, (y - m) / r
        h = math.sqrt(max(0.0, 1 - u * u - v * v))
        light = max(0.0, -0.55 * u - 0.6 * v + 0.58 * h)
        band = 0.5 + 0.5 * math.sin((v + 0.18 * u) * 9 + math.sin(u * 3) * 0.6)
        base = mix(mix(TEAL, INDIGO, 0.5 + 0.6 * v), (0.75, 0.95, 0.95, 1), 0.28 * band)
        return mix(NIGHT, base, 0.12 + 1.05 * light)
    c.fill(disc(m, m, r), shade)
    return c


def main():
    def write(name, data):
        path = RESOURCES / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(data)
        print(f'{len(data):7d} {name}')
    write('html/x_button/common-btn-icon-webview-x@2x.png', png(close_icon()))
    write('html/x_button/xbtn.bmp', bmp24(close_bitmap()))
    write('zemowindow.ico', ico([mark(n) for n in (16, 32, 48, 256)]))
    write('html/img/mark.png', png(mark(128)))
    write('html/img/planet.png', png(planet(320)))


if __name__ == '__main__':
    main()
