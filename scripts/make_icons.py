#!/usr/bin/python3
"""Renders the icons that the program is built with from their drawings in data/icons/*.svg.

    make_icons.py [--sheet FILE]

Needs rsvg-convert (librsvg2-bin) and optipng; the pictures are kept beside the drawings, so only
who changes a drawing runs this. `--sheet` also writes a picture that shows them all at true size
and enlarged, on light and on dark.
"""
import os
import struct
import subprocess
import sys

from PIL import Image

ICONS = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "data", "icons")
SIZES = (16, 20, 22, 24, 32, 48, 64)
SMALL = 16  # has a drawing of its own where there is one
ICO_SIZES = (16, 24, 32, 48, 64)
NAMES = ("vlreminders", "tray", "tray-new")


def drawing(name, size):
    own = os.path.join(ICONS, f"{name}-{size}.svg")
    return own if size == SMALL and os.path.exists(own) else os.path.join(ICONS, f"{name}.svg")


def picture(name, size):
    return os.path.join(ICONS, f"{name}-{size}.png")


def render(name, size):
    subprocess.run(["rsvg-convert", "-w", str(size), "-h", str(size), "-o", picture(name, size),
                    drawing(name, size)], check=True)
    subprocess.run(["optipng", "-quiet", "-o5", "-strip", "all", picture(name, size)], check=True)


def write_ico(path, files):
    """The container that Windows wants: a directory, then the pictures as they are."""
    pictures = [(Image.open(f).size[0], open(f, "rb").read()) for f in files]
    begin = 6 + 16 * len(pictures)
    entries = b""
    for size, data in pictures:
        entries += struct.pack("<4B2H2I", size % 256, size % 256, 0, 0, 1, 32, len(data), begin)
        begin += len(data)
    with open(path, "wb") as out:
        out.write(struct.pack("<3H", 0, 1, len(pictures)) + entries)
        out.writelines(data for _, data in pictures)


def sheet(path):
    grounds = ("#f4f4f4", "#d0d0d0", "#3b3f45", "#101214")
    gap, width = 10, sum(SIZES) + 10 * (len(SIZES) + 1)
    large = [(16, 4), (20, 4), (22, 3), (24, 3)]
    row = 64 + 2 * gap
    image = Image.new("RGB", (width + sum(s * f + gap for s, f in large),
                              len(grounds) * len(NAMES) * row))
    top = 0
    for ground in grounds:
        for name in NAMES:
            strip = Image.new("RGBA", (image.width, row), ground)
            left = gap
            for size in SIZES:
                one = Image.open(picture(name, size)).convert("RGBA")
                strip.alpha_composite(one, (left, (row - size) // 2))
                left += size + gap
            for size, factor in large:
                one = Image.open(picture(name, size)).convert("RGBA")
                side = min(size * factor, row)
                one = one.resize((side // size * size,) * 2, Image.NEAREST)
                strip.alpha_composite(one, (left, (row - one.height) // 2))
                left += one.width + gap
            image.paste(strip.convert("RGB"), (0, top))
            top += row
    image.save(path)


def main():
    for name in NAMES:
        for size in SIZES:
            render(name, size)
    write_ico(os.path.join(ICONS, "vlreminders.ico"),
              [picture("vlreminders", size) for size in ICO_SIZES])
    if sys.argv[1:2] == ["--sheet"]:
        sheet(sys.argv[2])


if __name__ == "__main__":
    main()
