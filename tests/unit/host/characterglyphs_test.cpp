// SPDX-License-Identifier: MIT
#include "host/fonts/characterglyphs.h"

#include <gtest/gtest.h>

#include <string>

#include "madetruetype.h"

using namespace VANTIX::HOST;
using namespace VANTIX::TEST;

namespace {

/// "A" and "B" are glyphs 1 and 2; upright "A" is 3 in vertical writing.
std::string MadeFont(std::size_t substitutionBytes = std::string::npos) {
    auto tables = MadeTables({"", TriangleGlyph(100), TriangleGlyph(200), TriangleGlyph(150)});
    tables["cmap"] = Words({0, 1, 3, 1, 0, 12, 6, 14, 0, 'A', 2, 1, 2});
    const std::string scripts = Words({1}) + "DFLT" + Words({8, 4, 0, 0, -1, 1, 0});
    const std::string features = Words({1}) + "vert" + Words({8, 0, 1, 0});
    const std::string lookups = Words({1, 4, 1, 0, 1, 8, 1, 6, 2, 1, 1, 1});
    tables["GSUB"] =
        (Words({1, 0, 10, 30, 44}) + scripts + features + lookups).substr(0, substitutionBytes);
    return MakeSfnt(tables);
}

}  // namespace

TEST(CharacterGlyphs, HaveFormsForVerticalWriting) {
    const std::string font = MadeFont();
    const CharacterGlyphs glyphs({font.begin(), font.end()});
    EXPECT_EQ(glyphs.GlyphOf('A', false), 1);
    EXPECT_EQ(glyphs.GlyphOf('A', true), 3);
    EXPECT_EQ(glyphs.GlyphOf('B', true), 2);
    EXPECT_EQ(glyphs.GlyphOf('C', true), 0);
    EXPECT_EQ(glyphs.GlyphOf(0x10FFFF, false), 0);
}

TEST(CharacterGlyphs, AreTheOrdinaryOnesOfADamagedFont) {
    const std::string cut = MadeFont(50);
    EXPECT_EQ(CharacterGlyphs({cut.begin(), cut.end()}).GlyphOf('A', true), 1);
    EXPECT_EQ(CharacterGlyphs({}).GlyphOf('A', true), 0);
}
