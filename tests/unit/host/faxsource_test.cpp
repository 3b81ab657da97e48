// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>

#include "host/codecs/linesource.h"
#include "support/codedimages.h"
#include "support/ghostscriptpages.h"

namespace VANTIX::HOST {
namespace {

using TEST::AllLines;
using TEST::Coded;

/// Lines of white, black, noise, and runs that move a little from line to line; 1 is white.
std::string Drawing(const ImageFormat& format) {
    std::mt19937 random(11);
    std::string samples;
    std::string line(format.LineBytes(), '\xFF');
    for (std::int32_t y = 0; y < format.height; ++y) {
        const auto kind = y < 2 ? static_cast<std::size_t>(y) : random() % 12;
        if (kind < 2) {
            line.assign(line.size(), kind == 0 ? '\xFF' : '\0');
        } else if (kind == 2) {
            line = TEST::Noise(line.size(), static_cast<unsigned>(random()));
        } else if (kind == 3) {
            for (std::size_t at = 0; at < line.size();) {
                const std::size_t end = std::min<std::size_t>(line.size(), at + random() % 700);
                std::fill(line.begin() + static_cast<std::ptrdiff_t>(at),
                          line.begin() + static_cast<std::ptrdiff_t>(end),
                          random() % 2 == 0 ? '\xFF' : '\0');
                at = end + 1;
            }
        } else {
            for (char& byte : line) {
                byte = static_cast<char>(random() % 40 == 0 ? byte ^ (byte << 1) : byte);
            }
        }
        samples += line;
    }
    return TEST::ClearPadding(samples, format);
}

std::string Flag(const char* name, bool value) {
    return std::string("/") + name + (value ? " true " : " false ");
}

std::string Hex(const std::string& bytes) {
    static constexpr char kDigits[] = "0123456789abcdef";
    std::string hex;
    for (const char byte : bytes) {
        hex += kDigits[static_cast<std::uint8_t>(byte) / 16];
        hex += kDigits[static_cast<std::uint8_t>(byte) % 16];
    }
    return hex;
}

std::string FromHex(const std::string& hex) {
    std::string bytes;
    std::string pair;
    for (const char digit : hex) {
        pair += std::isxdigit(static_cast<unsigned char>(digit)) != 0 ? std::string(1, digit) : "";
        if (pair.size() == 2) {
            bytes += static_cast<char>(std::stoi(pair, nullptr, 16));
            pair.clear();
        }
    }
    return bytes;
}

/// Coded by the filter of an interpreter.
std::string Encode(const std::string& samples, const FaxParameters& fax) {
    std::string program =
        "%!\n/out (%stdout) (w) file /ASCIIHexEncode filter def\nout << /K " +
        std::to_string(fax.k) + " /Columns " + std::to_string(fax.columns) + " /Rows " +
        std::to_string(fax.rows) + " " + Flag("EndOfLine", fax.endOfLine) +
        Flag("EncodedByteAlign", fax.encodedByteAlign) + Flag("EndOfBlock", fax.endOfBlock) +
        Flag("BlackIs1", fax.blackIs1) + ">> /CCITTFaxEncode filter\n";
    const std::size_t lineBytes = ImageFormat{fax.columns, 1, 1, 1}.LineBytes();
    for (std::size_t at = 0; at < samples.size(); at += lineBytes) {
        program += "dup <" + Hex(samples.substr(at, lineBytes)) + "> writestring\n";
    }
    const TEST::ProgramOutput output = TEST::RunPostScript(program + "closefile out closefile\n");
    EXPECT_EQ(output.complaint, "");
    return FromHex(output.text);
}

LineSourcePtr Open(const std::string& coded, const FaxParameters& fax, std::int32_t height) {
    std::string error;
    LineSourcePtr source = MakeFaxSource(Coded(coded), fax, height, error);
    EXPECT_NE(source, nullptr) << error;
    return source;
}

constexpr std::int32_t kHeight = 90;

struct FaxCase {
    const char* name;
    FaxParameters fax;
};

void PrintTo(const FaxCase& fax, std::ostream* out) {
    *out << fax.name;
}

class FaxCoding : public testing::TestWithParam<FaxCase> {};

TEST_P(FaxCoding, GivesTheLinesThatAnInterpreterCoded) {
    const FaxParameters& fax = GetParam().fax;
    const ImageFormat format{fax.columns, kHeight, 1, 1};
    const std::string samples = Drawing(format);
    const LineSourcePtr source = Open(Encode(samples, fax), fax, kHeight);
    EXPECT_TRUE(TEST::ClearPadding(AllLines(*source), format) == samples);
    source->Rewind();
    EXPECT_TRUE(TEST::ClearPadding(AllLines(*source), format) == samples);
    EXPECT_EQ(source->Error(), "");
}

TEST_P(FaxCoding, EndsWithItsDataWhateverTheHeight) {
    const FaxParameters& fax = GetParam().fax;
    const ImageFormat format{fax.columns, kHeight, 1, 1};
    const LineSourcePtr source = Open(Encode(Drawing(format), fax), fax, 2 * kHeight);
    EXPECT_EQ(AllLines(*source).size(), format.LineBytes() * kHeight);
    EXPECT_NE(source->Error(), "");
}

INSTANTIATE_TEST_SUITE_P(
    FaxSource, FaxCoding,
    testing::Values(FaxCase{"Group3", {0, 701}}, FaxCase{"Group3Wide", {0, 20000}},
                    FaxCase{"Group3Lines", {0, 701, 0, true}},
                    FaxCase{"Group3Aligned", {0, 701, 0, false, true}},
                    FaxCase{"Group3LinesAligned", {0, 701, 0, true, true}},
                    FaxCase{"Group3Rows", {0, 701, kHeight, false, false, false}},
                    FaxCase{"Group3Black", {0, 704, 0, false, false, true, true}},
                    FaxCase{"MixedLines", {4, 701, 0, true}},
                    FaxCase{"MixedLinesAligned", {4, 701, 0, true, true}},
                    FaxCase{"MixedRows", {2, 701, kHeight, true, false, false}},
                    FaxCase{"Group4", {-1, 701}}, FaxCase{"Group4Wide", {-1, 20000}},
                    FaxCase{"Group4Aligned", {-1, 701, 0, false, true}},
                    FaxCase{"Group4Rows", {-1, 701, kHeight, false, false, false}},
                    FaxCase{"Group4Black", {-1, 8, 0, false, false, true, true}},
                    FaxCase{"Group4OnePixel", {-1, 1}}),
    [](const auto& param) { return std::string(param.param.name); });

/// Where the lines of two images differ.
std::vector<std::size_t> DamagedLines(const std::string& a, const std::string& b,
                                      std::size_t lineBytes) {
    std::vector<std::size_t> lines;
    for (std::size_t at = 0; at < std::max(a.size(), b.size()); at += lineBytes) {
        if (at >= std::min(a.size(), b.size()) || a.compare(at, lineBytes, b, at, lineBytes) != 0) {
            lines.push_back(at / lineBytes);
        }
    }
    return lines;
}

TEST(FaxSource, Group3GoesOnAtTheNextEndOfLine) {
    const FaxParameters fax{0, 704, 0, true};
    const ImageFormat format{704, kHeight, 1, 1};
    const std::string samples = Drawing(format);
    std::string coded = Encode(samples, fax);
    coded[coded.size() / 2] = '\0';
    const LineSourcePtr source = Open(coded, fax, kHeight);
    EXPECT_LE(DamagedLines(AllLines(*source), samples, 88).size(), 1U);
    EXPECT_TRUE(source->Error().starts_with("CCITT data are damaged in line ")) << source->Error();
}

TEST(FaxSource, Group4EndsAtDamage) {
    const FaxParameters fax{-1, 704};
    const ImageFormat format{704, kHeight, 1, 1};
    const std::string samples = Drawing(format);
    const std::string coded = Encode(samples, fax);
    const LineSourcePtr source = Open(coded.substr(0, coded.size() / 2), fax, kHeight);
    const std::string lines = AllLines(*source);
    ASSERT_GT(lines.size(), 88U * 10);
    ASSERT_LT(lines.size(), samples.size());
    EXPECT_EQ(lines.substr(0, lines.size() - 88), samples.substr(0, lines.size() - 88));
    EXPECT_NE(source->Error(), "");
}

TEST(FaxSource, RunsOfNoLengthJoinTheirNeighbours) {
    // White 2, black 0, white 3, black 3: 0111 0000110111 1000 10.
    const LineSourcePtr source = Open(FromHex("70DE20"), {0, 8, 1, false, false, false}, 1);
    const std::uint8_t* line = source->NextLine();
    ASSERT_NE(line, nullptr);
    EXPECT_EQ(*line, 0xF8);
}

TEST(FaxSource, RefusesWidthsBeyondItsLimit) {
    for (const std::int32_t columns : {0, -8, 2000000000}) {
        std::string error;
        EXPECT_EQ(MakeFaxSource(Coded("x"), {0, columns}, 1, error), nullptr);
        EXPECT_NE(error, "");
    }
}

}  // namespace
}  // namespace VANTIX::HOST
