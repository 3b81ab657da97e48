// SPDX-License-Identifier: MIT
#include "host/fonts/truetypeprogram.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <functional>
#include <set>

#include "core/graphics/pluginhelper/delegateconnectionspace.h"
#include "madetruetype.h"
#include "support/childprocess.h"
#include "support/temporaryfolder.h"

using namespace VANTIX;
using namespace VANTIX::HOST;
using namespace VANTIX::TEST;

namespace {

using Tables = std::map<std::string, std::string>;
using Program = std::shared_ptr<TrueTypeProgram>;

constexpr const char* kSans = "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf";

std::vector<std::uint8_t> BytesOf(const std::string& text) {
    return {text.begin(), text.end()};
}

Program OpenText(const std::string& font) {
    std::string problem;
    Program program = TrueTypeProgram::Open(BytesOf(font), problem);
    EXPECT_EQ(program == nullptr, !problem.empty());
    return program;
}

/// A blank glyph, two triangles, both of them, and three blank ones.
Tables GoodTables() {
    return MadeTables(
        {"", TriangleGlyph(100), TriangleGlyph(80), CompositeGlyph({1, 2}), "", "", ""});
}

/// Outlines in thousandths of an em.
class OutlineText : public GRAPHICS::DelegateConnectionSpace {
public:
    std::string text;

    void NewPath() override { text += "["; }

    void MoveTo(float x, float y) override { Write('m', std::array{x, y}); }

    void LineTo(const float* p, std::int32_t /*count*/) override {
        Write('l', std::array{p[0], p[1]});
    }

    void CurveTo(const float* p, std::int32_t /*count*/) override {
        Write('c', std::array{p[0], p[1], p[2], p[3], p[4], p[5]});
    }

    void ClosePath() override { text += "z "; }

    void ResetPath() override { text += "]"; }

private:
    template <std::size_t N>
    void Write(char letter, const std::array<float, N>& points) {
        for (const float number : points) {
            std::array<char, 24> word{};
            std::snprintf(word.data(), word.size(), "%.6g ", static_cast<double>(number) * 1000);
            text += word.data();
        }
        (text += letter) += ' ';
    }
};

struct Outline {
    std::uint16_t index;
    float advance;
    std::string text;
};

std::map<std::string, Outline> OutlinesOf(TrueTypeProgram& program) {
    class Reader : public GRAPHICS::IGlyphFunctor {
    public:
        std::map<std::string, Outline> outlines;

        bool operator()(const char* name, std::int32_t nameLength, std::uint16_t index,
                        const GRAPHICS::IGlyphRecording* recording) override {
            OutlineText space;
            EXPECT_TRUE(recording->Play(space));
            EXPECT_EQ(recording->GetPointCount() == 0, space.text == "[]") << name;
            EXPECT_EQ(std::string_view(name).size(), static_cast<std::size_t>(nameLength));
            outlines[name] = {index, recording->GetAdvanceWidth(), space.text};
            return true;
        }
    } reader;

    program.EnumerateGlyphs(reader);
    return reader.outlines;
}

std::uint32_t Number(const std::vector<std::uint8_t>& bytes, std::size_t offset, int size) {
    std::uint32_t value = 0;
    for (int i = 0; i < size; ++i) {
        value = value << 8U | bytes.at(offset++);
    }
    return value;
}

/// Checks the directory and the glyphs against what makes any moving of tables needless.
Tables CheckLayout(const std::vector<std::uint8_t>& file) {
    Tables tables;
    const std::uint32_t count = Number(file, 4, 2);
    std::uint32_t expected = 12 + 16 * count;
    std::uint32_t sum = 0;
    for (std::size_t i = 0; i < file.size(); i += 4) {
        sum += Number(file, i, 4);
    }
    EXPECT_EQ(sum, 0xB1B0AFBA);
    for (std::uint32_t i = 0; i < count; ++i) {
        const auto record = file.begin() + 12 + 16 * static_cast<std::ptrdiff_t>(i);
        const std::uint32_t offset = Number(file, 12 + 16 * i + 8, 4);
        const std::uint32_t length = Number(file, 12 + 16 * i + 12, 4);
        EXPECT_EQ(offset, expected);
        EXPECT_EQ(length % 4, 0U);
        expected += length;
        const auto start = file.begin() + static_cast<std::ptrdiff_t>(offset);
        tables[{record, record + 4}] = {start, start + static_cast<std::ptrdiff_t>(length)};
    }
    EXPECT_EQ(expected, file.size());
    return tables;
}

Program Sans() {
    const std::string font = ReadFile(kSans);
    return font.empty() ? nullptr : OpenText(font);
}

}  // namespace

