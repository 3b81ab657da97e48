#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Writes the tables of host/fonts: glyph names, encodings and widths of the standard fonts.

Needs the Debian packages python3-fonttools (the Adobe Glyph List), ghostscript (the encodings of the
PDF Reference, appendix D) and fonts-urw-base35 (metrics equal to those of the standard fonts).
Run it from anywhere; what it writes is kept in the repository.
"""

import pathlib
import re
import subprocess
import textwrap

from fontTools import agl

FONTS = pathlib.Path(__file__).resolve().parent.parent / "host" / "fonts"
METRICS = pathlib.Path("/usr/share/fonts/type1/urw-base35")

ENCODINGS = ["Standard", "WinAnsi", "MacRoman", "MacExpert", "Symbol", "Dingbats"]
TEXT_FONTS = ["NimbusSans-Regular", "NimbusSans-Bold", "NimbusRoman-Regular", "NimbusRoman-Bold",
              "NimbusRoman-Italic", "NimbusRoman-BoldItalic"]

# What the Macintosh has at codes that MacRomanEncoding leaves free (PDF Reference, 5.5.5).
MACINTOSH = {173: "notequal", 176: "infinity", 178: "lessequal", 179: "greaterequal",
             182: "partialdiff", 183: "summation", 184: "product", 185: "pi", 186: "integral",
             189: "Omega", 195: "radical", 197: "approxequal", 198: "Delta", 215: "lozenge",
             240: "apple"}

LICENCE = """\
// Copyright 2002-2019 Adobe (http://www.adobe.com/).
//
// Redistribution and use in source and binary forms, with or without modification, are permitted
// provided that the following conditions are met:
//
// Redistributions of source code must retain the above copyright notice, this list of conditions
// and the following disclaimer.
//
// Redistributions in binary form must reproduce the above copyright notice, this list of conditions
// and the following disclaimer in the documentation and/or other materials provided with the
// distribution.
//
// Neither the name of Adobe nor the names of its contributors may be used to endorse or promote
// products derived from this software without specific prior written permission.
//
// THIS SOFTWARE IS PROVIDED BY THE COPYRIGHT HOLDERS AND CONTRIBUTORS "AS IS" AND ANY EXPRESS OR
// IMPLIED WARRANTIES, INCLUDING, BUT NOT LIMITED TO, THE IMPLIED WARRANTIES OF MERCHANTABILITY AND
// FITNESS FOR A PARTICULAR PURPOSE ARE DISCLAIMED. IN NO EVENT SHALL THE COPYRIGHT HOLDER OR
// CONTRIBUTORS BE LIABLE FOR ANY DIRECT, INDIRECT, INCIDENTAL, SPECIAL, EXEMPLARY, OR CONSEQUENTIAL
// DAMAGES (INCLUDING, BUT NOT LIMITED TO, PROCUREMENT OF SUBSTITUTE GOODS OR SERVICES; LOSS OF USE,
// DATA, OR PROFITS; OR BUSINESS INTERRUPTION) HOWEVER CAUSED AND ON ANY THEORY OF LIABILITY,
// WHETHER IN CONTRACT, STRICT LIABILITY, OR TORT (INCLUDING NEGLIGENCE OR OTHERWISE) ARISING IN ANY
// WAY OUT OF THE USE OF THIS SOFTWARE, EVEN IF ADVISED OF THE POSSIBILITY OF SUCH DAMAGE.
"""


def filled(words):
    return textwrap.fill(" ".join(words), 99, break_long_words=False, break_on_hyphens=False)


def write(name, licence, tables):
    """Each table: its C++ name and its words."""
    parts = [f"// SPDX-License-Identifier: {licence}\n// Written by scripts/make-font-tables.py.\n"]
    if "BSD" in licence:
        parts.append("//\n// The Adobe Glyph List:\n//\n" + LICENCE)
    parts.append('#include "host/fonts/fonttables.h"\n\nnamespace VANTIX::HOST::FONTTABLES {\n')
    for variable, words in tables:
        parts.append(f'\nconst std::string_view {variable} = R"(\n{filled(words)}\n)";\n')
    parts.append("\n}  // namespace VANTIX::HOST::FONTTABLES\n")
    (FONTS / name).write_text("".join(parts), encoding="ascii")


def encoding(name):
    """Code -> glyph name, as the interpreter has it."""
    program = (f"/{name}Encoding /Encoding findresource 0 1 255 {{ 2 copy get dup /.notdef eq "
               "{ pop pop } { exch =only ( ) print =only ( ) print } ifelse } for quit")
    said = subprocess.run(["gs", "-q", "-dNODISPLAY", "-dBATCH", "-c", program],
                          capture_output=True, check=True, text=True).stdout.split()
    return {int(code): glyph for code, glyph in zip(said[::2], said[1::2])}


def encoding_words(codes):
    """Names in the order of their codes, with a code where it is not the next one."""
    words = []
    for code, name in sorted(codes.items()):
        if code - 1 not in codes:
            words.append(str(code))
        words.append(name)
    return words


def widths(font):
    metrics = (METRICS / f"{font}.afm").read_text(encoding="latin-1")
    return {name: int(width)
            for width, name in re.findall(r"WX (\d+) ; N (\S+) ;", metrics)}


def main():
    glyphs = []
    for name, characters in sorted(agl.LEGACY_AGL2UV.items()):
        glyphs += [f"{name}{'=' if name in agl.AGL2UV else ':'}{characters[0]:X}"]
    write("glyphlist.cpp", "MIT AND BSD-3-Clause", [("kGlyphList", glyphs)])

    encodings = {name: encoding(name) for name in ENCODINGS}
    encodings["MacRoman"].update(MACINTOSH)
    write("encodings.cpp", "MIT",
          [(f"k{name}Encoding", encoding_words(encodings[name])) for name in ENCODINGS])

    fonts = [widths(font) for font in TEXT_FONTS]
    latin = {name for each in ENCODINGS[:3] for name in encodings[each].values()}
    latin |= {name for name, characters in agl.LEGACY_AGL2UV.items()
              if name in fonts[0] and (0xA0 <= characters[0] < 0x180 or characters[0] in (0x218, 0x219)
                                       or 0x2200 <= characters[0] < 0x2300)}
    latin |= {name for name in fonts[0] if name.endswith("commaaccent")}
    text = [" ".join([name] + [str(font[name]) for font in fonts])
            for name in sorted(latin) if all(name in font for font in fonts)]
    symbol = widths("StandardSymbolsPS")
    dingbats = widths("D050000L")
    write("standardwidths.cpp", "MIT", [
        ("kTextWidths", text),
        ("kSymbolWidths", [f"{name} {symbol[name]}" for name in sorted(
            set(encodings["Symbol"].values())) if name in symbol]),
        ("kDingbatsWidths", [f"{name} {dingbats[name]}" for name in sorted(
            set(encodings["Dingbats"].values())) if name in dingbats])])


if __name__ == "__main__":
    main()
