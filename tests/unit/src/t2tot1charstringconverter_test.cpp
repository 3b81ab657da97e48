// SPDX-License-Identifier: MIT
#include "t2tot1charstringconverter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>
#include <string>

#include "charstringwords.h"
#include "core/object/tobject.h"
#include "support/recordinglogger.h"

namespace VANTIX::PS {
namespace {

/// Bias 107, and the subroutines that a test gives.
class FakeSubroutines : public TObject<GRAPHICS::ICharStringSubroutines> {
public:
    std::map<std::int32_t, std::string> local;
    std::map<std::int32_t, std::string> global;

    std::int32_t GetLocalBias(std::uint16_t fontDict) const override { return 107 + fontDict; }

    std::int32_t GetGlobalBias() const override { return 107; }

    std::int32_t CopyLocalSubroutine(std::uint16_t /*fontDict*/, std::int32_t number,
                                     std::uint8_t* buffer) const override {
        return Copy(local, number, buffer);
    }

    std::int32_t CopyGlobalSubroutine(std::int32_t number, std::uint8_t* buffer) const override {
        return Copy(global, number, buffer);
    }

private:
    static std::int32_t Copy(const std::map<std::int32_t, std::string>& all, std::int32_t number,
                             std::uint8_t* buffer) {
        const auto found = all.find(number);
        const std::string bytes =
            found == all.end() ? std::string() : TEST::MakeCharString(found->second);
        std::copy(bytes.begin(), bytes.end(), buffer);
        return static_cast<std::int32_t>(bytes.size());
    }
};

struct Conversion {
    const char* name;
    std::string from;
    std::string to;  ///< behind the width, where the default width 600 comes first
    std::string messages;
};

class Type2Operators : public ::testing::TestWithParam<Conversion> {
protected:
    Type2Operators() {
        TEST::RecordingLogger::Get().Clear();
        subroutines->local = {{0, "7 [5] [11]"}, {1, "1 2 [5] -104 [10]"}, {2, "5 [1221] [6]"}};
        subroutines->global = {{0, "3 4 [5] [11]"}, {1, "8 [14] 9 9 [5]"}};
    }

    std::string Convert(const std::string& words, bool noWidth = false) {
        const std::string bytes = TEST::MakeCharString(words);
        EXPECT_TRUE(converter.Init(500, 600, 0, noWidth, subroutines.Get()));
        converter.Convert(bytes.data(), static_cast<std::int32_t>(bytes.size()));
        return Result();
    }

    [[nodiscard]] std::string Result() const {
        std::int32_t length = 0;
        const std::uint8_t* data = converter.GetCharString(length);
        return TEST::ReadCharString({data, static_cast<std::size_t>(length)});
    }

