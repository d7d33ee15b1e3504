#!/usr/bin/env python3
"""readpng.py FILE.png OUT: writes the width and height of an 8-bit true-colour PNG as a line, then its r, g, b bytes."""
import struct
import sys
import zlib


def paeth(left, above, corner):
    guess = left + above - corner
    return min((abs(guess - left), 0, left), (abs(guess - above), 1, above), (abs(guess - corner), 2, corner))[2]


def main():
    with open(sys.argv[1], "rb") as file:
        data = file.read()
    place, packed = 8, b""
    while place < len(data):
        (length,) = struct.unpack(">I", data[place:place + 4])
        kind, body = data[place + 4:place + 8], data[place + 8:place + 8 + length]
        if kind == b"IHDR":
            width, height, _, colour = struct.unpack(">IIBB", body[:10])
        if kind == b"IDAT":
            packed += body
        place += 12 + length
    step = 4 if colour == 6 else 3
    raw, out, above = bytearray(zlib.decompress(packed)), bytearray(), bytearray(width * step)
    for y in range(height):
        row = y * (width * step + 1)
        rule, line = raw[row], raw[row + 1:row + 1 + width * step]
        for i in range(width * step):
            left, corner = (line[i - step], above[i - step]) if i >= step else (0, 0)
            add = (0, left, above[i], (left + above[i]) // 2, paeth(left, above[i], corner))[rule]
            line[i] = (line[i] + add) & 255
        above = line
        for i in range(width):
            out += line[i * step:i * step + 3]
    with open(sys.argv[2], "wb") as file:
        file.write(b"%d %d\n" % (width, height) + out)


main()
