#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Puts hand-edited PDF files in order: stream lengths, cross-reference table, /Size, startxref.

    scripts/fix-pdf.py tests/e2e/cases/*.pdf

For uncompressed files with one generation of objects, each `N 0 obj` at the start of a line, and
the words `stream` and `endstream` on lines of their own.
"""
import re
import sys


def fix(data: bytes) -> bytes:
    body, _, rest = data.rpartition(b"\nxref\n")
    if not body:
        body, _, rest = data.rpartition(b"\ntrailer")
        rest = b"trailer" + rest
    trailer = rest[rest.index(b"trailer"):].split(b"startxref")[0].rstrip()

    # From "/Length" to the data: the rest of the stream's dictionary.
    body = re.sub(rb"(?s)/Length \d+((?:(?!endobj).)*?>>\s*stream\n)(.*?)\nendstream",
                  lambda m: b"/Length %d%s%s\nendstream" % (len(m[2]), m[1], m[2]), body) + b"\n"
    offsets = {int(m[1]): m.start() for m in re.finditer(rb"(?m)^(\d+) 0 obj\b", body)}
    size = max(offsets) + 1
    lines = [b"0000000000 65535 f \n"]
    lines += [b"%010d 00000 n \n" % offsets[n] if n in offsets else lines[0] for n in range(1, size)]
    trailer = re.sub(rb"/Size \d+", b"/Size %d" % size, trailer)
    return (body + b"xref\n0 %d\n" % size + b"".join(lines) + trailer
            + b"\nstartxref\n%d\n%%%%EOF\n" % len(body))


def main() -> None:
    for path in sys.argv[1:]:
        with open(path, "rb") as file:
            data = file.read()
        fixed = fix(data)
        if fixed != data:
            with open(path, "wb") as file:
                file.write(fixed)
            print(path)


if __name__ == "__main__":
    main()
