// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "host/codecs/linesource.h"
#include "support/codedimages.h"
#include "support/ghostscriptpages.h"
#include "support/jbig2encoder.h"
#include "support/pdftext.h"
#include "support/temporaryfolder.h"

namespace VANTIX::TEST {
namespace {

using States = ArithmeticEncoder::States;

constexpr char kSymbolSegment = 0;
constexpr char kTextSegment = 6;
constexpr char kPatternSegment = 16;
constexpr char kHalftoneSegment = 22;
constexpr char kKeptGenericSegment = 36;
constexpr char kRefinementSegment = 42;

const Art kPage{"..............................", ".####..####...................",
                ".#..#..####...#.#.#.#.#.#.....", ".#..#..####...#.#.#.#.#.#.....",
                ".####.........#.#.#.#.#.#.....", "..............................",
                "..............................", "..##########################..",
                "..##########################..", ".............................#"};
const Art kLetter{"###..", "#..#.", "###..", "#..#.", "###.."};
const Art kStroke{"##", "##", "##", "##", "##", "##", "##"};

Art Blank(std::size_t width, std::size_t height) {
    return {height, std::string(width, '.')};
}

void Place(Art& page, const Art& symbol, int x, int y) {
    for (std::size_t row = 0; row < symbol.size(); ++row) {
        for (std::size_t column = 0; column < symbol[row].size(); ++column) {
            if (symbol[row][column] == '#') {
                page.at(static_cast<std::size_t>(y) + row)
                    .at(static_cast<std::size_t>(x) + column) = '#';
            }
        }
    }
}

/// The page without one of its pixels.
Art Thinned() {
    Art art = kPage;
    art[3][16] = '.';
    art[8][0] = '#';
    return art;
}

Art Decoded(const std::string& data, const Art& size, std::string& problem,
            const std::string& globals = {}) {
    std::string error;
    const HOST::LineSourcePtr source = HOST::MakeJbig2Source(
        Coded(data), globals.empty() ? nullptr : Coded(globals),
        static_cast<std::int32_t>(size[0].size()), static_cast<std::int32_t>(size.size()), error);
    if (!source) {
        problem = error;
        return {};
    }
    Art art;
    while (const std::uint8_t* line = source->NextLine()) {
        art.emplace_back();
        for (std::size_t x = 0; x < size[0].size(); ++x) {
            art.back() += (line[x / 8] >> (7 - x % 8) & 1) != 0 ? '.' : '#';
        }
    }
    problem = source->Error();
    return art;
}

/// What an interpreter makes of the same data.
Art Interpreted(const std::string& data, const Art& size) {
    const std::string box = std::to_string(size[0].size()) + " " + std::to_string(size.size());
    TESTS::PdfText pdf;
    pdf.Object(1, "<< /Type /Catalog /Pages 2 0 R >>");
    pdf.Object(2, "<< /Type /Pages /Kids [3 0 R] /Count 1 >>");
    pdf.Object(3, "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 " + box +
                      "] /Contents 4 0 R /Resources << /XObject << /I 5 0 R >> >> >>");
    pdf.Stream(4, std::to_string(size[0].size()) + " 0 0 " + std::to_string(size.size()) +
                      " 0 0 cm /I Do");
    pdf.Stream(5, data,
               "/Subtype /Image /Width " + std::to_string(size[0].size()) + " /Height " +
                   std::to_string(size.size()) +
                   " /BitsPerComponent 1 /ColorSpace /DeviceGray /Filter /JBIG2Decode");
    const TemporaryFolder folder;
    WriteFile(folder.File("page.pdf"), pdf.Bytes());
    const auto drawn = DrawPages(folder.File("page.pdf"), {});
    EXPECT_EQ(drawn.complaint, "");
    Art art = size;
    for (std::size_t y = 0; y < art.size() && !drawn.pages.empty(); ++y) {
        for (std::size_t x = 0; x < art[0].size(); ++x) {
            art[y][x] = drawn.pages.front().At(x, y, 0) == 0 ? '#' : '.';
        }
    }
    return art;
}

void ExpectDecoded(const std::string& data, const Art& expected) {
    std::string problem;
    EXPECT_EQ(Decoded(data, expected, problem), expected);
    EXPECT_EQ(problem, "");
    EXPECT_EQ(Interpreted(data, expected), expected);
}

TEST(Jbig2Source, GenericRegionsOfAllTemplates) {
    for (const unsigned templateNumber : {0U, 1U, 2U, 3U}) {
        SCOPED_TRACE(templateNumber);
        std::vector<Pixel> moved{{-2, -2}};
        if (templateNumber == 0) {
            moved = {{-2, 0}, {4, -1}, {-5, -2}, {0, -5}};
        }
        for (const GenericOptions& options :
             {GenericOptions{templateNumber}, GenericOptions{templateNumber, true},
              GenericOptions{templateNumber, true, moved}}) {
            ExpectDecoded(PageSegment(kPage) +
                              Jbig2Segment(1, kGenericSegment, GenericRegion(kPage, options)),
                          kPage);
        }
    }
}

TEST(Jbig2Source, RegionsAreCombined) {
    const std::string page =
        PageSegment(kPage) + Jbig2Segment(1, kGenericSegment, GenericRegion(kPage, {}));
    constexpr char kXor = 2;
    ExpectDecoded(
        page + Jbig2Segment(2, kGenericSegment, GenericRegion(kPage, {0, false, {}, kXor})),
        Blank(30, 10));
}

TEST(Jbig2Source, RefinementsOfPagesAndOfKeptRegions) {
    constexpr char kReplace = 4;
    const Art wanted = Thinned();
    for (const unsigned templateNumber : {0U, 1U}) {
        for (const bool isTypical : {false, true}) {
            SCOPED_TRACE(templateNumber + (isTypical ? 10 : 0));
            ArithmeticEncoder encoder;
            States states;
            CodeRefinement(encoder, states, wanted, kPage, {0, 0}, templateNumber, isTypical);
            std::string data = RegionOf(wanted, {}, kReplace);
            data += static_cast<char>(templateNumber | (isTypical ? 2U : 0U));
            data += templateNumber == 0 ? "\xFF\xFF\xFF\xFF" : "";
            data += encoder.Finish();
            const std::string page = PageSegment(kPage);
            const std::string region = GenericRegion(kPage, {});
            ExpectDecoded(page + Jbig2Segment(1, kGenericSegment, region) +
                              Jbig2Segment(2, kRefinementSegment, data),
                          wanted);
            // Ghostscript reads no regions that are kept.
            std::string problem;
            EXPECT_EQ(Decoded(page + Jbig2Segment(1, kKeptGenericSegment, region) +
                                  Jbig2Segment(2, kRefinementSegment, data, "\1"),
                              wanted, problem),
                      wanted);
        }
    }
}

/// A dictionary of the letter and the stroke, and, where asked for, of the letter refined.
std::string Dictionary(const Art* refined) {
    ArithmeticEncoder encoder;
    States height;
    States width;
    States exported;
    States instances;
    States number;
    States dx;
    States dy;
    States generic;
    States refinement;
    const auto symbol = [&](const Art& art, unsigned reference) {
        if (refined == nullptr) {
            CodeGeneric(encoder, generic, art, {});
            return;
        }
        encoder.CodeInteger(instances, 1);
        encoder.CodeNumber(number, reference, 2);
        encoder.CodeInteger(dx, 0);
        encoder.CodeInteger(dy, 0);
        CodeRefinement(encoder, refinement, art, kLetter, {0, 0}, 0, false);
    };
    if (refined == nullptr) {
        encoder.CodeInteger(height, 5);
        encoder.CodeInteger(width, 5);
        symbol(kLetter, 0);
        encoder.CodeInteger(width, std::nullopt);
        encoder.CodeInteger(height, 2);
        encoder.CodeInteger(width, 2);
        symbol(kStroke, 0);
    } else {
        encoder.CodeInteger(height, static_cast<int>(refined->size()));
        encoder.CodeInteger(width, static_cast<int>((*refined)[0].size()));
        symbol(*refined, 0);
    }
    encoder.CodeInteger(width, std::nullopt);
    encoder.CodeInteger(exported, 0);
    encoder.CodeInteger(exported, refined == nullptr ? 2 : 3);
    std::string data;
    AppendWord(data, refined == nullptr ? 0 : 2, 2);
    data += AdaptiveBytes({});
    data += refined == nullptr ? "" : "\xFF\xFF\xFF\xFF";
    AppendWord(data, refined == nullptr ? 2 : 3);
    AppendWord(data, refined == nullptr ? 2 : 1);
    return data + encoder.Finish();
}

struct TextCase {
    unsigned corner = 1;  ///< bottom left, top left, bottom right, top right
    bool isTransposed = false;
    bool isRefined = false;
};

/// The letter and the stroke in one strip, two pixels from each other; the letter refined where
/// asked for.
std::string Text(const TextCase& text, const Art& page, int s, int t) {
    ArithmeticEncoder encoder;
    States strip;
    States first;
    States step;
    States inStrip;
    States number;
    States isRefined;
    std::array<States, 4> change;
    States refinement;
    encoder.CodeInteger(strip, 0);
    encoder.CodeInteger(strip, t / 4);
    for (const unsigned symbol : {0U, 1U}) {
        symbol == 0 ? encoder.CodeInteger(first, s) : encoder.CodeInteger(step, 5);
        encoder.CodeInteger(inStrip, t % 4);
        encoder.CodeNumber(number, symbol, 1);
        if (text.isRefined) {
            encoder.CodeInteger(isRefined, symbol == 0 ? 1 : 0);
        }
        if (text.isRefined && symbol == 0) {
            for (States& states : change) {
                encoder.CodeInteger(states, &states == change.data() ? 1 : 0);
            }
            Art wider = kLetter;
            for (std::string& row : wider) {
                row += '#';
            }
            CodeRefinement(encoder, refinement, wider, kLetter, {0, 0}, 1, false);
        }
    }
    encoder.CodeInteger(step, std::nullopt);
    // Symbols are three pixels less apart than the steps say, in strips of four lines.
    const unsigned offset = 29;
    const unsigned flags = (text.isRefined ? 0x8002U : 0U) | 2U << 2U | text.corner << 4U |
                           (text.isTransposed ? 0x40U : 0U) | offset << 10U;
    std::string data = RegionOf(page, {});
    AppendWord(data, flags, 2);
    AppendWord(data, 2);
    return data + encoder.Finish();
}

class Jbig2Text : public testing::TestWithParam<TextCase> {};

TEST_P(Jbig2Text, PlacesSymbolsByTheirCorners) {
    const TextCase& text = GetParam();
    Art expected = Blank(30, 30);
    const bool isRight = text.corner >= 2;
    const bool isBottom = text.corner % 2 == 0;
    constexpr int s = 10;
    constexpr int t = 13;
    const int extra = text.isRefined ? 1 : 0;
    Art letter = kLetter;
    for (std::string& row : letter) {
        row += text.isRefined ? "#" : "";
    }
    // One symbol ends before the next one begins two pixels behind it.
    const int next = s + 4 + (text.isTransposed ? 0 : extra) + 2;
    const auto place = [&](const Art& symbol, int along) {
        const int width = static_cast<int>(symbol[0].size());
        const int height = static_cast<int>(symbol.size());
        const int x = text.isTransposed ? t - (isRight ? width - 1 : 0) : along;
        const int y = text.isTransposed ? along : t - (isBottom ? height - 1 : 0);
        Place(expected, symbol, x, y);
    };
    place(letter, s);
    place(kStroke, next);
    ExpectDecoded(PageSegment(expected) + Jbig2Segment(1, kSymbolSegment, Dictionary(nullptr)) +
                      Jbig2Segment(2, kTextSegment, Text(text, expected, s, t), "\1"),
                  expected);
}

INSTANTIATE_TEST_SUITE_P(Corners, Jbig2Text,
                         testing::Values(TextCase{0}, TextCase{1}, TextCase{2}, TextCase{3},
                                         TextCase{0, true}, TextCase{1, true}, TextCase{2, true},
                                         TextCase{3, true}, TextCase{1, false, true}));

TEST(Jbig2Source, SymbolsAreRefinedFromGlobalOnes) {
    Art refined = kLetter;
    refined[0][0] = '.';
    Art expected = Blank(12, 8);
    Place(expected, refined, 1, 2);
    ArithmeticEncoder encoder;
    States strip;
    States first;
    States number;
    States step;
    encoder.CodeInteger(strip, 0);
    encoder.CodeInteger(strip, 2);
    encoder.CodeInteger(first, 1);
    encoder.CodeNumber(number, 2, 2);
    encoder.CodeInteger(step, std::nullopt);
    std::string text = RegionOf(expected, {});
    AppendWord(text, 1U << 4U, 2);
    AppendWord(text, 1);
    text += encoder.Finish();
    const std::string globals = Jbig2Segment(1, kSymbolSegment, Dictionary(nullptr));
    const std::string data = PageSegment(expected) +
                             Jbig2Segment(2, kSymbolSegment, Dictionary(&refined), "\1") +
                             Jbig2Segment(3, kTextSegment, text, "\2");
    std::string problem;
    EXPECT_EQ(Decoded(data, expected, problem, globals), expected);
    EXPECT_EQ(problem, "");
    EXPECT_EQ(Interpreted(globals + data, expected), expected);
}

TEST(Jbig2Source, HalftonesPaintPatternsOnAGrid) {
    // Four patterns of 4 by 4 with 0 to 3 black rows, on a grid of 3 by 2.
    Art all = Blank(16, 4);
    for (std::size_t i = 0; i < 16; ++i) {
        for (std::size_t y = 0; y < i / 4; ++y) {
            all[y][i] = '#';
        }
    }
    ArithmeticEncoder patterns;
    States states;
    CodeGeneric(patterns, states, all, {0, false, {{-4, 0}, {-3, -1}, {2, -2}, {-2, -2}}});
    const std::string dictionary = std::string("\0\4\4\0\0\0\3", 7) + patterns.Finish();
    constexpr int kGrays[2][3] = {{0, 1, 2}, {3, 2, 1}};
    Art expected = Blank(12, 8);
    Art high = Blank(3, 2);
    Art difference = Blank(3, 2);
    for (std::size_t row = 0; row < 2; ++row) {
        for (std::size_t column = 0; column < 3; ++column) {
            const int gray = kGrays[row][column];
            high[row][column] = gray >= 2 ? '#' : '.';
            difference[row][column] = gray == 1 || gray == 2 ? '#' : '.';
            for (int y = 0; y < gray; ++y) {
                Place(expected, {"####"}, static_cast<int>(4 * column),
                      static_cast<int>(4 * row) + y);
            }
        }
    }
    ArithmeticEncoder grays;
    States grayStates;
    CodeGeneric(grays, grayStates, high, {});
    CodeGeneric(grays, grayStates, difference, {});
    std::string region = RegionOf(expected, {}) + '\0';
    for (const std::size_t word : {3U, 2U, 0U, 0U}) {
        AppendWord(region, word);
    }
    AppendWord(region, std::size_t{4} * 256, 2);
    AppendWord(region, 0, 2);
    ExpectDecoded(PageSegment(expected) + Jbig2Segment(1, kPatternSegment, dictionary) +
                      Jbig2Segment(2, kHalftoneSegment, region + grays.Finish(), "\1"),
                  expected);
}

TEST(Jbig2Source, DamagedDataLeaveWhatWasPainted) {
    const std::string sound =
        PageSegment(kPage) + Jbig2Segment(1, kGenericSegment, GenericRegion(kPage, {}));
    std::string problem;
    EXPECT_EQ(Decoded(sound + Jbig2Segment(2, kTextSegment, RegionOf(kPage, {}) + "\1\1"), kPage,
                      problem),
              kPage);
    EXPECT_EQ(problem, "JBIG2 data: segment 2 of type 6: text coded by Huffman is not read");
    Decoded(sound + "xyz", kPage, problem);
    EXPECT_EQ(problem, "JBIG2 data: a segment ends early");
    std::string huge = GenericRegion(kPage, {});
    huge.replace(0, 8, std::string(8, '\x7F'));
    Decoded(PageSegment(kPage) + Jbig2Segment(1, kGenericSegment, huge), kPage, problem);
    EXPECT_EQ(problem, "JBIG2 data: segment 1 of type 38: decoding would take too much time");
}

}  // namespace
}  // namespace VANTIX::TEST
