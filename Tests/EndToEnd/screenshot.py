"""Pictures of the display in memory. It keeps its screen in a file in the format of xwd; this reads that file and
writes PNG, with nothing but the standard library."""

import struct
import zlib


def read_screen(path):
    """(width, height, rows of RGB bytes) of a screen of 24 or 32 bits a pixel."""
    with open(path, "rb") as file:
        dump = file.read()
    fields = struct.unpack(">25I", dump[:100])
    header_size, width, height = fields[0], fields[4], fields[5]
    big_endian, bits_per_pixel, bytes_per_line, colours = fields[7], fields[11], fields[12], fields[19]
    if bits_per_pixel != 32:
        raise ValueError(f"{bits_per_pixel} bits a pixel")
    start = header_size + colours * 12
    red, green, blue = (1, 2, 3) if big_endian else (2, 1, 0)
    rows = []
    for y in range(height):
        line = dump[start + y * bytes_per_line:start + y * bytes_per_line + width * 4]
        row = bytearray(width * 3)
        row[0::3], row[1::3], row[2::3] = line[red::4], line[green::4], line[blue::4]
        rows.append(bytes(row))
    return width, height, rows


def crop(picture, x, y, width, height):
    full_width, full_height, rows = picture
    x, y = max(0, x), max(0, y)
    width, height = min(width, full_width - x), min(height, full_height - y)
    return width, height, [row[x * 3:(x + width) * 3] for row in rows[y:y + height]]


def write_png(picture, path):
    width, height, rows = picture

    def chunk(kind, data):
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))

    body = zlib.compress(b"".join(b"\0" + row for row in rows), 6)
    with open(path, "wb") as file:
        file.write(b"\x89PNG\r\n\x1a\n")
        file.write(chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, 8, 2, 0, 0, 0)))
        file.write(chunk(b"IDAT", body))
        file.write(chunk(b"IEND", b""))


def colours(picture):
    """How many different colours it has: a window that draws nothing has one."""
    return len({row[index:index + 3] for row in picture[2] for index in range(0, len(row), 3)})
