# SPDX-License-Identifier: MIT
"""Makes PDF files of vector graphics for measurements: curves, lines, dashes, clips, transforms and
device colours, different on each page and the same in each run."""

import random
import zlib


def page_content(chance, size):
    """Content of one page, at least `size` bytes."""
    parts = []
    length = 0

    def add(text):
        nonlocal length
        parts.append(text)
        length += len(text) + 1

    def point():
        return f"{chance.uniform(20, 590):.2f} {chance.uniform(20, 770):.2f}"

    def color():
        kind = chance.randrange(3)
        values = [f"{chance.random():.3f}" for _ in range((1, 3, 4)[kind])]
        fill, stroke = (("g", "G"), ("rg", "RG"), ("k", "K"))[kind]
        return f"{' '.join(values)} {chance.choice((fill, stroke))}"

    while length < size:
        add("q")
        add(color())
        add(f"{chance.uniform(0.1, 4):.2f} w")
        if chance.random() < 0.2:
            add(f"[{chance.randrange(1, 9)} {chance.randrange(1, 9)}] 0 d")
        if chance.random() < 0.3:
            add(f"1 0 0 1 {chance.uniform(-20, 20):.2f} {chance.uniform(-20, 20):.2f} cm")
        if chance.random() < 0.1:
            add(f"{point()} 300 300 re W n")
        add(f"{point()} m")
        for _ in range(chance.randrange(2, 30)):
            if chance.random() < 0.6:
                add(f"{point()} {point()} {point()} c")
            else:
                add(f"{point()} l")
        add(chance.choice(("S", "f", "B", "f*", "s")))
        add("Q")
    return "\n".join(parts).encode("ascii")


def write_pdf(path, pages, page_bytes, compress=True):
    """A PDF of `pages` pages of at least `page_bytes` bytes of content each."""
    chance = random.Random(pages * 1000003 + page_bytes)
    offsets = []
    kids = " ".join(f"{3 + 2 * i} 0 R" for i in range(pages))
    with open(path, "wb") as file:
        def put(number, body):
            offsets.append(file.tell())
            file.write(b"%d 0 obj\n" % number + body + b"\nendobj\n")

        file.write(b"%PDF-1.7\n")
        put(1, b"<< /Type /Catalog /Pages 2 0 R >>")
        put(2, f"<< /Type /Pages /Count {pages} /Kids [{kids}] >>".encode("ascii"))
        for i in range(pages):
            put(3 + 2 * i, b"<< /Type /Page /Parent 2 0 R /MediaBox [0 0 612 792] "
                           b"/Resources << >> /Contents %d 0 R >>" % (4 + 2 * i))
            content = page_content(chance, page_bytes)
            entries = b""
            if compress:
                content = zlib.compress(content)
                entries = b" /Filter /FlateDecode"
            put(4 + 2 * i, b"<< /Length %d%s >>\nstream\n" % (len(content), entries)
                + content + b"\nendstream")
        start = file.tell()
        file.write(b"xref\n0 %d\n0000000000 65535 f \n" % (len(offsets) + 1))
        for offset in offsets:
            file.write(b"%010d 00000 n \n" % offset)
        file.write(b"trailer\n<< /Size %d /Root 1 0 R >>\nstartxref\n%d\n%%%%EOF\n"
                   % (len(offsets) + 1, start))
