// SPDX-License-Identifier: MIT
#include "host/fonts/type1program.h"

#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <functional>
#include <map>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "core/fonts/ifontancillaries.h"
#include "support/childprocess.h"
#include "support/temporaryfolder.h"
#include "unit/host/madetype1.h"
#include "unit/host/measured.h"

namespace VANTIX::HOST {
namespace {

using TEST::MadeType1;
using TEST::Measured;
using Bytes = std::vector<std::uint8_t>;

const std::string kInstalled = "/usr/share/fonts/type1/urw-base35/";

std::string TextOf(const Bytes& bytes) {
    return {bytes.begin(), bytes.end()};
}

Bytes BytesOf(const std::string& text) {
    return {text.begin(), text.end()};
}

std::shared_ptr<Type1Program> OpenBytes(const Bytes& bytes) {
    std::string problem;
    auto program = Type1Program::Open(bytes, problem);
    EXPECT_EQ(program == nullptr, !problem.empty()) << problem;
    return program;
}

/// Charstrings by glyph and subroutines by number ("dup 5"), in words, as t1disasm reads a program.
std::map<std::string, std::string> Disassembled(const std::string& bytes) {
    const TEST::TemporaryFolder folder;
    TEST::WriteFile(folder.File("font"), bytes);
    const TEST::ChildResult result =
        TEST::RunChild({"t1disasm", folder.File("font")}, std::chrono::seconds(20));
    EXPECT_EQ(result.exitStatus, 0) << result.errors;
    std::map<std::string, std::string> entries;
    std::istringstream lines(result.output);
    std::string name;
    for (std::string line; std::getline(lines, line);) {
        if (line.ends_with(" {") && (line.starts_with("/") || line.starts_with("dup "))) {
            name = line.substr(0, line.size() - 2);
        } else if (line.starts_with("\t}")) {
            name.clear();
        } else if (!name.empty()) {
            entries[name] += line + "\n";
        }
    }
    return entries;
}

class InstalledType1 : public testing::TestWithParam<std::string> {};

TEST_P(InstalledType1, KeepsTheGlyphsThatAreUsedAsTheyWere) {
    const std::string file = kInstalled + GetParam() + ".t1";
    if (!std::filesystem::exists(file)) {
        GTEST_SKIP() << "fonts-urw-base35 is not installed";
    }
    const std::string original = TEST::ReadFile(file);
    const bool isText = GetParam().size() % 2 == 0;
    const auto program = OpenBytes(BytesOf(original));
    ASSERT_NE(program, nullptr);
    std::vector<std::string> glyphs;
    for (const std::size_t code : {33U, 65U, 66U, 97U, 103U, 174U}) {
        if (!program->Encoding()[code].empty()) {
            glyphs.push_back(program->Encoding()[code]);
            program->UseGlyph(glyphs.back());
        }
    }
    program->Rename("XYZUVW+Other");
    program->UseText(isText);
    const std::string cut = TextOf(program->Data());
    EXPECT_LT(cut.size(), original.size() / 3);
    EXPECT_TRUE(cut.starts_with("%!PS-AdobeFont-1.0: XYZUVW+Other"));
    EXPECT_TRUE(cut.ends_with("0\ncleartomark\n"));
    EXPECT_EQ(
        cut.find_first_not_of("\n\r\t !\"#$%&'()*+,-./0123456789:;<=>?@ABCDEFGHIJKLMNOPQRSTUV"
                              "WXYZ[\\]^_`abcdefghijklmnopqrstuvwxyz{|}~") == std::string::npos,
        isText);
    auto before = Disassembled(original);
    auto after = Disassembled(cut);
    for (const std::string& glyph : glyphs) {
        EXPECT_FALSE(after["/" + glyph].empty()) << glyph;
        EXPECT_EQ(after["/" + glyph], before["/" + glyph]);
    }
    EXPECT_EQ(Measured(cut, "XYZUVW+Other", glyphs), Measured(original, GetParam(), glyphs));
}

INSTANTIATE_TEST_SUITE_P(Fonts, InstalledType1,
                         testing::Values("NimbusSans-Regular", "NimbusRoman-BoldItalic",
                                         "NimbusMonoPS-Italic", "StandardSymbolsPS", "D050000L",
                                         "Z003-MediumItalic", "URWGothic-Demi", "C059-Roman"));

struct MadeCase {
    std::string name;
    std::function<void(MadeType1&)> change;
    /// Of what is written beside the font's own bytes.
    std::function<Bytes(Bytes)> wrap;
};

Bytes AsSegments(const Bytes& bytes) {
    const std::string text = TextOf(bytes);
    const std::size_t encrypted = text.find("eexec\n") + 6;
    const std::size_t zeros = text.rfind(std::string(512, '0'));
    std::string segments;
    const auto add = [&](char kind, const std::string& part) {
        segments += {'\x80', kind};
        for (unsigned shift = 0; shift < 32; shift += 8) {
            segments += static_cast<char>(part.size() >> shift);
        }
        segments += part;
    };
    add(1, text.substr(0, encrypted));
    add(2, text.substr(encrypted, zeros - encrypted));
    add(1, text.substr(zeros));
    return BytesOf(segments + "\x80\x03");
}

class MadeType1Programs : public testing::TestWithParam<MadeCase> {};

TEST_P(MadeType1Programs, AreReadCutAndDefined) {
    MadeType1 made;
    if (GetParam().change) {
        GetParam().change(made);
    }
    Bytes bytes = made.Bytes();
    if (GetParam().wrap) {
        bytes = GetParam().wrap(bytes);
    }
    const auto program = OpenBytes(bytes);
    ASSERT_NE(program, nullptr);
    EXPECT_EQ(program->Name(), made.name);
    EXPECT_EQ(program->Encoding()[65], "A");
    EXPECT_FLOAT_EQ(program->WidthOf("A"), 0.6F);
    EXPECT_FLOAT_EQ(program->WidthOf("B"), 0.7F);
    EXPECT_LT(program->WidthOf("C"), 0.0F);
    EXPECT_TRUE(program->HasOutline("Aacute"));
    EXPECT_FALSE(program->HasOutline(".notdef"));
    program->Rename("New");
    program->UseGlyph("Aacute");
    program->UseGlyph("C");
    const std::string data = TextOf(program->Data());
    EXPECT_EQ(Measured(data, "New", {"Aacute"}), "600.0\n0.0\n640\n510\n0\n10\n");
    const auto again = OpenBytes(program->Data());
    ASSERT_NE(again, nullptr);
    EXPECT_EQ(again->Name(), "New");
    EXPECT_EQ(again->GlyphCount(), 4);  // with .notdef, base and accent
    EXPECT_LT(again->WidthOf("B"), 0.0F);
}

const std::vector<MadeCase> kMadeCases = {
    {"Plain", {}, {}},
    {"Hexadecimal", [](MadeType1& made) { made.isHexadecimal = true; }, {}},
    {"Segments", {}, AsSegments},
    {"NoLead", [](MadeType1& made) { made.lenIV = 0; }, {}},
    {"NoEncryption", [](MadeType1& made) { made.lenIV = -1; }, {}},
    {"OtherWords",
     [](MadeType1& made) {
         made.read = "-|";
         made.put = "|";
         made.define = "|-";
     },
     {}},
    {"WithoutTrailer", [](MadeType1& made) { made.trailer.clear(); }, {}},
    {"WithoutZeros", [](MadeType1& made) { made.trailer = "cleartomark"; }, {}},
    {"CutBeforeItsEnd",
     [](MadeType1& made) {
         made.closing.clear();
         made.trailer.clear();
     },
     {}},
    {"CutInAGlyph",
     [](MadeType1& made) {
         made.closing = "/cut 400 RD abc";
         made.trailer.clear();
     },
     {}},
    {"Differences",
     [](MadeType1& made) {
         made.encoding =
             "256 array 0 1 255 {1 index exch /.notdef put} for\ndup 8#101 /A put dup 66 "
             "/B put readonly def";
     },
     {}},
    {"NamesLeftOver",
     [](MadeType1& made) {
         made.before =
             "FontDirectory/Made known{/Made findfont dup/UniqueID known{pop true}{pop "
             "false}ifelse}{false}ifelse pop\n";
     },
     {}},
    {"GuardedDefinition",
     [](MadeType1& made) {
         made.before =
             "FontDirectory/Made known{/Made findfont dup/UniqueID known{pop save true}{pop "
             "false}ifelse}{false}ifelse\n";
         made.trailer += "{restore}if\n";
     },
     {}},
};

std::string NameOfMade(const testing::TestParamInfo<MadeCase>& info) {
    return info.param.name;
}

INSTANTIATE_TEST_SUITE_P(All, MadeType1Programs, testing::ValuesIn(kMadeCases), NameOfMade);

TEST(Type1Program, EmptiesSubroutinesThatNothingCalls) {
    const auto program = OpenBytes(MadeType1().Bytes());
    program->UseGlyph("A");
    auto entries = Disassembled(TextOf(program->Data()));
    EXPECT_NE(entries["dup 5"].find("rlineto"), std::string::npos);
    EXPECT_EQ(entries["dup 6"], "\treturn\n");
    EXPECT_EQ(entries.count("/B"), 0U);
}

TEST(Type1Program, WithoutNotdefGetsOne) {
    MadeType1 made;
    made.glyphs.erase(made.glyphs.begin());
    const auto program = OpenBytes(made.Bytes());
    program->UseGlyph("A");
    EXPECT_EQ(Disassembled(TextOf(program->Data()))["/.notdef"], "\t0 250 hsbw\n\tendchar\n");
}

TEST(Type1Program, BuiltInAnotherWayGoesOutWhole) {
    // One set of subroutines for each of two resolutions.
    MadeType1 made;
    const std::string text = made.PrivateText();
    const std::size_t subroutines = text.find("/Subrs");
    made.closing = "end\n" + text.substr(subroutines, text.find("2 index") - subroutines) +
                   made.closing.substr(4);
    const auto program = OpenBytes(made.Bytes());
    ASSERT_NE(program, nullptr);
    EXPECT_FLOAT_EQ(program->WidthOf("A"), 0.6F);
    program->Rename("New");
    program->UseGlyph("A");
    program->UseText(true);
    const std::string data = TextOf(program->Data());
    EXPECT_NE(data.find("/FontName /New def"), std::string::npos);
    EXPECT_EQ(Disassembled(data).count("/B"), 1U);
}

TEST(Type1Program, RefusesWhatIsNoType1Font) {
    MadeType1 nameless;
    nameless.name.clear();
    MadeType1 empty;
    empty.glyphs.clear();
    const std::vector<Bytes> cases = {
        {},
        BytesOf("%!"),
        BytesOf("%!PS-AdobeFont-1.0: A\n/FontName /A def currentfile eexec"),
        Bytes(3000, 0x80),
        nameless.Bytes(),
        empty.Bytes(),
    };
    for (const Bytes& bytes : cases) {
        EXPECT_EQ(OpenBytes(bytes), nullptr);
    }
}

TEST(Type1Program, IsNeverMadeToRunOn) {
    MadeType1 made;
    made.subroutines = {{0, TEST::CharString({0, TEST::kCall, 0, TEST::kCall})},
                        {5, TEST::CharString({5, TEST::kCall})},
                        {65535, TEST::CharString({TEST::kBack})}};
    for (int digit = 0; digit < 9; ++digit) {  // each calls the one before ten times
        std::vector<int> words;
        for (int times = 0; times < 40; ++times) {
            words.insert(words.end(), {digit + 10, TEST::kCall});
        }
        words.push_back(TEST::kBack);
        made.subroutines.emplace_back(digit + 11, TEST::CharString(words));
    }
    made.glyphs.emplace_back("slow", TEST::CharString({0, 1, TEST::kWidth, 19, TEST::kCall}));
    made.glyphs.emplace_back("self", TEST::CharString({0, 100, 0, 65, 256, TEST::kAccented}));
    made.encoding = "256 array dup 99999 /A put dup -1 /B put dup 65 /A put";
    const auto program = OpenBytes(made.Bytes());
    ASSERT_NE(program, nullptr);
    EXPECT_EQ(program->Encoding()[65], "A");
    program->UseGlyph("slow");
    program->UseGlyph("A");
    EXPECT_GT(program->Data().size(), 600U);
    Bytes bytes = made.Bytes();
    while (bytes.size() > 100) {
        bytes.resize(bytes.size() - 37);
        std::string problem;
        const auto shorter = Type1Program::Open(bytes, problem);
        EXPECT_TRUE(shorter == nullptr || !shorter->Data().empty());
    }
}

/// What an encoding enumeration gives.
class Codes final : public GRAPHICS::IEncodingFunctor {
public:
    bool operator()(std::int32_t code, const char* name) override {
        found[code] = name;
        return true;
    }

