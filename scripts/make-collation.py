#!/usr/bin/env python3
"""Makes db/jet/index/Collation.inc: the codes of the sort order that text keys are built from.

    scripts/make-collation.py FOLDER

FOLDER holds two tables: index-codes.tsv (U+0000..U+00FF, a line a character, the order "legacy" is
taken) and index-codes-bmp.tsv (from U+0100 on, a line a range). The result is committed; run this
again only when the tables change. Same input, same bytes.

The result is one list of bytes that Collation.cpp unpacks once:

  kinds   a count, then for each kind 8 bytes: class, script, length of the inline code, whether
          that grows by one a character, length of the extra code, its two bytes, hidden code or
          modifier
  runs    of characters from U+0000 on, without gaps: kind, length - 1, and for a kind with an
          inline code its difference from the last inline code before. These numbers, and the
          count, are in groups of seven bits, lowest first, the top bit set on all but the last; a
          difference is doubled, and its complement taken when it is negative.
"""
import pathlib
import sys

CLASSES = {"ignored": 0, "plain": 1, "accent": 2, "ext": 3, "hidden": 4, "mark": 5}
OUT = pathlib.Path(__file__).resolve().parent.parent / "db/jet/index/Collation.inc"
SURROGATES = range(0xD800, 0xE000)  # computed, not looked up


def record(cls, inline, extra, hidden, modifier, script):
    """What one character has: (class, script, inline bytes, extra bytes, hidden or modifier)."""
    code = [b"" if t == "-" else bytes.fromhex(t) for t in (inline, extra, hidden, modifier)]
    single = code[2] + code[3]
    if len(single) > 1 or len(code[0]) > 4 or len(code[1]) > 2:
        sys.exit(f"a code is longer than there is room for: {cls} {inline} {extra}")
    return (CLASSES[cls], 0 if script == "-" else int(script), code[0], code[1],
            single[0] if single else 0)


def read(folder):
    """A record for each of the 65536 code units."""
    units = [None] * 0x10000
    for line in (folder / "index-codes.tsv").read_text().splitlines():
        cells = line.split("\t")
        if cells[0] == "legacy":
            units[int(cells[1], 16)] = record(*cells[2:])
    for line in (folder / "index-codes-bmp.tsv").read_text().splitlines():
        if line.startswith(("#", "first")):
            continue
        first, last, step, cls, inline, *rest = line.split("\t")
        first, last = int(first, 16), int(last, 16)
        for unit in range(first, last + 1):
            code = inline
            if step == "1":
                code = format(int(inline, 16) + unit - first, "04x")
            if units[unit] is not None:
                sys.exit(f"U+{unit:04X} has two lines")
            units[unit] = record(cls, code, *rest)
    for unit in SURROGATES:
        units[unit] = record("ignored", "-", "-", "-", "-", "-")
    missing = [u for u in range(0x10000) if units[u] is None]
    if missing:
        sys.exit(f"U+{missing[0]:04X} has no line")
    return units


def runs(units):
    """(first, length, grows): as long as all stays, or only the inline code grows by one."""
    at = 0
    while at < len(units):
        end, grows = at + 1, 0
        cls, script, inline, extra, single = units[at]
        if end < len(units) and len(inline) == 2:
            following = (int.from_bytes(inline, "big") + 1).to_bytes(3, "big")[1:]
            grows = int(units[end] == (cls, script, following, extra, single))
        while end < len(units):
            code = inline
            if grows:
                code = (int.from_bytes(inline, "big") + end - at).to_bytes(3, "big")[1:]
            if units[end] != (cls, script, code, extra, single):
                break
            end += 1
        yield at, end - at, grows
        at = end


def number(value):
    out = []
    while value > 0x7F:
        out.append(value & 0x7F | 0x80)
        value >>= 7
    return out + [value]


def pack(units):
    kinds, packed, before = {}, [], 0
    for first, length, grows in runs(units):
        cls, script, inline, extra, single = units[first]
        kind = (cls, script, len(inline), grows, len(extra), *extra.ljust(2, b"\0"), single)
        packed += number(kinds.setdefault(kind, len(kinds))) + number(length - 1)
        if inline:
            code = int.from_bytes(inline, "big")
            packed += number(2 * (code - before) if code >= before else ~(2 * (code - before)))
            before = code
    return number(len(kinds)) + [b for kind in kinds for b in kind] + packed


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    data = pack(read(pathlib.Path(sys.argv[1])))
    lines = ["// Made by scripts/make-collation.py, which explains it: do not edit.", ""]
    line = ""
    for byte in data:
        piece = f"{byte},"
        if len(line) + len(piece) > 100:
            lines.append(line)
            line = ""
        line += piece
    lines.append(line)
    OUT.write_text("\n".join(lines) + "\n")
    print(f"{OUT.name}: {len(data)} bytes of table, {OUT.stat().st_size} of source")


main()
