#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Draws press-sheet.pdf: a printed card on its press sheet, uncompressed and readable.

    examples/make-press-sheet.py [OUTPUT.pdf]

The card is a picture in two spot inks and black with a varnish that overprints; around it stand what a
pressman needs: crop marks and registration marks on every plate, a colour bar, tint ramps,
gradients, three small pictures (process colours, grains of one ink, steps of another), patterns, and the
names of the plates, each printed by its own plate.
"""
import math
import pathlib
import sys

SHEET = (842, 595)
TRIM = (111, 128, 731, 508)  # x0 y0 x1 y1
BLEED = 9
HORIZON = 262

MIX = """{ % sea orange -> c m y k, each ink over the other
  1 index 3 1 roll
  2 copy 0.58 mul 1 exch sub exch 0.72 mul 1 exch sub mul 1 exch sub 3 1 roll
  2 copy 0.95 mul 1 exch sub exch 0.12 mul 1 exch sub mul 1 exch sub 3 1 roll
  pop 0.28 mul
}"""

RESOURCES = """<<
  /ColorSpace <<
    /Sea [/Separation /Deep#20Sea /DeviceCMYK 10 0 R]
    /Orange [/Separation /Sunrise#20Orange /DeviceCMYK 11 0 R]
    /Varnish [/Separation /Varnish /DeviceCMYK 12 0 R]
    /Duo [/DeviceN [/Deep#20Sea /Sunrise#20Orange] /DeviceCMYK 13 0 R]
    /All [/Separation /All /DeviceCMYK 14 0 R]
    /SeaPattern [/Pattern [/Separation /Deep#20Sea /DeviceCMYK 10 0 R]]
    /OrangePattern [/Pattern [/Separation /Sunrise#20Orange /DeviceCMYK 11 0 R]]
  >>
  /Pattern << /Waves 19 0 R /Tiles 20 0 R >>
  /ExtGState <<
    /Overprint << /Type /ExtGState /OP true /op true /OPM 1 >>
    /Knockout << /Type /ExtGState /OP false /op false /OPM 0 >>
  >>
  /Shading <<
    /Axial << /ShadingType 2 /ColorSpace [/Separation /Sunrise#20Orange /DeviceCMYK 11 0 R]
              /Coords [0 0 0 1] /Function << /FunctionType 2 /Domain [0 1] /C0 [0] /C1 [1] /N 1 >> >>
    /Radial << /ShadingType 3 /ColorSpace [/Separation /Deep#20Sea /DeviceCMYK 10 0 R]
               /Coords [0.5 0.5 0 0.5 0.5 0.5]
               /Function << /FunctionType 2 /Domain [0 1] /C0 [0] /C1 [1] /N 1 >> >>
  >>
  /Font <<
    /Regular << /Type /Font /Subtype /Type1 /BaseFont /Helvetica /Encoding /WinAnsiEncoding >>
    /Bold << /Type /Font /Subtype /Type1 /BaseFont /Helvetica-Bold /Encoding /WinAnsiEncoding >>
  >>
  /XObject << /Register 15 0 R /Ball 16 0 R /Grains 17 0 R /Steps 18 0 R >>
>>"""


def tint(*full: float) -> str:
    amounts = " ".join(f"{v:g}" for v in full)
    return f"<< /FunctionType 2 /Domain [0 1] /C0 [0 0 0 0] /C1 [{amounts}] /N 1 >>"


def stream(data: str, entries: str = "") -> str:
    return f"<< {entries}/Length {len(data)} >>\nstream\n{data}\nendstream"


def num(value: float) -> str:
    return f"{round(value, 2):g}"


def at(*values: float) -> str:
    return " ".join(num(v) for v in values)


def rect(x: float, y: float, width: float, height: float) -> str:
    return at(x, y, width, height) + " re"


def circle(x: float, y: float, r: float) -> str:
    k = 0.5523 * r
    return (f"{at(x + r, y)} m {at(x + r, y + k, x + k, y + r, x, y + r)} c "
            f"{at(x - k, y + r, x - r, y + k, x - r, y)} c {at(x - r, y - k, x - k, y - r, x, y - r)} c "
            f"{at(x + k, y - r, x + r, y - k, x + r, y)} c h")


def smooth(points: "list[tuple[float, float]]") -> str:
    """Curves through the points (Catmull-Rom), without the first moveto."""
    parts = []
    for i in range(len(points) - 1):
        before, here = points[max(i - 1, 0)], points[i]
        there, after = points[i + 1], points[min(i + 2, len(points) - 1)]
        parts.append(at(here[0] + (there[0] - before[0]) / 6, here[1] + (there[1] - before[1]) / 6,
                        there[0] - (after[0] - here[0]) / 6, there[1] - (after[1] - here[1]) / 6,
                        *there) + " c")
    return "\n".join(parts)


def text(x: float, y: float, size: float, words: str, font: str = "Regular") -> str:
    escaped = words.replace("\\", r"\\").replace("(", r"\(").replace(")", r"\)")
    return f"BT /{font} {size:g} Tf {at(x, y)} Td ({escaped}) Tj ET"


def sky() -> "list[str]":
    """A gradient of two inks in steps, each reaching under the next: no seams."""
    lines = ["% the sky: two inks, one fading into the other"]
    top, steps = TRIM[3] + BLEED, 64
    height = (top - HORIZON) / steps
    for i in range(steps):
        t = i / (steps - 1)
        sea, orange = 0.96 * (1 - t) ** 1.25, 0.04 + 0.74 * t ** 1.7
        lines.append(f"/Duo cs {at(sea, orange)} scn "
                     + rect(TRIM[0] - BLEED, top - (i + 2) * height, TRIM[2] - TRIM[0] + 2 * BLEED,
                            2 * height) + " f")
    return lines


def sun(x: float, y: float) -> "list[str]":
    lines = ["% the sun and its halo"]
    for i in range(12):
        t = i / 11
        lines.append(f"/Duo cs {at(0.12 * (1 - t) ** 2, 0.64 - 0.40 * t)} scn "
                     + circle(x, y, 112 - 60 * t) + " f")
    lines.append("/Orange cs 1 scn " + circle(x, y, 46) + " f")
    return lines


def ridges() -> "list[str]":
    """Four ranges of mountains, the nearer the darker."""
    left, right = TRIM[0] - BLEED - 8, TRIM[2] + BLEED + 8
    ranges = [(52, 0.36, 0.42, 0.6, 150), (40, 0.58, 0.30, 2.1, 118), (30, 0.80, 0.20, 4.0, 92)]
    lines = []
    for height, sea, orange, phase, wave in ranges:
        points = []
        x = left
        while x <= right + 20:
            u = (x - left) / wave + phase
            rise = 0.55 + 0.30 * math.sin(u * 2.1) + 0.22 * math.sin(u * 4.7 + 1) + 0.08 * math.sin(u * 9.3)
            rise *= 0.45 + 0.55 * abs((x - 300) / 330) ** 0.8
            points.append((x, HORIZON + height * max(rise, 0.05)))
            x += 15.5
        lines += ["% a range of mountains",
                  f"/Duo cs {at(sea, orange)} scn {at(left, HORIZON)} m {at(*points[0])} l",
                  smooth(points), f"{at(points[-1][0], HORIZON)} l h f"]
    return lines


def water(x: float) -> "list[str]":
    bottom, left, right = TRIM[1] - BLEED, TRIM[0] - BLEED, TRIM[2] + BLEED
    lines = ["% the water, and the sun in it"]
    steps = 40
    height = (HORIZON - bottom) / steps
    for i in range(steps):
        t = i / (steps - 1)
        lines.append(f"/Duo cs {at(0.42 + 0.56 * t ** 0.7, 0.5 * (1 - t) ** 1.6)} scn "
                     + rect(left, HORIZON - (i + 2) * height, right - left, 2 * height) + " f")
    for i in range(26):
        t = i / 25
        y = HORIZON - 5 - t * 122
        half = (44 - 22 * t) * (0.7 + 0.3 * math.sin(i * 2.4)) + 20 * t
        shift = 9 * t * math.sin(i * 1.7)
        lines.append(f"/Duo cs {at(0.02 + 0.25 * t, 0.92 - 0.35 * t)} scn {at(x - half + shift, y)} m "
                     f"{at(x - half / 2 + shift, y + 1.1, x + half / 2 + shift, y + 1.1, x + half + shift, y)} c "
                     f"{at(x + half / 2 + shift, y - 1.1, x - half / 2 + shift, y - 1.1, x - half + shift, y)} c f")
    return lines


def boat(x: float, y: float) -> "list[str]":
    return ["% the boat: paper-white sails, a hull in black that overprints the water",
            f"q 1 0 0 1 {at(x, y)} cm",
            "0 0 0 0 k 2 10 m 12 36 17 62 18 92 c 4 78 -14 44 -20 14 c -12 11 -4 10 2 10 c f",
            "0 0.06 0.12 0.02 k 22 82 m 36 62 46 38 48 13 c 38 10 30 9 24 10 c 26 34 25 60 22 82 c f",
            "/Overprint gs 0 0 0 1 k -28 6 m -10 2 34 2 58 7 c 52 -4 44 -8 34 -8 c -2 -8 l -14 -8 -22 -3 -28 6 c f",
            "0 0 0 1 K 1.2 w 20 4 m 20 98 l S /Knockout gs",
            "Q"]


def birds() -> "list[str]":
    lines = ["% birds", "0 0 0 1 K 1.4 w 1 J 1 j"]
    for x, y, size in ((512, 408, 11), (542, 424, 8), (494, 432, 7), (566, 402, 6)):
        wing = 0.6 * size
        lines.append(f"{at(x - size, y + 0.2 * size)} m "
                     f"{at(x - wing, y + wing, x - 0.2 * size, y + 0.3 * size, x, y)} c "
                     f"{at(x + 0.2 * size, y + 0.3 * size, x + wing, y + wing, x + size, y + 0.2 * size)} c S")
    return lines


def wordmark(x: float, y: float) -> "list[str]":
    """The name, drawn in strokes on a grid of 20 x 28."""
    letters = {
        "N": "0 0 m 0 28 l 20 0 l 20 28 l S",
        "O": circle(14, 14, 14) + " S",
        "R": "0 0 m 0 28 l 10 28 l 20.6 28 20.6 13 10 13 c 0 13 l S 9 13 m 19 0 l S",
        "V": "0 28 m 11 0 l 22 28 l S",
        "A": "0 0 m 11 28 l 22 0 l S 4.2 9 m 17.8 9 l S",
        "E": "17 0 m 0 0 l 0 28 l 17 28 l S 0 14.5 m 14 14.5 l S",
    }
    widths = {"N": 20, "O": 28, "R": 20, "V": 22, "A": 22, "E": 17}
    lines = ["% the name", f"q 1 0 0 1 {at(x, y)} cm 0 0 0 0 K 4.4 w 1 J 1 j"]
    for letter in "NORVANE":
        lines += [letters[letter], f"1 0 0 1 {widths[letter] + 13} 0 cm"]
    return lines + ["Q"]


def varnish() -> "list[str]":
    """A guilloche of fine lines that overprints the sky and the water."""
    lines = ["% varnish over everything: it overprints", "/Overprint gs /Varnish CS 1 SCN 0.5 w"]
    left, right = TRIM[0] - BLEED, TRIM[2] + BLEED
    for i in range(7):
        points = []
        for step in range(33):
            u = step / 32
            points.append((left + u * (right - left),
                           166 + 16 * math.sin(u * 12.6 + i * 0.45) * math.cos(u * 3.1) + i * 3.2))
        lines += [at(*points[0]) + " m", smooth(points), "S"]
    return lines + ["/Knockout gs"]


def card() -> "list[str]":
    x0, y0, x1, y1 = TRIM
    return (["% ---- the card, as far as its bleed",
             "q " + rect(x0 - BLEED, y0 - BLEED, x1 - x0 + 2 * BLEED, y1 - y0 + 2 * BLEED) + " W n"]
            + sky() + sun(372, 318) + ridges() + water(372) + varnish() + boat(588, 208) + birds()
            + wordmark(152, 446)
            + ["0 0 0 0 k", text(153, 424, 11.5, "Every ink on its own plate"), "Q"])


def marks() -> "list[str]":
    """Crop marks at the trim, and registration marks in the middle of the sides."""
    x0, y0, x1, y1 = TRIM
    lines = ["% ---- crop marks and registration marks, on every plate", "/All CS 1 SCN /All cs 1 scn 0.4 w 0 J"]
    for x, outward in ((x0, -1), (x1, 1)):
        for y, upward in ((y0, -1), (y1, 1)):
            lines.append(f"{at(x + outward * 14, y)} m {at(x + outward * 34, y)} l S "
                         f"{at(x, y + upward * 14)} m {at(x, y + upward * 34)} l S")
    for x, y in ((60, 318), (782, 318), (421, 549), (421, 48)):
        lines.append(f"q 1 0 0 1 {at(x, y)} cm /Register Do Q")
    return lines


def colour_bar() -> "list[str]":
    """Solids, half tints, overprints of two inks, gray balance, and the spots."""
    patches = ["0 0 0 1 k", "1 0 0 0 k", "0 1 0 0 k", "0 0 1 0 k", "/Sea cs 1 scn", "/Orange cs 1 scn",
               "0 0 0 0.5 k", "0.5 0 0 0 k", "0 0.5 0 0 k", "0 0 0.5 0 k", "/Sea cs 0.5 scn",
               "/Orange cs 0.5 scn", "0 1 1 0 k", "1 0 1 0 k", "1 1 0 0 k", "/Duo cs 1 1 scn",
               "/Duo cs 0.5 0.5 scn", "0.5 0.4 0.4 0 k", "0.25 0.19 0.19 0 k", "0 0 0 0.25 k",
               "0.75 0.66 0.66 0 k", "0 0 0 0.75 k"]
    size, gap = 25, 1.5
    left = (SHEET[0] - len(patches) * (size + gap) + gap) / 2
    lines = ["% ---- the colour bar"]
    for i, patch in enumerate(patches):
        lines.append(f"{patch} {rect(left + i * (size + gap), 66, size, 20)} f")
    return lines


def ramps() -> "list[str]":
    """Ten steps of each plate at the left, true gradients and a star target at the right."""
    lines = ["% ---- tint ramps"]
    inks = ["/Sea cs {t} scn", "/Orange cs {t} scn", "{t} 0 0 0 k", "0 {t} 0 0 k", "0 0 {t} 0 k",
            "0 0 0 {t} k"]
    for column, ink in enumerate(inks):
        for step in range(10):
            lines.append(ink.format(t=num((step + 1) / 10)) + " "
                         + rect(36 + column * 8.2, 138 + step * 13, 7, 12) + " f")
    lines += ["% ---- true gradients, framed",
              "q 30 0 0 130 767 366 cm 0 0 1 1 re W n /Axial sh Q",
              "q 50 0 0 50 757 138 cm 0 0 1 1 re W n /Radial sh Q",
              "0 0 0 1 K 0.4 w 767 366 30 130 re S 757 138 50 50 re S",
              "% ---- star target: it shows slur and doubling"]
    x, y, spokes = 782, 236, 36
    lines.append("/All cs 1 scn")
    for i in range(spokes):
        a, b = 2 * math.pi * i / spokes, 2 * math.pi * (i + 0.5) / spokes
        lines.append(f"{at(x, y)} m {at(x + 24 * math.cos(a), y + 24 * math.sin(a))} l "
                     f"{at(x + 24 * math.cos(b), y + 24 * math.sin(b))} l f")
    return lines


def pictures() -> "list[str]":
    """Three pictures of one ball above the ramps."""
    lines = ["% ---- pictures: process colours, grains of one ink, steps of another"]
    for name, y in (("/Ball", 441), ("/Grains", 393), ("/Steps", 345)):
        lines.append(f"q /Sea cs 1 scn 44 0 0 44 38 {y} cm {name} Do Q")
    return lines


def patterns() -> "list[str]":
    """Below the ramps: one wave in either ink, and tiles in both."""
    return ["% ---- patterns",
            f"/SeaPattern cs 1 /Waves scn {rect(45, 100, 15, 24)} f",
            f"/OrangePattern cs 1 /Waves scn {rect(60, 100, 15, 24)} f",
            f"/Pattern cs /Tiles scn {rect(45, 76, 30, 24)} f"]


def tiling(paint_type: int, side: float, angle: float, data: str, resources: str = "") -> str:
    c, s = math.cos(math.radians(angle)), math.sin(math.radians(angle))
    return stream(data, f"/PatternType 1 /PaintType {paint_type} /TilingType 1 /BBox [0 0 {at(side, side)}] "
                        f"/XStep {num(side)} /YStep {num(side)}\n   /Matrix [{at(c, s, -s, c, 45, 76)}] "
                        f"/Resources << {resources} >> ")


def wave() -> str:
    return "0.8 w -1 1.5 m 0 1.5 l 1.5 4 2.5 4 4 1.5 c 5.5 -1 6.5 -1 8 1.5 c 9 1.5 l S 0 5.5 m 8 5.5 l S"


def tiles() -> str:
    return "\n".join(["/Sea cs 1 scn", rect(0, 0, 3, 3) + " f", "/Orange cs 1 scn", circle(4.5, 4.5, 1.4) + " f"])


def light(x: float, y: float) -> "tuple[bool, float]":
    """Whether the ball is seen at (x, y) of the unit square, y downwards; how bright the place is."""
    u, v = (x - 0.5) / 0.36, (y - 0.46) / 0.36
    if u * u + v * v >= 1:
        shadow = math.hypot((x - 0.6) / 0.36, (y - 0.84) / 0.09)
        return False, min(1.0, 0.4 + 0.6 * shadow * shadow)
    w = math.sqrt(1 - u * u - v * v)
    facing = max(0.0, -0.5 * u - 0.6 * v + 0.62 * w)
    return True, min(1.0, 0.12 + 0.8 * facing + 0.5 * facing ** 24)


def grid(side: int) -> "list[list[tuple[bool, float]]]":
    return [[light((x + 0.5) / side, (y + 0.5) / side) for x in range(side)] for y in range(side)]


def ball() -> bytes:
    """An orange ball on paper: four samples a pixel, ink amounts."""
    samples = bytearray()
    for seen, bright in sum(grid(64), []):
        inks = (0.1 * (1 - bright), 0.25 + 0.4 * (1 - bright), min(1.0, 1.3 - bright), 0.75 * (1 - bright) ** 2) \
            if seen else (0.3 * (1 - bright), 0.2 * (1 - bright), 0.1 * (1 - bright), 0.5 * (1 - bright))
        samples += bytes(round(255 * max(0.0, ink)) for ink in inks)
    return bytes(samples)


def grains() -> bytes:
    """The same in grains (error diffusion after Floyd and Steinberg): 1 bit a pixel, 0 is ink."""
    side = 128
    rest = [[bright for _, bright in row] + [0.0] for row in grid(side)] + [[0.0] * (side + 1)]
    samples = bytearray(side * side // 8)
    for y in range(side):
        for x in range(side):
            paper = rest[y][x] >= 0.5
            error = rest[y][x] - paper
            samples[(y * side + x) // 8] |= paper << (7 - x % 8)
            for dx, dy, share in ((1, 0, 7), (-1, 1, 3), (0, 1, 5), (1, 1, 1)):
                rest[y + dy][x + dx] += error * share / 16
    return bytes(samples)


def steps() -> bytes:
    """The same in eight steps: 4 bits a pixel, indices of a palette of tints."""
    indices = [round(7 * (1 - bright)) for _, bright in sum(grid(64), [])]
    return bytes(a << 4 | b for a, b in zip(indices[::2], indices[1::2]))


def image(side: int, data: bytes, entries: str) -> str:
    digits = data.hex() + ">"
    rows = "\n".join(digits[i:i + 128] for i in range(0, len(digits), 128))
    return stream(rows, f"/Type /XObject /Subtype /Image /Width {side} /Height {side}\n   {entries}\n"
                        "   /Filter /ASCIIHexDecode ")


def slug() -> "list[str]":
    """The line above the sheet: what this is, and each plate's name in its own ink."""
    lines = ["% ---- the slug line", "/All cs 1 scn",
             text(TRIM[0], 561, 8, "Sunrise card", "Bold"),
             text(TRIM[0] + 56, 561, 8, "620 x 380 pt, bleed 9 pt, sheet 842 x 595 pt")]
    x = 484
    for ink, name, width in (("1 0 0 0 k", "Cyan", 27), ("0 1 0 0 k", "Magenta", 40),
                             ("0 0 1 0 k", "Yellow", 34), ("0 0 0 1 k", "Black", 29),
                             ("/Sea cs 1 scn", "Deep Sea", 42),
                             ("/Orange cs 1 scn", "Sunrise Orange", 66)):
        lines += [f"{ink} {rect(x, 552, width - 6, 3)} f", ink, text(x, 561, 8, name, "Bold")]
        x += width
    return lines


def register_mark() -> str:
    return "\n".join([
        "/All CS 1 SCN /All cs 1 scn 0.4 w", circle(0, 0, 9) + " S", "-15 0 m 15 0 l S 0 -15 m 0 15 l S",
        circle(0, 0, 4) + " f",
        "% the cross through the disc is left open", "/All CS 0 SCN -4 0 m 4 0 l S 0 -4 m 0 4 l S"])


def page() -> str:
    return "\n".join(card() + marks() + colour_bar() + ramps() + pictures() + patterns() + slug())


def objects() -> "dict[int, str]":
    box = at(*TRIM)
    bleed = at(TRIM[0] - BLEED, TRIM[1] - BLEED, TRIM[2] + BLEED, TRIM[3] + BLEED)
    form = "/Type /XObject /Subtype /Form /BBox [-16 -16 16 16]\n   /Resources << /ColorSpace << " \
           "/All [/Separation /All /DeviceCMYK 14 0 R] >> >> "
    return {
        1: "<< /Type /Catalog /Pages 2 0 R\n   /OutputIntents [<< /Type /OutputIntent /S /GTS_PDFX "
           "/OutputConditionIdentifier (FOGRA39)\n      /RegistryName (http://www.color.org) "
           "/Info (Coated paper, offset) >>] >>",
        2: "<< /Type /Pages /Kids [3 0 R] /Count 1 >>",
        3: f"<< /Type /Page /Parent 2 0 R /MediaBox [0 0 {SHEET[0]} {SHEET[1]}]\n"
           f"   /BleedBox [{bleed}] /TrimBox [{box}]\n   /Resources 4 0 R /Contents 5 0 R >>",
        4: RESOURCES,
        5: stream(page()),
        6: "<< /Title (Sunrise card, press sheet) /Creator (make-press-sheet.py) >>",
        10: tint(1, 0.72, 0.12, 0.28),
        11: tint(0, 0.58, 0.95, 0),
        12: tint(0.10, 0, 0.02, 0),
        13: stream(MIX, "/FunctionType 4 /Domain [0 1 0 1] /Range [0 1 0 1 0 1 0 1] "),
        14: tint(1, 1, 1, 1),
        15: stream(register_mark(), form),
        16: image(64, ball(), "/ColorSpace /DeviceCMYK /BitsPerComponent 8"),
        17: image(128, grains(), "/ImageMask true /BitsPerComponent 1"),
        18: image(64, steps(), "/ColorSpace [/Indexed [/Separation /Sunrise#20Orange /DeviceCMYK 11 0 R] 7\n"
                               "   <002449 6D92B6 DBFF>] /BitsPerComponent 4"),
        19: tiling(2, 8, 20, wave()),
        20: tiling(1, 6, 45, tiles(), "/ColorSpace << /Sea [/Separation /Deep#20Sea /DeviceCMYK 10 0 R]\n"
                                      "   /Orange [/Separation /Sunrise#20Orange /DeviceCMYK 11 0 R] >>"),
    }


def pdf() -> bytes:
    body = "%PDF-1.7\n% A press sheet, drawn by make-press-sheet.py\n"
    offsets = {}
    for number, content in objects().items():
        offsets[number] = len(body)
        body += f"{number} 0 obj\n{content}\nendobj\n"
    size = max(offsets) + 1
    table = "".join(f"{offsets[n]:010d} 00000 n \n" if n in offsets else "0000000000 65535 f \n"
                    for n in range(size))
    body += f"xref\n0 {size}\n{table}trailer\n<< /Root 1 0 R /Info 6 0 R /Size {size} >>\n" \
            f"startxref\n{len(body)}\n%%EOF\n"
    return body.encode("ascii")


if __name__ == "__main__":
    own = pathlib.Path(__file__).with_name("press-sheet.pdf")
    (pathlib.Path(sys.argv[1]) if len(sys.argv) > 1 else own).write_bytes(pdf())