    std::map<std::int32_t, std::string> found;
};

std::map<std::int32_t, std::string> EncodingOf(SimpleFont& font) {
    Codes codes;
    FindInterface<GRAPHICS::IType1Ancillary>(&font, GRAPHICS::IID_ITYPE1ANCILLARY)
        ->EnumerateEncoding(codes);
    return codes.found;
}

TEST(Type1Font, TellsWhereItsEncodingDiffersFromTheProgram) {
    MadeType1 made;
    made.matrix = "[0.002 1e-4 2e-4 0.002 3 4]";
    const auto program = OpenBytes(made.Bytes());
    SimpleFontDescription description;
    description.name = "New";
    description.encoding = program->Encoding();
    description.encoding[65] = "B";
    description.encoding[66] = "";
    description.encoding[1] = "a(b";
    const auto font = MakeType1Font(program, description);
    const std::map<std::int32_t, std::string> differences = {
        {1, "a#28b"}, {65, "B"}, {66, ".notdef"}};
    EXPECT_EQ(EncodingOf(*font), differences);
    const float* matrix = font->GetFontMatrix();
    const std::array<float, 6> expected{0.002F, 2e-4F, 1e-4F, 0.002F, 3, 4};
    EXPECT_TRUE(std::equal(expected.begin(), expected.end(), matrix));
    auto* data = FindInterface<GRAPHICS::IFontData>(font.Get(), GRAPHICS::IID_IFONTDATA);
    ASSERT_NE(data, nullptr);
    EXPECT_EQ(data->GetData(), program->Data().data());
    EXPECT_TRUE(font->IsEmbedded());
    EXPECT_FLOAT_EQ(font->WrittenWidthAt(65), 1.4F);
}

TEST(ResidentFont, HasDifferencesOnlyWhenItIsReEncoded) {
    SimpleFontDescription description;
    description.name = "Helvetica";
    description.encoding[200] = "A";
    std::array<float, kSimpleCodes> widths{};
    widths.fill(-1.0F);
    widths[200] = 0.667F;
    for (const bool reEncoded : {false, true}) {
        const auto font = MakeResidentFont(description, reEncoded, widths);
        std::int32_t count = -1;
        EXPECT_EQ(font->GetEncodingDifferences(count) != nullptr, reEncoded);
        EXPECT_EQ(count, reEncoded ? 1 : 0);
        EXPECT_EQ(EncodingOf(*font).size(), reEncoded ? 1U : 0U);
        EXPECT_FALSE(font->IsEmbedded());
        EXPECT_FLOAT_EQ(font->WrittenWidthAt(200), 0.667F);
        EXPECT_LT(font->WrittenWidthAt(65), 0.0F);
    }
}

}  // namespace
}  // namespace VANTIX::HOST