struct BadFont {
    const char* name;
    std::function<std::string()> make;
};

class UnusableFont : public testing::TestWithParam<BadFont> {};

TEST_P(UnusableFont, IsRefusedWithAReason) {
    EXPECT_EQ(OpenText(GetParam().make()), nullptr);
}

namespace {

/// The good tables with one of them dropped, or with a byte changed.
std::string Without(const char* tag) {
    Tables tables = GoodTables();
    tables.erase(tag);
    return MakeSfnt(tables);
}

std::string Changed(const char* tag, std::size_t offset, const std::string& bytes) {
    Tables tables = GoodTables();
    tables[tag].replace(offset, bytes.size(), bytes);
    return MakeSfnt(tables);
}

}  // namespace

INSTANTIATE_TEST_SUITE_P(
    TrueType, UnusableFont,
    testing::Values(BadFont{"Empty", [] { return std::string(); }},
                    BadFont{"Short", [] { return std::string("\0\1\0\0\0", 5); }},
                    BadFont{"NoTables", [] { return MakeSfnt({}); }},
                    BadFont{"OtherVersion", [] { return MakeSfnt(GoodTables(), "OTTO"); }},
                    BadFont{"NoOutlines", [] { return Without("glyf"); }},
                    BadFont{"NoLocations", [] { return Without("loca"); }},
                    BadFont{"NoMetrics", [] { return Without("hmtx"); }},
                    BadFont{"NoGlyphs", [] { return Changed("maxp", 4, Words({0})); }},
                    BadFont{"NoUnits", [] { return Changed("head", 18, Words({0})); }},
                    BadFont{"UnknownLoca", [] { return Changed("head", 50, Words({2})); }}),
    [](const auto& tested) { return tested.param.name; });

TEST(TrueTypeProgram, OutlinesAreInEmsClosedAndWithoutPointsOfNoUse) {
    const Program program = OpenText(MakeSfnt(GoodTables()));
    ASSERT_NE(program, nullptr);
    EXPECT_EQ(program->NameGlyph(3, "both"), "both");
    const auto outlines = OutlinesOf(*program);
    EXPECT_EQ(
        outlines.at("both").text,
        "[0 0 m 100 0 l 100 67 67 100 0 100 c z 100 0 m 180 0 l 180 67 153 100 100 100 c z ]");
    EXPECT_EQ(outlines.at("both").advance, 0.5F);
    EXPECT_EQ(outlines.at(".notdef").text, "[]");
    // Glyph 0, the composite, its components, and one that makes 'loca' end at a word.
    EXPECT_EQ(program->Finish().glyphCount, 5U);
}

class DamagedGlyph : public testing::TestWithParam<BadFont> {};

TEST_P(DamagedGlyph, IsBlankAndHarmsNoOther) {
    const Program program = OpenText(GetParam().make());
    ASSERT_NE(program, nullptr);
    program->NameGlyph(1, "good");
    program->NameGlyph(2, "bad");
    EXPECT_FALSE(program->HasOutline("bad"));
    EXPECT_TRUE(program->HasOutline("good"));
    auto outlines = OutlinesOf(*program);
    EXPECT_EQ(outlines.at("bad").text, "[]");
    EXPECT_GT(outlines.at("good").text.size(), 2U);

    // What was written holds the same.
    CheckLayout(program->Finish().bytes);
    const Program written =
        OpenText({program->Finish().bytes.begin(), program->Finish().bytes.end()});
    ASSERT_NE(written, nullptr);
    for (const char* name : {"good", "bad"}) {
        EXPECT_EQ(written->NameGlyph(outlines.at(name).index, name), name);
    }
    EXPECT_EQ(OutlinesOf(*written).at("good").text, outlines.at("good").text);
    EXPECT_FALSE(written->HasOutline("bad"));
}

