"""A very small painter: shapes as signed distances, one pixel of soft edge, and writers for PNG, BMP and ICO.

Needs nothing but the standard library. Colours are (r, g, b, a) from 0 to 1, straight alpha.
"""
import math
import struct
import zlib


def disc(cx, cy, radius):
    return lambda x, y: math.hypot(x - cx, y - cy) - radius


def box(cx, cy, half_width, half_height, corner=0.0):
    def distance(x, y):
        dx = abs(x - cx) - half_width + corner
        dy = abs(y - cy) - half_height + corner
        return math.hypot(max(dx, 0), max(dy, 0)) + min(max(dx, dy), 0) - corner
    return distance


def stroke(x0, y0, x1, y1, half_width):
    """A line with round ends."""
    length = (x1 - x0) ** 2 + (y1 - y0) ** 2

    def distance(x, y):
        t = max(0.0, min(1.0, ((x - x0) * (x1 - x0) + (y - y0) * (y1 - y0)) / length))
        return math.hypot(x - x0 - t * (x1 - x0), y - y0 - t * (y1 - y0)) - half_width
    return distance


def union(*shapes):
    return lambda x, y: min(shape(x, y) for shape in shapes)


def ring(shape, half_width):
    return lambda x, y: abs(shape(x, y)) - half_width


def mix(a, b, t):
    t = max(0.0, min(1.0, t))
    return tuple(p + (q - p) * t for p, q in zip(a, b))


class Canvas:
    def __init__(self, width, height, colour=(0, 0, 0, 0)):
        self.width, self.height = width, height
        self.pixels = [[colour] * width for _ in range(height)]

    def fill(self, shape, colour, softness=1.0):
        """Draws `shape` over what is there. `colour` may be a function of x and y; `softness` is the edge in pixels."""
        for y in range(self.height):
            row = self.pixels[y]
            for x in range(self.width):
                cover = 0.5 - shape(x + 0.5, y + 0.5) / softness
                if cover <= 0:
                    continue
                r, g, b, a = colour(x + 0.5, y + 0.5) if callable(colour) else colour
                a *= min(cover, 1.0)
                br, bg, bb, ba = row[x]
                out = a + ba * (1 - a)
                if out <= 0:
                    continue
                keep = ba * (1 - a)
                row[x] = ((r * a + br * keep) / out, (g * a + bg * keep) / out, (b * a + bb * keep) / out, out)

    def bytes_rgba(self):
        for row in self.pixels:
            yield bytes(int(c * 255 + 0.5) for pixel in row for c in pixel)


def png(canvas):
    def chunk(kind, data):
        return struct.pack('>I', len(data)) + kind + data + struct.pack('>I', zlib.crc32(kind + data))
    rows = []
    previous = bytes(canvas.width * 4)
    for row in canvas.bytes_rgba():
        up = bytes((a - b) & 255 for a, b in zip(row, previous))  # the filter that suits soft shapes
        rows.append(b'\x02' + up)
        previous = row
    return (b'\x89PNG\r\n\x1a\n' + chunk(b'IHDR', struct.pack('>IIBBBBB', canvas.width, canvas.height, 8, 6, 0, 0, 0))
            + chunk(b'IDAT', zlib.compress(b''.join(rows), 9)) + chunk(b'IEND', b''))


def bmp24(canvas):
    pad = bytes(-canvas.width * 3 % 4)
    data = b''.join(b''.join(bytes((row[i + 2], row[i + 1], row[i])) for i in range(0, len(row), 4)) + pad
                    for row in reversed(list(canvas.bytes_rgba())))
    return (struct.pack('<2sIHHI', b'BM', 54 + len(data), 0, 0, 54)
            + struct.pack('<IiiHHIIiiII', 40, canvas.width, canvas.height, 1, 24, 0, len(data), 2835, 2835, 0, 0) + data)


def _icon_image(canvas):
    if canvas.width >= 256:
        return png(canvas)
    rows = list(canvas.bytes_rgba())
    colour = b''.join(b''.join(bytes((r[i + 2], r[i + 1], r[i], r[i + 3])) for i in range(0, len(r), 4))
                      for r in reversed(rows))
    stride = (canvas.width + 31) // 32 * 4
    mask = b''
    for r in reversed(rows):  # 1 where nothing is drawn, for those who do not know alpha
        bits = ''.join('1' if r[i + 3] == 0 else '0' for i in range(0, len(r), 4)).ljust(stride * 8, '0')
        mask += int(bits, 2).to_bytes(stride, 'big')
    return struct.pack('<IiiHHIIiiII', 40, canvas.width, canvas.height * 2, 1, 32, 0, len(colour) + len(mask),
                       0, 0, 0, 0) + colour + mask


def ico(canvases):
    images = [_icon_image(c) for c in canvases]
    offset = 6 + 16 * len(images)
    out = struct.pack('<HHH', 0, 1, len(images))
    for c, image in zip(canvases, images):
        out += struct.pack('<BBBBHHII', c.width & 255, c.height & 255, 0, 0, 1, 32, len(image), offset)
        offset += len(image)
    return out + b''.join(images)
