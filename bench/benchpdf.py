# SPDX-License-Identifier: MIT
"""Makes PDF files for measurements, the same in each run: vector graphics (curves, lines, dashes,
clips, transforms and device colours, different on each page), images, and running text, in Latin
and in Japanese."""

import io
import pathlib
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


def write_groups_pdf(path, groups):
    """One page that draws a transparency group again and again, half transparent."""
    content = b"/Half gs\n" + b"".join(
        b"q 1 0 0 1 %d %d cm /F Do Q\n" % (i % 100 * 6, i // 100 % 100 * 8) for i in range(groups))
    write_objects(path, [
        b"<< /Type /Catalog /Pages 2 0 R >>",
        b"<< /Type /Pages /Kids [3 0 R] /Count 1 >>",
        b"<< /Type /Page /Parent 2 0 R /MediaBox [0 0 612 792] /Contents 4 0 R /Resources << "
        b"/ExtGState << /Half << /ca 0.5 >> >> /XObject << /F 5 0 R >> >> >>",
        stream(content),
        stream(b"1 0 0 rg 0 0 4 4 re f 0 0 1 rg 2 2 4 4 re f",
               b"/Type /XObject /Subtype /Form /BBox [0 0 6 6] /Group << /S /Transparency >> "),
    ])


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

URW_FONTS = pathlib.Path("/usr/share/fonts/type1/urw-base35")
DEJAVU_FONTS = pathlib.Path("/usr/share/fonts/truetype/dejavu")
WORDS = """plate ink press proof sheet register gamut trap screen angle dot gain coating paper reel
    folio signature margin gutter leading kerning baseline serif weight measure column caption the
    of and to in is that it was for on are with as at by from or an be this which one all""".split()


def type1_font(name):
    """(stream object, widths of codes 32 to 126) of a Type 1 font of Debian's fonts-urw-base35."""
    program = (URW_FONTS / f"{name}.t1").read_bytes()
    secret = program.index(b"eexec") + len(b"eexec\n")
    zeros = program.rindex(b"0" * 64, 0, program.rindex(b"cleartomark"))
    while program[zeros - 1:zeros] in (b"0", b"\n", b"\r"):
        zeros -= 1
    lengths = b"/Length1 %d /Length2 %d /Length3 %d" % (secret, zeros - secret,
                                                        len(program) - zeros)
    widths = {}
    for line in (URW_FONTS / f"{name}.afm").read_text("latin-1").splitlines():
        if line.startswith("C "):
            fields = line.split()
            widths[int(fields[1])] = int(fields[4])
    return stream(program, lengths), [widths.get(code, 0) for code in range(32, 127)]


def truetype_font(name):
    """The same for a font of fonts-dejavu-core, cut to ASCII as documents embed it."""
    from fontTools import subset, ttLib  # only here: the other documents need nothing installed

    font = ttLib.TTFont(DEJAVU_FONTS / f"{name}.ttf")
    cutter = subset.Subsetter(subset.Options(layout_features=[], name_IDs=[], notdef_outline=True))
    cutter.populate(unicodes=range(32, 127))
    cutter.subset(font)
    file = io.BytesIO()
    font.save(file)
    glyphs = font.getBestCmap()
    scale = 1000 / font["head"].unitsPerEm
    widths = [round(font["hmtx"][glyphs[code]][0] * scale) for code in range(32, 127)]
    return stream(file.getvalue(), b"/Length1 %d" % len(file.getvalue())), widths


def text_content(chance, fonts):
    """A page of 60 lines: paragraphs set by word spacing, and others with kerned strings."""
    parts = ["BT"]
    for line in range(60):
        if line % 6 == 0:
            font = chance.randrange(len(fonts))
            kerned = chance.random() < 0.5
            parts.append(f"/F{font} 9 Tf 11 TL 1 0 0 1 50 {750 - 11.5 * line:.2f} Tm")
        words = [chance.choice(WORDS) for _ in range(14)]
        if kerned:
            pieces = [f"({word[:2]}){chance.choice((-20, 15, 40))}({word[2:]} )" for word in words]
            parts.append(f"[{''.join(pieces)}] TJ T*")
        else:
            parts.append(f"{chance.uniform(-0.3, 0.6):.3f} Tw ({' '.join(words)}) Tj T*")
    return "\n".join(parts + ["ET"]).encode("ascii")


def write_text_pdf(path, pages):
    """A document of running text in three Type 1 fonts and two TrueType fonts, all embedded."""
    chance = random.Random(pages)
    fonts = [(b"Type1", name, b"FontFile", *type1_font(name))
             for name in ("NimbusRoman-Regular", "NimbusRoman-Italic", "NimbusSans-Bold")]
    fonts += [(b"TrueType", name, b"FontFile2", *truetype_font(name))
              for name in ("DejaVuSans", "DejaVuSerif")]
    objects = [b"<< /Type /Catalog /Pages 2 0 R >>", b""]
    entries = []
    for i, (kind, name, key, program, widths) in enumerate(fonts):
        base = b"ABCDE%c+%s" % (65 + i, name.encode("ascii"))
        first = len(objects) + 1
        objects += [program, b"<< /Type /FontDescriptor /FontName /%s /Flags 32 /FontBBox [-200 -250 "
                    b"1200 950] /ItalicAngle 0 /Ascent 900 /Descent -250 /CapHeight 700 /StemV 80 "
                    b"/%s %d 0 R >>" % (base, key, first),
                    b"<< /Type /Font /Subtype /%s /BaseFont /%s /FirstChar 32 /LastChar 126 /Widths "
                    b"[%s] /Encoding /WinAnsiEncoding /FontDescriptor %d 0 R >>"
                    % (kind, base, " ".join(map(str, widths)).encode("ascii"), first + 1)]
        entries.append(b"/F%d %d 0 R" % (i, first + 2))
    kids = []
    for _ in range(pages):
        kids.append(b"%d 0 R" % (len(objects) + 1))
        objects.append(b"<< /Type /Page /Parent 2 0 R /MediaBox [0 0 612 792] /Resources << /Font "
                       b"<< %s >> >> /Contents %d 0 R >>" % (b" ".join(entries), len(objects) + 2))
        objects.append(stream(text_content(chance, fonts)))
    objects[1] = b"<< /Type /Pages /Count %d /Kids [%s] >>" % (pages, b" ".join(kids))
    write_objects(path, objects)


NOTO_CJK = pathlib.Path("/usr/share/fonts/opentype/noto/NotoSerifCJK-Regular.ttc")
IPA_MINCHO = pathlib.Path("/usr/share/fonts/opentype/ipafont-mincho/ipam.ttf")
LINES, LINE_CHARACTERS = 40, 40


def jis_rows(first, last):
    """The characters of these rows of JIS X 0208."""
    return "".join(bytes((160 + row, 160 + cell)).decode("euc_jp", "ignore")
                   for row in range(first, last + 1) for cell in range(1, 95))


def cid_font(path, is_cff, characters):
    """(program, {character: (CID, width)}) of the first font in a file, cut to `characters`. CIDs
    are those of the charset for CFF, glyph indices for TrueType."""
    from fontTools import subset, ttLib

    font = ttLib.TTFont(path, fontNumber=0)
    names = font.getBestCmap()
    options = subset.Options(layout_features=[], name_IDs=[], notdef_outline=True)
    options.drop_tables += ["GSUB", "GPOS", "GDEF", "BASE", "VORG", "vmtx", "vhea"]
    cutter = subset.Subsetter(options)
    cutter.populate(glyphs=[names[ord(c)] for c in characters])
    cutter.subset(font)
    file = io.BytesIO()
    font.save(file)
    scale = 1000 / font["head"].unitsPerEm
    numbers = {}
    for c in characters:
        name = names[ord(c)]
        numbers[c] = (int(name[len("cid"):]) if is_cff else font.getGlyphID(name),
                      round(font["hmtx"][name][0] * scale))
    return ttLib.TTFont(file).reader["CFF "] if is_cff else file.getvalue(), numbers


def to_unicode(numbers):
    """A ToUnicode CMap of codes that are CIDs."""
    pairs = sorted((cid, ord(c)) for c, (cid, _) in numbers.items())
    parts = ["/CIDInit /ProcSet findresource begin 12 dict begin begincmap /CMapName /Read def "
             "/CMapType 2 def 1 begincodespacerange <0000> <FFFF> endcodespacerange"]
    for i in range(0, len(pairs), 100):
        block = pairs[i:i + 100]
        parts += [f"{len(block)} beginbfchar", *(f"<{cid:04X}> <{c:04X}>" for cid, c in block),
                  "endbfchar"]
    return stream("\n".join(parts + ["endcmap end end"]).encode("ascii"))


def cid_font_objects(name, path, is_cff, characters, first):
    """({character: (CID, width)}, objects from number `first` on) of a font across and down: these
    two are the first objects."""
    program, numbers = cid_font(path, is_cff, characters)
    base = f"ABCDEF+{name}"
    kind, key, entries = ("0", "FontFile3", b"/Subtype /CIDFontType0C") if is_cff else \
        ("2", "FontFile2", b"/Length1 %d" % len(program))
    widths = " ".join(f"{cid} [{width}]" for cid, width in sorted(numbers.values()) if width != 1000)
    fonts = [f"<< /Type /Font /Subtype /Type0 /BaseFont /{base} /Encoding /Identity-{direction} "
             f"/DescendantFonts [{first + 2} 0 R] /ToUnicode {first + 4} 0 R >>".encode("ascii")
             for direction in "HV"]
    return numbers, fonts + [
        f"<< /Type /Font /Subtype /CIDFontType{kind} /BaseFont /{base} /CIDSystemInfo << /Registry "
        f"(Adobe) /Ordering (Identity) /Supplement 0 >> /FontDescriptor {first + 3} 0 R /DW 1000 "
        f"/W [{widths}] >>".encode("ascii"),
        f"<< /Type /FontDescriptor /FontName /{base} /Flags 4 /FontBBox [-1000 -1100 2900 1900] "
        f"/ItalicAngle 0 /Ascent 880 /Descent -120 /CapHeight 730 /StemV 90 /{key} {first + 5} 0 R "
        ">>".encode("ascii"),
        to_unicode(numbers), stream(program, entries)]


def japanese_content(chance, fonts, letters, weights, is_vertical):
    """A page of lines across or down, in paragraphs of one font each, kerned now and then."""
    parts = ["BT"]
    for line in range(LINES):
        if line % 5 == 0:
            font = chance.randrange(len(fonts))
            parts.append(f"/{'V' if is_vertical else 'H'}{font} 11 Tf")
        text = "".join(f"{fonts[font][c][0]:04X}"
                       for c in chance.choices(letters, weights, k=LINE_CHARACTERS))
        at = f"{550 - 12.5 * line:.2f} 760" if is_vertical else f"60 {750 - 17.5 * line:.2f}"
        half = 4 * chance.randrange(4, LINE_CHARACTERS - 4)
        show = f"<{text}> Tj" if chance.random() < 0.7 else \
            f"[<{text[:half]}> {chance.choice((250, 500))} <{text[half:]}>] TJ"
        parts.append(f"1 0 0 1 {at} Tm {show}")
    return stream("\n".join(parts + ["ET"]).encode("ascii"))


def write_japanese_pdf(path, pages):
    """A document of running Japanese text with a CID-keyed CFF font and a TrueType font, both cut to
    the 3,500 characters of ASCII, kana and JIS level 1. The last two pages are set vertically."""
    chance = random.Random(pages)
    kana, kanji = jis_rows(4, 5), list(jis_rows(16, 47))
    signs, ascii_letters = jis_rows(1, 1)[1:12], "".join(map(chr, range(33, 127)))
    chance.shuffle(kanji)  # the commonest first
    letters = [*kana, *signs, *ascii_letters, *kanji]
    weights = [5 / len(kana)] * len(kana) + [1 / len(signs)] * len(signs) + \
        [0.5 / len(ascii_letters)] * len(ascii_letters) + \
        [0.8 / (i + 20) ** 0.9 for i in range(len(kanji))]
    objects = [b"<< /Type /Catalog /Pages 2 0 R >>", b""]
    fonts, entries = [], []
    for i, (name, file, is_cff) in enumerate((("NotoSerifCJKjp-Regular", NOTO_CJK, True),
                                              ("IPAMincho", IPA_MINCHO, False))):
        first = len(objects) + 1
        numbers, more = cid_font_objects(name, file, is_cff, letters, first)
        fonts.append(numbers)
        objects += more
        entries.append(f"/H{i} {first} 0 R /V{i} {first + 1} 0 R")
    kids = []
    for page in range(pages):
        kids.append(f"{len(objects) + 1} 0 R")
        objects.append(f"<< /Type /Page /Parent 2 0 R /MediaBox [0 0 595 842] /Resources << /Font << "
                       f"{' '.join(entries)} >> >> /Contents {len(objects) + 2} 0 R >>".encode("ascii"))
        objects.append(japanese_content(chance, fonts, letters, weights, page >= pages - 2))
    objects[1] = f"<< /Type /Pages /Count {pages} /Kids [{' '.join(kids)}] >>".encode("ascii")
    write_objects(path, objects)