    TInterfacePtr<FakeSubroutines> subroutines = MakeObject<FakeSubroutines>();
    T2ToT1CharStringConverter converter;
};

TEST_P(Type2Operators, AreConverted) {
    std::string expected = GetParam().to;
    if (expected.find("[13]") == std::string::npos && !expected.empty()) {
        expected = "0 600 [13] 0 0 [21] " + expected;
        EXPECT_EQ(Convert("0 0 [21] " + GetParam().from), expected);
    } else {
        EXPECT_EQ(Convert(GetParam().from), expected);
    }
    EXPECT_EQ(TEST::RecordingLogger::Get().Messages(), GetParam().messages);
}

std::string Repeat(const std::string& text, int times) {
    std::string all;
    for (; times > 0; --times) {
        all += text;
    }
    return all;
}

std::vector<Conversion> Conversions() {
    return {
        {"DefaultWidth", "100 [22]", "0 600 [13] 100 [22] ", ""},
        {"NothingBeforeTheWidth", "1 2 [5]", "0 600 [13] 1 2 [5] ", ""},
        {"NominalWidth", "20 100 [22]", "0 520 [13] 100 [22] ", ""},
        {"WidthOfStems", "20 1 2 3 4 [1]", "0 520 [13] ", ""},
        {"WidthOfMask", "20 1 2 [19] #80 [14]", "0 520 [13] 1 2 [3] [14] ", ""},
        {"WidthOfEnd", "-20 [14]", "0 480 [13] [14] ", ""},
        {"Accent", "0 0 65 66 [14]", "0 600 [13] 0 0 0 65 66 [1206] ", ""},
        {"AccentWithWidth", "9 1 2 65 66 [14]", "0 509 [13] 0 1 2 65 66 [1206] ", ""},
        {"FractionsAreCut", "12.5 -12.5 [21]", "0 600 [13] 12 -13 [21] ", ""},
        {"StemsAreAbsolute", "10 20 30 40 [1] 5 6 [3] 7 [4]",
         "0 600 [13] 10 20 [1] 60 40 [1] 5 6 [3] 7 [4] ", ""},
        {"MaskOfNineStems", "[18] 0 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 [23] [19] #55 #80 9 [22]",
         "0 600 [13] 0 1 [3] 2 1 [3] 4 1 [3] 6 1 [3] 8 1 [3] 10 1 [3] 12 1 [3] 14 1 [3] 16 1 [3] 9 "
         "[22] ",
         ""},
        {"StemsOfTheFirstMask", "0 20 30 20 [18] 10 30 -20 5 [23] [20] #F0 [19] #50 [19] #F0 9 [4]",
         "0 600 [13] 0 20 [1] 50 20 [1] 20 5 [3] 9 [4] ", ""},
        {"Lines", "1 2 3 4 [5]", "1 2 [5] 3 4 [5] ", ""},
        {"AlternatingLines", "1 2 3 [6] 4 5 [7]", "1 [6] 2 [7] 3 [6] 4 [7] 5 [6] ", ""},
        {"Curves", "1 2 3 4 5 6 7 8 9 10 11 12 [8]", "1 2 3 4 5 6 [8] 7 8 9 10 11 12 [8] ", ""},
        {"CurveLine", "1 2 3 4 5 6 7 8 [24]", "1 2 3 4 5 6 [8] 7 8 [5] ", ""},
        {"LineCurve", "1 2 3 4 5 6 7 8 [25]", "1 2 [5] 3 4 5 6 7 8 [8] ", ""},
        {"Vertical", "9 1 2 3 4 5 6 7 8 [26]", "9 1 2 3 0 4 [8] 0 5 6 7 0 8 [8] ", ""},
        {"Horizontal", "9 1 2 3 4 5 6 7 8 [27]", "1 9 2 3 4 0 [8] 5 0 6 7 8 0 [8] ", ""},
        {"HorizontalFirst", "1 2 3 4 5 6 7 8 9 [31]", "1 2 3 4 [31] 0 5 6 7 8 9 [8] ", ""},
        {"VerticalFirst", "1 2 3 4 5 6 7 8 9 [30]", "1 2 3 4 [30] 5 0 6 7 9 8 [8] ", ""},
        {"Flex", "1 2 3 4 5 6 7 8 9 10 11 12 50 [1235]", "1 2 3 4 5 6 [8] 7 8 9 10 11 12 [8] ", ""},
        {"HFlex", "1 2 3 4 5 6 7 [1234]", "1 0 2 3 4 0 [8] 5 0 6 -3 7 0 [8] ", ""},
        {"HFlex1", "1 2 3 4 5 6 7 8 9 [1236]", "1 2 3 4 5 0 [8] 6 0 7 8 9 -14 [8] ", ""},
        {"Flex1Wide", "10 0 10 0 10 1 10 1 10 1 7 [1237]", "10 0 10 0 10 1 [8] 10 1 10 1 7 -3 [8] ",
         ""},
        {"Flex1High", "0 10 0 10 1 10 1 10 1 10 7 [1237]", "0 10 0 10 1 10 [8] 1 10 1 10 -3 7 [8] ",
         ""},
        {"Arithmetic",
         "7.5 2.5 [1210] 7.5 2.5 [1211] [5] 7.5 2.5 [1224] 9 2 [1212] [5] 3 0.5 "
         "[1212] [6]",
         "9 5 [5] 14 4 [5] 0 [6] ", ""},
        {"Logic", "1 0 [1203] 1 0 [1204] [5] 0.5 [1205] 3.5 3 [1215] [5]", "0 1 [5] 1 1 [5] ", ""},
        {"Functions", "-5 [1209] 5 [1214] [5] 17 [1226] -4 [1226] [5]", "5 -5 [5] 4 0 [5] ", ""},
        {"Stack", "1 2 [1228] [5] 3 [1227] [5] 4 5 [1218] [6] [1218]", "2 1 [5] 3 3 [5] 4 [6] ",
         ""},
        {"IfElse", "1 2 3 3 [1222] 1 2 4 3 [1222] [5]", "1 2 [5] ", ""},
        {"TransientArray", "8 5 [1220] 5 [1221] 6 [1221] [5] -105 [10]", "8 0 [5] 0 [6] ", ""},
        {"OutOfArray", "8 32 [1220] -1 [1221] 3 [6]", "3 [6] ",
         "32 is out of range.\n-1 is out of range.\n"},
        {"Subroutines", "6 -107 [10] -106 [10] [14]", "6 7 [5] 1 2 [5] [14] ",
         "Failed callsubr #3\n"},
        {"GlobalSubroutine", "-107 [29] -106 [29] 1 [6]", "3 4 [5] [14] ", ""},
        {"ReturnOutside", "1 [6] [11]", "1 [6] [11] ", ""},
        {"NoSubroutine", "[10] 40 [10] 30000 [29] 1 [6]", "1 [6] ",
         "Invalid Num of arguments for  subrs / gsubrs operator.\nFailed callsubr #147\n"
         "Failed callglobalsubr #30107\n"},
        {"TooFew", "1 [24] 1 [25] 1 [26] 1 [27] 1 [31] 1 [1235] 1 [1210] 1 2 3 [5]",
         "1 1 [5] 2 3 [5] ",
         "Unexpected number of operands for type 2 operator rcurveline\n"
         "Unexpected number of operands for type 2 operator rlinecurve\n"
         "Stack Under Flow for Type 2 CharString operator vvcurveto\n"
         "Stack Under Flow for Type 2 CharString operator hhcurveto\n"
         "Stack Under Flow for Type 2 CharString operator hvcurveto/vhcurveto\n"},
        {"Unknown", "1 [15] 1 [1238] 2 [6]", "2 [6] ",
         "Type 2 character operator [15] not recognized or handled.\n"
         "Type 2 character operator [12 38] not recognized or handled.\n"},
        {"CutShort", "1 [6] #1C #01", "1 [6] ", ""},
        {"MaskCutShort", "0 1 [1] [19]", "0 600 [13] 0 1 [1] ", ""},
        {"MostOperands", Repeat("1 ", 255) + "[6]", Repeat("1 [6] 1 [7] ", 127) + "1 [6] ", ""},
        {"TooManyOperands", Repeat("1 ", 256) + "[6]", "",
         "A charstring has more operands than there is room for.\n"},
    };
}

INSTANTIATE_TEST_SUITE_P(Table, Type2Operators, ::testing::ValuesIn(Conversions()),
                         [](const auto& parameter) { return parameter.param.name; });

TEST_F(Type2Operators, RandomNumbersLieAboveZeroAndUpToOne) {
    std::set<std::string> seen;
    for (int i = 0; i < 50; ++i) {
        const std::string words = Convert("[1223] 30000 [1224] [6]", true);
        EXPECT_GE(std::stoi(words), 0);
        EXPECT_LE(std::stoi(words), 30000);
        seen.insert(words);
    }
    EXPECT_GT(seen.size(), 40U);
}

TEST_F(Type2Operators, GlyphsThatCallThemselvesOrNeverEndAreGivenUp) {
    subroutines->local = {{0, "-107 [10] -107 [10]"}};
    EXPECT_EQ(Convert("-107 [10]"), "");
    EXPECT_EQ(TEST::RecordingLogger::Get().Messages(),
              "Subroutines of a charstring are nested too deep.\n");
    // Ten levels of eight calls each.
    for (int level = 0; level < 9; ++level) {
        subroutines->local[level] = Repeat(std::to_string(level - 106) + " [10] ", 8);
    }
    subroutines->local[9] = "1 [6]";
    EXPECT_EQ(Convert("-107 [10]"), "");
}

TEST_F(Type2Operators, GlyphsEndOnce) {
    const auto convert = [this](const std::string& words) {
        const std::string bytes = TEST::MakeCharString(words);
        const auto* data = static_cast<const std::uint8_t*>(static_cast<const void*>(bytes.data()));
        return TEST::ReadCharString(converter.ConvertGlyph(
            {data, static_cast<std::int32_t>(bytes.size()), 500, 600}, 0, nullptr));
    };
    EXPECT_EQ(convert("1 [22] 5"), "0 600 [13] 1 [22] [14] ");
    EXPECT_EQ(convert("1 [22] [14]"), "0 600 [13] 1 [22] [14] ");
    EXPECT_EQ(convert("1 2 3 4 [14]"), "0 600 [13] 0 1 2 3 4 [1206] ");
    EXPECT_EQ(convert(""), "");
}

struct Number {
    std::string bytes;
    float value;
};

class Type2Numbers : public ::testing::TestWithParam<Number> {};

TEST_P(Type2Numbers, AreRead) {
    const std::string& bytes = GetParam().bytes;
    const auto* p = static_cast<const std::uint8_t*>(static_cast<const void*>(bytes.data()));
    std::int32_t integer = 0;
    float real = 0;
    bool isReal = false;
    EXPECT_EQ(DecodeType2Number(p, p + bytes.size(), integer, real, isReal), p + bytes.size());
    EXPECT_FLOAT_EQ(isReal ? real : static_cast<float>(integer), GetParam().value);
    EXPECT_EQ(DecodeType2Number(p, p + bytes.size() - 1, integer, real, isReal), nullptr);
}

INSTANTIATE_TEST_SUITE_P(
    Forms, Type2Numbers,
    ::testing::Values(Number{"\x20", -107}, Number{"\xF6", 107}, Number{{'\xF7', 0}, 108},
                      Number{"\xFA\xFF", 1131}, Number{{'\xFB', 0}, -108},
                      Number{"\xFE\xFF", -1131}, Number{"\x1C\xFF\xFE", -2},
                      Number{{'\x1D', '\xFF', '\xFE', '\x79', '\x60'}, -100000},
                      Number{"\xFF\xFF\xF3\x80\x01", -13}, Number{"\x1E\xE2\xA2\x5F", -2.25F},
                      Number{"\x1E\x0A\x14\x05\x41\xC3\xFF", 0.140541e-3F},
                      Number{"\x1E" + std::string(40, '\x00') + "\xFF", 0}));

}  // namespace
}  // namespace VANTIX::PS
