#!/usr/bin/env python3
"""Draws the sheets of this folder with the real program and holds the pictures against the ones kept here.

NAME.do plots to NAME.ps (in a folder of its own). Ghostscript must take the file without a word, on one page, with every
mark inside the bounding box that the file tells; the picture at 36 dots per inch must look like NAME.png, which someone
has looked at. --update draws NAME.png anew (look at it before it is committed); --keep FOLDER leaves what was drawn there,
at 100 dots per inch.
"""
import argparse
import pathlib
import re
import shutil
import struct
import subprocess
import sys
import tempfile
import zlib

HERE = pathlib.Path(__file__).resolve().parent
SECONDS = 120
DPI = 36
SLACK = 1.5  # points that a mark may stand outside the told box: half of the widest line
TILE, LIMIT = 12, 5  # pixels; the mean difference of grey (of 255) that no tile of the picture may pass


class Picture:
    def __init__(self, width, height, grey):
        self.width, self.height, self.grey = width, height, grey


def ghostscript(device, path, *options):
    command = ["gs", "-q", "-dNOPAUSE", "-dBATCH", "-dSAFER", f"-sDEVICE={device}", *options, str(path)]
    return subprocess.run(command, capture_output=True, timeout=SECONDS)


def render(path):
    done = ghostscript("pgmraw", path, f"-r{DPI}", "-dGraphicsAlphaBits=4", "-sOutputFile=-")
    match = re.match(rb"P5\s(?:#[^\n]*\n)*(\d+)\s+(\d+)\s+255\s", done.stdout)
    if done.returncode or done.stderr or not match:
        return None, (done.stderr or done.stdout)[:500].decode("latin-1")
    width, height = int(match[1]), int(match[2])
    body = done.stdout[match.end():]
    if len(body) != width * height:
        return None, "more than one page"
    return Picture(width, height, body), ""


def chunk(kind, body):
    return struct.pack(">I", len(body)) + kind + body + struct.pack(">I", zlib.crc32(kind + body))


def pngwrite(path, picture):
    rows = b"".join(b"\0" + picture.grey[y * picture.width:(y + 1) * picture.width] for y in range(picture.height))
    head = struct.pack(">IIBBBBB", picture.width, picture.height, 8, 0, 0, 0, 0)
    path.write_bytes(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", head) + chunk(b"IDAT", zlib.compress(rows, 9)) + chunk(b"IEND", b""))


def pngread(path):
    """A grey picture without filters, as pngwrite makes it."""
    data, place, body = path.read_bytes(), 8, b""
    while place < len(data):
        length, kind = struct.unpack(">I4s", data[place:place + 8])
        if kind == b"IHDR":
            width, height = struct.unpack(">II", data[place + 8:place + 16])
        if kind == b"IDAT":
            body += data[place + 8:place + 8 + length]
        place += 12 + length
    rows = zlib.decompress(body)
    return Picture(width, height, b"".join(rows[y * (width + 1) + 1:(y + 1) * (width + 1)] for y in range(height)))


def softened(p):
    """Means over 3 by 3 pixels: a line may lie a part of a pixel aside."""
    w, h, grey = p.width, p.height, p.grey
    flat = [[sum(grey[y * w + max(x - 1, 0):y * w + x + 2]) // (min(x + 2, w) - max(x - 1, 0)) for x in range(w)]
            for y in range(h)]
    return [sum(flat[k][x] for k in range(max(y - 1, 0), min(y + 2, h))) // (min(y + 2, h) - max(y - 1, 0))
            for y in range(h) for x in range(w)]


def compare(picture, reference):
    if (picture.width, picture.height) != (reference.width, reference.height):
        return f"{picture.width} by {picture.height} in place of {reference.width} by {reference.height}"
    differences = [abs(a - b) for a, b in zip(softened(picture), softened(reference))]
    w, worst = picture.width, (0, 0, 0)
    for y in range(0, picture.height - TILE, TILE // 2):
        rows = [differences[k * w:(k + 1) * w] for k in range(y, y + TILE)]
        for x in range(0, w - TILE, TILE // 2):
            worst = max(worst, (sum(sum(row[x:x + TILE]) for row in rows) / TILE ** 2, x, y))
    if worst[0] > LIMIT:
        return f"looks different near {worst[1]}, {worst[2]}: {worst[0]:.1f}, limit {LIMIT}"
    return ""


def boxfault(path):
    """The marks of the page must stand inside the box that the file tells."""
    told = [tuple(map(float, m)) for m in re.findall(rb"%%BoundingBox:\s*(-?\d+)\s+(-?\d+)\s+(-?\d+)\s+(-?\d+)", path.read_bytes())]
    drawn = re.findall(rb"%%HiResBoundingBox:\s*(\S+)\s+(\S+)\s+(\S+)\s+(\S+)", ghostscript("bbox", path).stderr)
    if len(told) != 1 or len(drawn) != 1:
        return f"{len(told)} bounding boxes, {len(drawn)} pages"
    (x0, y0, x1, y1), (a0, b0, a1, b1) = told[0], map(float, drawn[0])
    if a0 < x0 - SLACK or b0 < y0 - SLACK or a1 > x1 + SLACK or b1 > y1 + SLACK:
        return f"marks at {drawn[0]} outside the box {told[0]}"
    return ""


def sheet(tarn, dofile, options):
    with tempfile.TemporaryDirectory() as folder:
        done = subprocess.run([tarn, "--vanilla", "--batch", str(dofile)], cwd=folder, capture_output=True, timeout=SECONDS)
        path = pathlib.Path(folder, dofile.stem + ".ps")
        if done.returncode or not path.exists():
            return done.stdout.decode("utf-8", "replace")[-500:] + done.stderr.decode("utf-8", "replace")
        if options.keep:
            shutil.copy(path, options.keep)
            ghostscript("pnggray", path, "-r100", "-dGraphicsAlphaBits=4", f"-sOutputFile={options.keep}/{dofile.stem}.png")
        picture, fault = render(path)
        fault = fault or boxfault(path)
        if fault:
            return fault
        reference = dofile.with_suffix(".png")
        if options.update:
            pngwrite(reference, picture)
        return compare(picture, pngread(reference)) if reference.exists() else f"{reference.name} is not there"


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--tarn", default=str(HERE.parent.parent / "build" / "tarn"))
    parser.add_argument("--update", action="store_true")
    parser.add_argument("--keep")
    parser.add_argument("names", nargs="*", help="sheets whose names hold one of these; all without")
    options = parser.parse_args()
    if options.keep:
        pathlib.Path(options.keep).mkdir(parents=True, exist_ok=True)
    failed = 0
    for dofile in sorted(HERE.glob("*.do")):
        if options.names and not any(name in dofile.stem for name in options.names):
            continue
        fault = sheet(str(pathlib.Path(options.tarn).resolve()), dofile, options)
        failed += bool(fault)
        print(f"{dofile.stem}: {fault or 'good'}")
    sys.exit(failed != 0)


if __name__ == "__main__":
    main()
