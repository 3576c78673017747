# SPDX-License-Identifier: MIT
"""Pictures of the screen, without a picture library."""

import struct
import zlib

from Xlib import X


class Picture:
    """Rows of 32-bit pixels, blue first, as the X server gives them."""

    def __init__(self, width, height, data):
        self.width = width
        self.height = height
        self.data = data

    @classmethod
    def of_screen(cls, display, x, y, width, height):
        root = display.screen().root
        # A whole screen is more than one answer may hold, so it comes in bands.
        band = max(1, 60000 * 4 // (4 * width))
        parts = []
        for top in range(y, y + height, band):
            rows = min(band, y + height - top)
            parts.append(root.get_image(x, top, width, rows, X.ZPixmap, 0xFFFFFFFF).data)
        return cls(width, height, b"".join(bytes(part) for part in parts))

    def colour(self, x, y):
        """Red, green and blue of one pixel."""
        at = 4 * (y * self.width + x)
        blue, green, red = self.data[at:at + 3]
        return red, green, blue

    def colours(self):
        """How many different colours there are."""
        return len({self.data[at:at + 3] for at in range(0, len(self.data), 4)})

    def save(self, path):
        """Writes a PNG file."""
        rows = bytearray()
        for y in range(self.height):
            row = self.data[4 * y * self.width:4 * (y + 1) * self.width]
            rgb = bytearray(3 * self.width)
            rgb[0::3], rgb[1::3], rgb[2::3] = row[2::4], row[1::4], row[0::4]
            rows += b"\0" + rgb

        def chunk(kind, content):
            check = zlib.crc32(kind + content)
            return struct.pack(">I", len(content)) + kind + content + struct.pack(">I", check)

        header = struct.pack(">IIBBBBB", self.width, self.height, 8, 2, 0, 0, 0)
        with open(path, "wb") as file:
            file.write(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header)
                       + chunk(b"IDAT", zlib.compress(bytes(rows), 6)) + chunk(b"IEND", b""))
