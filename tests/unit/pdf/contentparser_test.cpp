// SPDX-License-Identifier: MIT
#include "pdf/contentparser.h"

#include <gtest/gtest.h>

#include <string>

namespace VANTIX::PDF {
namespace {

// Operators with their operands, one line each: "(12 /Name [2: 1 2] cm)". `rest` takes what waits
// for more content.
std::string Parse(std::string_view content, std::string* rest = nullptr) {
    ContentParser parser(content, rest == nullptr);
    std::string text;
    while (parser.Next()) {
        for (const Operand& operand : parser.Operands()) {
            switch (operand.kind) {
                case OperandKind::kNumber: {
                    char number[32];
                    std::snprintf(number, sizeof number, "%.10g ", operand.number);
                    text += number;
                    break;
                }
                case OperandKind::kName:
                    text += "/" + DecodeName(operand.text) + " ";
                    break;
                case OperandKind::kArray:
                    text += "[" + std::to_string(operand.extent) + " ";
                    break;
                case OperandKind::kDictionary:
                    text += "{" + std::to_string(operand.extent) + " ";
                    break;
                default:
                    text += "(" + std::string(operand.text) + ") ";
            }
        }
        text += std::string(parser.Operator()) + "\n";
        if (parser.Operator() == "ID") {
            parser.TakeInlineImage(0);
        }
    }
    if (rest != nullptr) {
        *rest = content.substr(parser.Consumed());
    }
    return text;
}

struct Case {
    const char* name;
    std::string content;
    const char* parsed;
};

class ContentParserForms : public testing::TestWithParam<Case> {};

TEST_P(ContentParserForms, AreReadAsReadersDo) {
    EXPECT_EQ(Parse(GetParam().content), GetParam().parsed);
}

INSTANTIATE_TEST_SUITE_P(
    All, ContentParserForms,
    testing::Values(Case{"Numbers", "1 -2.5 +.5 4. -.002 007 m", "1 -2.5 0.5 4 -0.002 7 m\n"},
                    Case{"SloppyNumbers", "--5 5-3 1.2.3 - . 1e-2 m", "-5 5 1.2 -0 0 0.01 m\n"},
                    Case{"LongNumbers", "12345678901234567890123 0.123456789012345678901234 m",
                         "1.23456789e+22 0.123456789 m\n"},
                    Case{"TokensWithoutSpace", "/A/B[1(x)]<<>>q%c\rQ", "/A /B [2 1 (x) {0 q\nQ\n"},
                    Case{"EscapedStrings", "(a\\)(b)c) (\\\\) <4A 4b> Tj",
                         "(a\\)(b)c) (\\\\) (4A 4b) Tj\n"},
                    Case{"Names", "/A#20B /#zz / gs", "/A B /#zz / gs\n"},
                    Case{"Containers", "[1 [2 3] <</K [4]>>] 0 d", "[8 1 [2 2 3 {3 /K [1 4 0 d\n"},
                    Case{"LostBracket", "[1 2 d Q", "[2 1 2 d\nQ\n"},
                    Case{"StrayDelimiters", ")]>>}{ > q", "q\n"},
                    Case{"Constants", "true null false x", "(true) (null) (false) x\n"},
                    Case{"InlineImage", "BI /W 1 ID \x01 EI\x80 EIx EI\nQ", "BI\n/W 1 ID\nQ\n"},
                    Case{"ImageWithoutEnd", "BI ID abc Q", "BI\nID\n"},
                    Case{"OpenString", "q (abc", "q\n"}, Case{"OpenHexString", "q <abc", "q\n"},
                    Case{"TrailingEscape", "q (abc\\", "q\n"},
                    Case{"TrailingOperands", "q 1 2", "q\n"}),
    [](const auto& param) { return std::string(param.param.name); });

TEST(ContentParser, TooDeepAndTooManyOperandsAreDropped) {
    const std::string deep(100000, '[');
    EXPECT_EQ(Parse("1 " + deep + " 2 " + std::string(100000, ']') + " 3 d").substr(0, 2), "1 ");
    std::string many;
    for (std::size_t i = 0; i < 2 * ContentParser::kMaxOperands; ++i) {
        many += "1 ";
    }
    const std::string content = many + "m";
    ContentParser parser(content);
    ASSERT_TRUE(parser.Next());
    EXPECT_EQ(parser.Operands().size(), ContentParser::kMaxOperands);
}

TEST(ContentParser, KnownLengthOverridesEIWithinImageData) {
    const std::string data = "\n EI \n";
    const std::string content = "ID " + data + "\nEI Q";
    ContentParser parser(content);
    ASSERT_TRUE(parser.Next());
    parser.TakeInlineImage(data.size());
    ASSERT_TRUE(parser.Next());
    EXPECT_EQ(parser.Operator(), "Q");
}

TEST(ContentParser, PiecesCutAnywhereGiveTheSameOperators) {
    constexpr std::string_view kContent =
        "q 1 0 0 1 7.25 8 cm % a comment\n/N gs [(a(b)\\)c) -3] TJ <</A <41>>> BDC "
        "BI /W 1 ID \x01\x02 EI Q 12 34 m";
    const std::string whole = Parse(kContent);
    for (std::size_t cut = 0; cut <= kContent.size(); ++cut) {
        std::string rest;
        std::string text = Parse(kContent.substr(0, cut), &rest);
        text += Parse(rest.append(kContent.substr(cut)));
        EXPECT_EQ(text, whole) << "cut at " << cut;
    }
}

}  // namespace
}  // namespace VANTIX::PDF
