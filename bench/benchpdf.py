# SPDX-License-Identifier: MIT
"""Makes PDF files for measurements, the same in each run: vector graphics (curves, lines, dashes,
clips, transforms and device colours, different on each page), and images."""

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


def write_objects(path, objects):
    """A PDF of the objects 1, 2, … given as bytes; 1 is the catalogue."""
    offsets = []
    with open(path, "wb") as file:
        file.write(b"%PDF-1.7\n")
        for number, body in enumerate(objects, 1):
            offsets.append(file.tell())
            file.write(b"%d 0 obj\n" % number + body + b"\nendobj\n")
        start = file.tell()
        file.write(b"xref\n0 %d\n0000000000 65535 f \n" % (len(offsets) + 1))
        for offset in offsets:
            file.write(b"%010d 00000 n \n" % offset)
        file.write(b"trailer\n<< /Size %d /Root 1 0 R >>\nstartxref\n%d\n%%%%EOF\n"
                   % (len(offsets) + 1, start))


def stream(data, entries=b"", compress=True):
    if compress:
        data = zlib.compress(data)
        entries += b" /Filter /FlateDecode"
    return b"<< /Length %d %s >>\nstream\n" % (len(data), entries) + data + b"\nendstream"


def write_pdf(path, pages, page_bytes):
    """A PDF of `pages` pages of at least `page_bytes` bytes of content each."""
    chance = random.Random(pages * 1000003 + page_bytes)
    kids = " ".join(f"{3 + 2 * i} 0 R" for i in range(pages))
    objects = [b"<< /Type /Catalog /Pages 2 0 R >>",
               f"<< /Type /Pages /Count {pages} /Kids [{kids}] >>".encode("ascii")]
    for i in range(pages):
        objects.append(b"<< /Type /Page /Parent 2 0 R /MediaBox [0 0 612 792] "
                       b"/Resources << >> /Contents %d 0 R >>" % (4 + 2 * i))
        objects.append(stream(page_content(chance, page_bytes)))
    write_objects(path, objects)


def image_lines(components, side):
    """Lines of a picture with soft slopes, edges and a little grain."""
    chance = random.Random(components)
    value = [128] * components
    ribbon = bytearray()
    for _ in range(4 * side):
        for k in range(components):
            step = chance.choice((-3, -1, 0, 0, 1, 3)) if chance.random() > 0.01 else 90
            value[k] = (value[k] + step) % 256
        ribbon += bytes(value)
    size = components * side
    grain = int.from_bytes(b"\3" * size, "big")
    for y in range(side):
        start = components * (2 * y % (3 * side))
        line = int.from_bytes(ribbon[start:start + size], "big")
        yield (line ^ chance.getrandbits(8 * size) & grain).to_bytes(size, "big")


def write_image_pdf(path, space, side=2000, png_predictor=False):
    """A page with one image of `side` x `side` pixels of 8 bits in DeviceRGB or DeviceCMYK."""
    components = {"DeviceRGB": 3, "DeviceCMYK": 4}[space]
    lines = list(image_lines(components, side))
    entries = f"/Type /XObject /Subtype /Image /Width {side} /Height {side} " \
              f"/BitsPerComponent 8 /ColorSpace /{space}".encode("ascii")
    if png_predictor:
        previous = bytes(components * side)
        coded = []
        for line in lines:
            coded.append(b"\2" + bytes((a - b) & 255 for a, b in zip(line, previous)))
            previous = line
        lines = coded
        entries += f" /DecodeParms << /Predictor 15 /Colors {components} /Columns {side} >>".encode("ascii")
    write_objects(path, [
        b"<< /Type /Catalog /Pages 2 0 R >>",
        b"<< /Type /Pages /Count 1 /Kids [3 0 R] >>",
        b"<< /Type /Page /Parent 2 0 R /MediaBox [0 0 600 600] "
        b"/Resources << /XObject << /I 5 0 R >> >> /Contents 4 0 R >>",
        stream(b"580 0 0 580 10 10 cm /I Do"),
        stream(b"".join(lines), entries)])