namespace {

std::string WithGlyph2(const std::string& glyph) {
    return MakeSfnt(MadeTables({"", TriangleGlyph(100), glyph, CompositeGlyph({2}), ""}));
}

/// Each glyph is twice the next one: too much to draw, though nothing loops.
std::string Doubling() {
    std::vector<std::string> glyphs{"", TriangleGlyph(100)};
    for (int i = 2; i < 40; ++i) {
        glyphs.push_back(CompositeGlyph({i + 1, i + 1}));
    }
    glyphs.emplace_back();
    return MakeSfnt(MadeTables(glyphs));
}

}  // namespace

INSTANTIATE_TEST_SUITE_P(
    TrueType, DamagedGlyph,
    testing::Values(BadFont{"PartOfItself", [] { return WithGlyph2(CompositeGlyph({2})); }},
                    BadFont{"Loop",
                            [] {
                                return WithGlyph2(CompositeGlyph({1, 3}));
                            }},
                    BadFont{"NoSuchPart",
                            [] {
                                return WithGlyph2(CompositeGlyph({1, 77}));
                            }},
                    BadFont{"Doubling", Doubling},
                    BadFont{"Truncated", [] { return WithGlyph2(TriangleGlyph(9).substr(0, 24)); }},
                    BadFont{"ManyContours",
                            [] {
                                return WithGlyph2(Words({999, 0, 0, 9, 9, 3}));
                            }},
                    BadFont{"OutsideTheTable",
                            [] { return Changed("loca", 12, LongWord(0xFFFFFF00)); }}),
    [](const auto& tested) { return tested.param.name; });

TEST(TrueTypeProgram, TruncatedFilesNeverCrash) {
    const std::string font = ReadFile(kSans).substr(0, 400000);
    for (std::size_t size = 0; size < font.size(); size += 1 + size / 3) {
        std::string problem;
        const Program program = TrueTypeProgram::Open(BytesOf(font.substr(0, size)), problem);
        if (program != nullptr) {
            program->NameGlyph(36, "A");
            OutlinesOf(*program);
            CheckLayout(program->Finish().bytes);
        }
    }
}

TEST(TrueTypeProgram, NamesAreUniqueFitAndTheSameEachTime) {
    const Program program = OpenText(MakeSfnt(GoodTables()));
    ASSERT_NE(program, nullptr);
    EXPECT_EQ(program->NameGlyph(1, "A"), "A");
    EXPECT_EQ(program->NameGlyph(1, "A.swash"), "A.swash");
    EXPECT_EQ(program->NameGlyph(2, "A"), "A.g2");
    EXPECT_EQ(program->NameGlyph(2, "A"), "A.g2");
    EXPECT_EQ(program->NameGlyph(3, "A.g2"), "A.g2.g3");
    EXPECT_EQ(program->NameGlyph(4, ".notdef"), "g4");
    EXPECT_EQ(program->NameGlyph(0, ".notdef"), ".notdef");
    EXPECT_EQ(program->NameGlyph(99, "B"), ".notdef");
    EXPECT_EQ(program->NameGlyph(4, "(/").find_first_of("(/"), std::string::npos);
    const std::string large = program->NameGlyph(1, std::string(900, 'x'));
    EXPECT_NE(program->NameGlyph(2, std::string(900, 'x')), large);
    EXPECT_LE(program->NameGlyph(2, std::string(900, 'x')).size(), 127U);

    program->Finish();
    EXPECT_EQ(program->NameGlyph(1, "late"), "A");
    EXPECT_EQ(program->NameGlyph(2, "A"), "A.g2");
    EXPECT_LT(program->WidthOf("late"), 0.0F);
}

