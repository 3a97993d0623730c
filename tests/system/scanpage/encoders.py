# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""PNM, PNG and TIFF files, written from their definitions. Rows hold numbers, or tuples of samples."""

import struct
import zlib


def samples(row):
    return [s for pixel in row for s in (pixel if isinstance(pixel, tuple) else (pixel,))]


def packed(row, bits, order=">"):
    """The samples of a row, the first in the highest bits; rows end at whole bytes."""
    values = samples(row)
    if bits == 16:
        return struct.pack(f"{order}{len(values)}H", *values)
    per_byte = 8 // bits
    values += [0] * (-len(values) % per_byte)
    groups = [values[i : i + per_byte] for i in range(0, len(values), per_byte)]
    return bytes(sum(v << bits * (per_byte - 1 - i) for i, v in enumerate(group)) for group in groups)


def pnm(rows, kind, most=255, comment=b""):
    """Kind 1 to 6."""
    head = b"P%d\n%s%d %d\n" % (kind, comment, len(rows[0]), len(rows)) + (b"" if kind in (1, 4) else b"%d\n" % most)
    if kind == 1:
        return head + b"\n".join(b"".join(b"%d" % s for s in samples(row)) for row in rows)
    if kind < 4:
        return head + b"\n".join(b" ".join(b"%d" % s for s in samples(row)) for row in rows) + b"\n"
    return head + b"".join(packed(row, 1 if kind == 4 else 16 if most > 255 else 8) for row in rows)


def chunk(kind, data):
    return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))


def png(rows, bits, kind, density=None, palette=b"", size=None, transparent=b"", interlaced=False):
    """Kind: 0 grey, 2 colour, 3 palette, 4 grey and opacity, 6 colour and opacity."""
    width, height = size or (len(rows[0]), len(rows))
    passes = [rows]
    if interlaced:    # Adam7: first column and row, and steps
        grid = ((0, 0, 8, 8), (4, 0, 8, 8), (0, 4, 4, 8), (2, 0, 4, 4), (0, 2, 2, 4), (1, 0, 2, 2), (0, 1, 1, 2))
        passes = [[row[x::dx] for row in rows[y::dy]] for x, y, dx, dy in grid]
    raw = b"".join(b"\0" + packed(row, bits) for part in passes for row in part if row)
    stream = b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, bits, kind, 0, 0, interlaced))
    if density:
        stream += chunk(b"pHYs", struct.pack(">IIB", *density))
    if palette:
        stream += chunk(b"PLTE", palette)
    if transparent:
        stream += chunk(b"tRNS", transparent)
    return stream + chunk(b"IDAT", zlib.compress(raw)) + chunk(b"IEND", b"")


MIN_IS_WHITE, MIN_IS_BLACK, RGB, PALETTE, CMYK = 0, 1, 2, 3, 5


def tiff_page(rows, bits=8, kind=MIN_IS_BLACK, order="<", density=None, size=None, tile=None, planar=False, **tags):
    """The tags of a page and its data: one strip, or tiles of a multiple of 16 pixels, or a strip a plane."""
    width, height = size or (len(rows[0]), len(rows))
    count = len(rows[0][0]) if isinstance(rows[0][0], tuple) else 1
    page = {256: (4, width), 257: (4, height), 258: (3, *[bits] * count), 259: (3, 1), 262: (3, kind), 277: (3, count)}
    if tile:
        blank = (0,) * count if count > 1 else 0
        pieces = []
        for top in range(0, len(rows), tile):
            for left in range(0, len(rows[0]), tile):
                part = [rows[y][left : left + tile] if y < len(rows) else [] for y in range(top, top + tile)]
                pieces.append(b"".join(packed(row + [blank] * (tile - len(row)), bits, order) for row in part))
        page.update({322: (4, tile), 323: (4, tile)})
        where, lengths = 324, 325
    else:
        planes = [[[p[c] for p in row] for row in rows] for c in range(count)] if planar else [rows]
        pieces = [b"".join(packed(row, bits, order) for row in plane) for plane in planes]
        page.update({278: (4, height), 284: (3, 2 if planar else 1)})
        where, lengths = 273, 279
    if density:
        page.update({282: (5, density[0], 1), 283: (5, density[1], 1), 296: (3, density[2])})
    page.update({int(tag[1:]): value for tag, value in tags.items()})
    return page, pieces, where, lengths


def tiff(*pages, order="<"):
    """Data in front of the directory of each page."""
    stream = {"<": b"II", ">": b"MM"}[order] + struct.pack(order + "HI", 42, 0)
    link = 4    # where the place of the next directory goes
    for page, pieces, where, lengths in pages:
        places = []
        for piece in pieces:
            places.append(len(stream))
            stream += piece + b"\0" * (len(piece) % 2)
        tags = {**page, where: (4, *places), lengths: (4, *map(len, pieces))}
        entries = b""
        for tag, (kind, *values) in sorted(tags.items()):
            data = struct.pack(f"{order}{len(values)}{ {3: 'H', 4: 'I', 5: 'I'}[kind] }", *values)
            number = len(values) // 2 if kind == 5 else len(values)
            if len(data) > 4:
                place = len(stream)
                stream += data + b"\0" * (len(data) % 2)
                data = struct.pack(order + "I", place)
            entries += struct.pack(order + "HHI", tag, kind, number) + data.ljust(4, b"\0")
        stream = stream[:link] + struct.pack(order + "I", len(stream)) + stream[link + 4 :]
        link = len(stream) + 2 + len(entries)
        stream += struct.pack(order + "H", len(tags)) + entries + b"\0" * 4
    return stream