TEST(TrueTypeProgram, MapsAndNamesOfTheFileAreFound) {
    const Program sans = Sans();
    if (sans == nullptr) {
        GTEST_SKIP() << kSans;
    }
    EXPECT_TRUE(sans->HasUnicodeMap());
    EXPECT_TRUE(sans->HasMacMap());
    EXPECT_FALSE(sans->HasSymbolMap());
    const std::uint16_t glyph = sans->GlyphOfUnicode(U'A');
    EXPECT_NE(glyph, 0);
    EXPECT_EQ(sans->GlyphOfMac('A'), glyph);
    EXPECT_EQ(sans->GlyphOfSymbol(0xF041), 0);
    EXPECT_NE(sans->GlyphOfUnicode(0x1D538), 0);
    EXPECT_EQ(sans->PostNameOf(glyph), "A");
    EXPECT_EQ(sans->GlyphOfPostName("A"), glyph);
    EXPECT_EQ(sans->GlyphOfPostName("no such"), 0);

    // Names alone are no map of the file.
    Tables tables = GoodTables();
    tables["post"] =
        LongWord(0x20000) + std::string(28, '\0') + Words({7, 0, 36, 37, 258, 1, 1, 1}) + "\3odd";
    const Program named = OpenText(MakeSfnt(tables));
    ASSERT_NE(named, nullptr);
    EXPECT_EQ(named->GlyphOfPostName("odd"), 3);
    EXPECT_EQ(named->PostNameOf(1), "A");
    EXPECT_FALSE(named->HasUnicodeMap());
    EXPECT_EQ(named->GlyphOfUnicode(U'A'), 0);
}

namespace {

/// A program of glyphs by Unicode, some of them composed.
Program NamedSans() {
    Program sans = Sans();
    if (sans != nullptr) {
        for (const char32_t c : {U' ', U'A', U'g', U'\u00C4', U'\u01FA', U'\u1E69', U'%'}) {
            sans->NameGlyph(sans->GlyphOfUnicode(c), "u" + std::to_string(c));
        }
    }
    return sans;
}

}  // namespace

TEST(TrueTypeProgram, CuttingKeepsOutlinesAndAdvances) {
    const Program sans = NamedSans();
    if (sans == nullptr) {
        GTEST_SKIP() << kSans;
    }
    const auto before = OutlinesOf(*sans);
    const FinishedTrueType& finished = sans->Finish();
    EXPECT_LT(finished.bytes.size(), 30000U);
    EXPECT_LT(finished.glyphCount, 20U);
    const Program cut = OpenText({finished.bytes.begin(), finished.bytes.end()});
    ASSERT_NE(cut, nullptr);
    EXPECT_EQ(cut->GlyphCount(), finished.glyphCount);
    for (const auto& [name, index] : finished.glyphs) {
        EXPECT_EQ(cut->NameGlyph(index, name), name);
    }
    for (const auto& [name, outline] : OutlinesOf(*cut)) {
        EXPECT_EQ(outline.text, before.at(name).text) << name;
        EXPECT_EQ(outline.advance, before.at(name).advance) << name;
    }
}

TEST(TrueTypeProgram, ConvertedAdvancesLoseWhatTheirFractionCuts) {
    const Program sans = NamedSans();
    if (sans == nullptr) {
        GTEST_SKIP() << kSans;
    }
    EXPECT_FLOAT_EQ(sans->WidthOf("u65"), 1401 / 2048.0F);
    sans->ExpectConversion(true);
    EXPECT_FLOAT_EQ(sans->WidthOf("u65"), 0.684F);
}

TEST(TrueTypeProgram, TheSanitizerTakesWhatIsWritten) {
    const Program sans = NamedSans();
    const bool hasSanitizer = !ReadFile("/usr/bin/ots-sanitize").empty();
    if (sans == nullptr || !hasSanitizer) {
        GTEST_SKIP() << "ots-sanitize";
    }
    Tables tables = CheckLayout(sans->Finish().bytes);
    tables["head"].resize(54);  // a length that is fixed, and padded here
    tables["cmap"] =
        Words({0, 1, 3, 1}) + LongWord(12) + Words({4, 24, 0, 2, 2, 0, 0, 0xFFFF, 0, 0xFFFF, 1, 0});
    tables["name"] = Words({0, 0, 6});
    tables["OS/2"] = Words({4, 500, 400, 5, 0}) + std::string(86, '\0');
    tables["post"] = LongWord(0x30000) + std::string(28, '\0');
    const TemporaryFolder folder;
    WriteFile(folder.File("font.ttf"), MakeSfnt(tables));
    const ChildResult result =
        RunChild({"ots-sanitize", folder.File("font.ttf")}, std::chrono::seconds(20));
    EXPECT_EQ(result.exitStatus, 0) << result.output << result.errors;
}
