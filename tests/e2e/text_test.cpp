// SPDX-License-Identifier: MIT
// Text in all ways of placing and painting it, by kinds of fonts.
#include <gtest/gtest.h>

#include <iterator>
#include <ostream>
#include <sstream>

#include "e2e/distilled.h"
#include "e2e/pdftext.h"
#include "e2e/tool.h"
#include "support/ghostscriptpages.h"
#include "support/temporaryfolder.h"

namespace VANTIX::TEST {
namespace {

/// A font of the page: objects from number 5 on, the first of which is its dictionary.
struct FontCase {
    const char* name;
    std::vector<std::string> (*objects)();
    bool hasWords = true;          ///< programs can read it
    bool isExactAlone = false;     ///< at level 3 alone: outlines are converted below
    bool hasGaps = false;          ///< glyphs stand too far apart for words
    const char* encode = nullptr;  ///< what binary data are encoded by
};

void PrintTo(const FontCase& font, std::ostream* out) {
    *out << font.name;
}

std::string Type1File(const std::string& name) {
    const std::string bytes = ReadFile("/usr/share/fonts/type1/urw-base35/" + name + ".t1");
    const std::size_t encrypted = bytes.find("eexec") + 6;
    const std::size_t zeros = bytes.rfind("cleartomark") - 520;
    return StreamOf(bytes, "/Length1 " + std::to_string(encrypted) + " /Length2 " +
                               std::to_string(zeros - encrypted) + " /Length3 " +
                               std::to_string(bytes.size() - zeros));
}

std::string TrueTypeFile(const std::string& name) {
    const std::string bytes = ReadFile("/usr/share/fonts/truetype/dejavu/" + name + ".ttf");
    return StreamOf(bytes, "/Length1 " + std::to_string(bytes.size()));
}

std::string Descriptor(const std::string& name, const std::string& more) {
    return "<< /Type /FontDescriptor /FontName /" + name +
           " /FontBBox [-200 -300 1200 1000] /ItalicAngle 0 /Ascent 800 /Descent -200 /CapHeight "
           "700 /StemV 80 " +
           more + " >>";
}

/// A font of which objects 6 and 7 are descriptor and program.
std::vector<std::string> Embedded(const std::string& type, const std::string& name,
                                  const std::string& more, const std::string& descriptor,
                                  const std::string& program) {
    return {"<< /Type /Font /Subtype /" + type + " /BaseFont /" + name + " /FontDescriptor 6 0 R " +
                more + " >>",
            Descriptor(name, descriptor), program};
}

std::vector<std::string> Type1(const std::string& more) {
    return Embedded("Type1", "NimbusRoman-Regular", more, "/Flags 32 /FontFile 7 0 R",
                    Type1File("NimbusRoman-Regular"));
}

/// A font in CFF: the whole OpenType file, or its table.
std::vector<std::string> Cff(const std::string& name, bool isBare, const std::string& type,
                             const std::string& more) {
    std::string bytes = ReadFile("/usr/share/fonts/opentype/urw-base35/" + name + ".otf");
    const auto number = [&bytes](std::size_t at) {
        std::size_t value = 0;
        for (std::size_t i = 0; i < 4 && at + i < bytes.size(); ++i) {
            value = value << 8U | static_cast<unsigned char>(bytes[at + i]);
        }
        return value;
    };
    if (isBare && bytes.find("CFF ") != std::string::npos) {
        const std::size_t entry = bytes.find("CFF ");
        bytes = bytes.substr(number(entry + 8), number(entry + 12));
    }
    return Embedded(type, name, more, "/Flags 32 /FontFile3 7 0 R",
                    StreamOf(bytes, isBare ? "/Subtype /Type1C" : "/Subtype /OpenType"));
}

std::vector<std::string> TrueType(const std::string& more, const std::string& flags) {
    return Embedded("TrueType", "DejaVuSerif", more, flags + " /FontFile2 7 0 R",
                    TrueTypeFile("DejaVuSerif"));
}

/// Every glyph is to be as wide as `width`.
std::string Widths(int width) {
    return "/FirstChar 32 /LastChar 126 /Widths [" + Repeated(std::to_string(width) + " ", 95) +
           "]";
}

constexpr const char* kSwapped =
    "/Encoding << /Type /Encoding /BaseEncoding /WinAnsiEncoding /Differences [97 /ae /b /c 109 "
    "/germandbls /Lslash] >>";

const FontCase kFonts[] = {
    {"Type1", [] { return Type1("/Encoding /WinAnsiEncoding"); }},
    {"Type1BuiltIn", [] { return Type1(""); }},
    {"Type1Differences", [] { return Type1(kSwapped); }},
    {"Type1Widths", [] { return Type1("/Encoding /WinAnsiEncoding " + Widths(620)); }, true, false,
     true},
    {"Type1Symbolic",
     [] {
         return Embedded("Type1", "D050000L", "", "/Flags 4 /FontFile 7 0 R",
                         Type1File("D050000L"));
     },
     false},
    {"TrueType", [] { return TrueType("/Encoding /WinAnsiEncoding", "/Flags 32"); }, true, true},
    {"TrueTypeDifferences", [] { return TrueType(kSwapped, "/Flags 32"); }, true, true},
    {"TrueTypeSymbolic", [] { return TrueType("", "/Flags 4"); }, false, true},
    {"TrueTypeWidths",
     [] { return TrueType("/Encoding /WinAnsiEncoding " + Widths(700), "/Flags 32"); }, true, true,
     true},
    {"Cff", [] { return Cff("NimbusRoman-Regular", true, "Type1", ""); }},
    {"CffDifferences", [] { return Cff("NimbusSans-Italic", true, "MMType1", kSwapped); }},
    {"CffBinary",
     [] { return Cff("NimbusRoman-Regular", true, "Type1", "/Encoding /WinAnsiEncoding"); }, true,
     false, false, "runlength"},
    {"CffOpenType", [] { return Cff("NimbusRoman-Regular", false, "TrueType", kSwapped); }, true,
     false, false, "runlength"},
    {"CffWidths", [] { return Cff("NimbusRoman-Regular", true, "Type1", Widths(620)); }, true,
     false, true},
    {"Resident",
     [] {
         return std::vector<std::string>{"<< /Type /Font /Subtype /Type1 /BaseFont /Helvetica >>"};
     }},
    {"ResidentEncoded",
     [] {
         return std::vector<std::string>{
             std::string("<< /Type /Font /Subtype /Type1 /BaseFont /Times-Roman ") + kSwapped +
             " >>"};
     }},
    {"ResidentWidths",
     [] {
         return std::vector<std::string>{"<< /Type /Font /Subtype /Type1 /BaseFont /Helvetica " +
                                         Widths(650) + " >>"};
     },
     true, false, true},
};

/// What is drawn in a cell, at a size of about 24 from (10, 15) on.
struct Line {
    const char* name;
    const char* operators;
    int leastLevel = 2;
    bool isText = true;  ///< comes out as text
};

constexpr const char* kStripes =
    " 1 0 0 rg 0 0 150 20 re f 0 0.6 0 rg 0 20 150 8 re f 0 0 1 rg 0 28 150 20 re f";

const Line kLines[] = {
    {"Plain", "BT /F 24 Tf 10 15 Td (Hamburg) Tj ET"},
    {"CharSpacing", "BT /F 24 Tf 10 15 Td 3 Tc (Lamb) Tj (cut) Tj ET"},
    {"WordSpacing", "BT /F 24 Tf 10 15 Td 9 Tw (one two) Tj ET"},
    {"Adjusted", "BT /F 24 Tf 10 15 Td 1 Tc 4 Tw [(Sa) 80 (m) 0 (b a) -60 (cd)] TJ ET"},
    {"Scaled", "BT /F 24 Tf 10 15 Td 60 Tz 2 Tc (Scales) Tj (at) Tj ET"},
    {"Risen", "BT /F 24 Tf 10 15 Td (Up) Tj 9 Ts (ri) Tj -5 Ts (se) Tj ET"},
    {"Lines", "BT /F 16 Tf 18 TL 10 28 Td (Above) Tj 1 2 (be low) \" ET"},
    {"Rotated", "BT /F 20 Tf 0.8 0.6 -0.6 0.8 20 2 Tm 1 Tc (Turn) Tj ET"},
    {"Upwards", "BT /F 16 Tf 0 1 -1 0 40 4 Tm 3 Tw (a o) Tj ET"},
    {"Mirrored", "BT /F 24 Tf -1 0 0 1 140 15 Tm (Wolf) Tj ET", 2, false},
    {"NegativeSize", "BT /F -24 Tf 140 35 Td 2 Tc (Neg) Tj ET", 2, false},
    {"Tiny", "BT /F 0.1 Tf 240 0 0 240 10 15 Tm 0.01 Tc (Tiny) Tj ET"},
    {"SizeOne", "BT /F 1 Tf 24 0 0 24 10 15 Tm 0.1 Tw (Si zes) Tj ET"},
    {"Huge", "BT /F 20000 Tf 0.0012 0 0 0.0012 10 15 Tm (Huge) Tj ET"},
    {"Skewed", "BT /F 24 Tf 1 0 0.4 1 10 15 Tm (Lean) Tj ET"},
    {"Stroked", "1 0 0 RG BT /F 30 Tf 10 12 Td 1 Tr 2 w (Rim) Tj ET", 2, false},
    {"StrokedApart", "BT /F 30 Tf 10 12 Td 1 Tr 2 Tc 4 Tw (R m) Tj ET", 2, false},
    {"FilledAndStroked", "1 0 0 RG 0 0 1 rg BT /F 30 Tf 10 12 Td 2 Tr 1 Tc (Both) Tj ET", 2, false},
    {"ModesInTurn",
     "0 0 1 rg BT /F 24 Tf 10 15 Td (A) Tj 1 Tr (B) Tj 3 Tr (C) Tj 1 0 0 1 90 15 Tm 0 Tr (D) Tj ET",
     2, false},
    {"Clip", "BT /F 30 Tf 10 12 Td 7 Tr (Clip) Tj 2 Tc 0 Tr ET STRIPES", 2, false},
    {"FillClip", "BT /F 30 Tf 10 12 Td 4 Tr (C) Tj 2 Tc (ut) Tj ET 20 5 100 18 re f", 2, false},
    {"StrokeClip", "3 w BT /F 30 Tf 10 12 Td 5 Tr (Cut) Tj ET STRIPES", 2, false},
    {"AllClip", "3 w 1 0 0 RG BT /F 30 Tf 10 12 Td 6 Tr (C) Tj 12 2 Td (ut) Tj ET STRIPES", 2,
     false},
    {"Gradient", "/Pattern cs /Shade scn BT /F 30 Tf 10 12 Td (Shade) Tj ET", 3, false},
    {"Tiled", "/Pattern cs /Tile scn BT /F 40 Tf 10 10 Td (Tile) Tj ET", 2, false},
    {"InCells", "/Pattern cs /Letters scn 5 5 140 40 re f", 2, false},
    {"InCellsOfOneColour", "/Tint cs 0 0.5 0 /Stencil scn 5 5 140 40 re f", 2, false},
    {"InForm", "BT /F 24 Tf 10 15 Td (In) Tj /Form Do (out) Tj ET"},
};

constexpr std::size_t kCellWidth = 150;
constexpr std::size_t kCellHeight = 50;
constexpr std::size_t kColumns = 4;
constexpr std::size_t kLineCount = std::size(kLines);
constexpr std::size_t kRows = (kLineCount + kColumns - 1) / kColumns;
constexpr int kResolution = 144;
constexpr std::size_t kScale = kResolution / 72;

/// A page with the lines that `level` has; only with those that are read again for `words`.
std::string PageWith(const FontCase& font, int level, bool words) {
    std::ostringstream content;
    for (std::size_t i = 0; i < kLineCount; ++i) {
        if (kLines[i].leastLevel > level || (words && !kLines[i].isText)) {
            continue;
        }
        std::string operators = kLines[i].operators;
        if (const std::size_t stripes = operators.find("STRIPES"); stripes != std::string::npos) {
            operators.replace(stripes, 7, kStripes);
        }
        content << "q 1 0 0 1 " << kCellWidth * (i % kColumns) << ' '
                << kCellHeight * (kRows - 1 - i / kColumns) << " cm 0 0 150 50 re W n " << operators
                << " Q\n";
    }
    std::vector<std::string> objects = font.objects();
    objects.resize(3, "null");
    objects.push_back(StreamOf("q 0.7 0 0 0.7 0 0 cm BT /F 24 Tf 100 40 Td (side) Tj ET Q",
                               "/Type /XObject /Subtype /Form /BBox [0 0 150 50] /Resources << "
                               "/Font << /F 5 0 R >> >>"));
    const std::string cell =
        "/PatternType 1 /TilingType 1 /BBox [0 0 50 25] /XStep 50 /YStep 25 "
        "/Resources << /Font << /F 5 0 R >> >> /PaintType ";
    const std::string letters = "BT /F 20 Tf 2 5 Td (Cel) Tj 0.5 Tc 1 0 0 rg (l) Tj ET";
    objects.push_back(StreamOf("1 0 0 rg 0 0 3 6 re f 0 0 1 rg 3 0 3 6 re f",
                               "/PatternType 1 /TilingType 1 /BBox [0 0 6 6] /XStep 6 /YStep 6 "
                               "/Resources << >> /PaintType 1"));
    objects.push_back(StreamOf(letters, cell + "1"));
    objects.push_back(StreamOf(letters, cell + "2"));
    return PageOf(
        content.str(),
        "/Font << /F 5 0 R >> /XObject << /Form 8 0 R >> /ColorSpace << /Tint "
        "[/Pattern /DeviceRGB] >> /Pattern << /Tile 9 0 R /Letters 10 0 R /Stencil 11 0 R "
        "/Shade << "
        "/PatternType 2 /Shading << /ShadingType 2 /ColorSpace /DeviceRGB /Coords [0 0 "
        "600 400] /Function << /FunctionType 2 /Domain [0 1] /C0 [1 0 0] /C1 [0 0 1] /N "
        "1 >> /Extend [true true] >> >> >>",
        objects,
        "/MediaBox [0 0 " + std::to_string(kCellWidth * kColumns) + " " +
            std::to_string(kCellHeight * kRows) + "]");
}

PageImage CellOf(const PageImage& page, std::size_t index) {
    const std::size_t width = kCellWidth * kScale;
    const std::size_t height = kCellHeight * kScale;
    const std::size_t left = width * (index % kColumns);
    const std::size_t top = height * (index / kColumns);
    PageImage cell{width, height, page.channels, {}};
    for (std::size_t y = top; y < top + height; ++y) {
        const auto row = page.samples.begin() +
                         static_cast<std::ptrdiff_t>((y * page.width + left) * page.channels);
        cell.samples.insert(cell.samples.end(), row,
                            row + static_cast<std::ptrdiff_t>(width * page.channels));
    }
    return cell;
}

class Text : public testing::TestWithParam<std::tuple<FontCase, int>> {
protected:
    static const FontCase& Font() { return std::get<0>(GetParam()); }

    static int Level() { return std::get<1>(GetParam()); }

    /// Converts the page; the name of the output, or nothing.
    std::string Convert(bool words) {
        WriteFile(mPdf, PageWith(Font(), Level(), words));
        std::vector<std::string> arguments{mPdf, mOutput, "--level", std::to_string(Level())};
        if (Font().encode != nullptr) {
            arguments.insert(arguments.end(), {"--encode", Font().encode});
        }
        const ChildResult run = RunTool(arguments);
        EXPECT_EQ(run.exitStatus, kDone) << run.errors;
        EXPECT_EQ(run.errors, "");
        return run.exitStatus == kDone ? mOutput : "";
    }

    TemporaryFolder mFolder;
    std::string mPdf = mFolder.File("text.pdf");
    std::string mOutput = mFolder.File("text.ps");
};

TEST_P(Text, LooksLikeThePdf) {
    const std::string output = Convert(false);
    ASSERT_NE(output, "");
    GhostscriptOptions options;
    options.resolution = kResolution;
    const auto drawn = DrawPages(output, options);
    const auto reference = DrawPages(mPdf, options);
    EXPECT_EQ(drawn.complaint, "");
    ASSERT_EQ(drawn.pages.size(), 1U);
    ASSERT_EQ(reference.pages.size(), 1U);
    ASSERT_EQ(drawn.pages[0].width, reference.pages[0].width);
    ASSERT_EQ(drawn.pages[0].height, reference.pages[0].height);
    // Outlines that were converted are drawn with other hints.
    const double tolerance = Font().isExactAlone && Level() == 2 ? 10.0 : 4.0;
    for (std::size_t i = 0; i < kLineCount; ++i) {
        const PageImage cell = CellOf(reference.pages[0], i);
        const PageDifference difference = Compare(CellOf(drawn.pages[0], i), cell);
        EXPECT_TRUE(difference.mean <= tolerance && difference.wrongShare <= 0.01)
            << kLines[i].name << ": " << difference.Describe();
        EXPECT_EQ(cell.IsBlank(), kLines[i].leastLevel > Level()) << kLines[i].name;
    }
}

class Words : public Text {};

TEST_P(Words, AreReadAgain) {
    const std::string output = Convert(true);
    ASSERT_NE(output, "");
    const std::string distilled = mFolder.File("distilled.pdf");
    Distil(output, distilled);
    const char* gap = Font().hasGaps ? "" : " ";
    EXPECT_EQ(WordsOf(distilled, gap), WordsOf(mPdf, gap));
}

struct NameOfFont {
    std::string operator()(const testing::TestParamInfo<std::tuple<FontCase, int>>& one) const {
        return std::get<0>(one.param).name + ("Level" + std::to_string(std::get<1>(one.param)));
    }
};

std::vector<FontCase> FontsWithWords() {
    std::vector<FontCase> fonts(std::begin(kFonts), std::end(kFonts));
    std::erase_if(fonts, [](const FontCase& font) { return !font.hasWords; });
    return fonts;
}

INSTANTIATE_TEST_SUITE_P(Fonts, Text,
                         testing::Combine(testing::ValuesIn(kFonts), testing::Values(3, 2)),
                         NameOfFont());

INSTANTIATE_TEST_SUITE_P(Fonts, Words,
                         testing::Combine(testing::ValuesIn(FontsWithWords()),
                                          testing::Values(3, 2)),
                         NameOfFont());

std::string ResidentPage(const std::string& content) {
    return PageOf(content, "/Font << /F 5 0 R >>",
                  {"<< /Type /Font /Subtype /Type1 /BaseFont /Helvetica >>"});
}

TEST(HiddenText, IsFoundAndNotSeen) {
    const TemporaryFolder folder;
    const std::string pdf = folder.File("hidden.pdf");
    const std::string output = folder.File("hidden.ps");
    const std::string distilled = folder.File("distilled.pdf");
    WriteFile(pdf, ResidentPage("BT /F 12 Tf 3 Tr 20 50 Td (Scanned) Tj 0 -20 Td (words) Tj ET"));

    const struct {
        const char* option;
        const char* words;
    } cases[] = {{"keep", "Scanned words "}, {"drop", ""}};

    for (const auto& c : cases) {
        ASSERT_EQ(RunTool({pdf, output, "--hidden-text", c.option}).exitStatus, kDone);
        const auto drawn = DrawPages(output, {});
        EXPECT_EQ(drawn.complaint, "");
        ASSERT_EQ(drawn.pages.size(), 1U);
        EXPECT_TRUE(drawn.pages[0].IsBlank()) << c.option;
        RunChild({"ps2pdf", output, distilled}, std::chrono::seconds(60));
        EXPECT_EQ(WordsOf(distilled, " "), c.words);
    }
}

TEST(BadText, LeavesTheRestInPlace) {
    const char* const contents[] = {
        "BT /F 1e30 Tf (a) Tj /F -1e-30 Tf (b) Tj ET",
        "BT /F 12 Tf 1e20 1e20 Td (a) Tj 1e38 Tc (bc) Tj 1e38 Tw (d e) Tj 0 Tz (f) Tj ET",
        "BT /F 12 Tf 1e9 1e9 -1e9 1e9 0 0 Tm (a) Tj 0 0 0 0 0 0 Tm (b) Tj 1 Tr (c) Tj ET",
        "BT /F 12 Tf 7 Tr 1 0 0 0 5 5 Tm (a) Tj 1e-30 0 0 1e-30 5 5 Tm (a) Tj ET",
        "/F 12 Tf (a) Tj BT BT (b) Tj q Q Q ET ET (c) ' [[(d) 3] << /K (e) >> null (f)] TJ",
        R"(BT /F Tf /F 12 Tf (a Tj) (\\) Tj <zz> Tj 9 Tr -1 Tr (x) 2 3 " ET)",
    };
    const TemporaryFolder folder;
    const std::string pdf = folder.File("bad.pdf");
    const std::string output = folder.File("bad.ps");
    for (const char* content : contents) {
        SCOPED_TRACE(content);
        WriteFile(pdf, ResidentPage(std::string("q ") + content + " Q 0 0 1 rg 70 70 30 30 re f"));
        ASSERT_EQ(RunTool({pdf, output}).exitStatus, kDone);
        const auto drawn = DrawPages(output, {});
        EXPECT_EQ(drawn.complaint, "");
        ASSERT_EQ(drawn.pages.size(), 1U);
        EXPECT_EQ(drawn.pages[0].At(90, 10, 2), 255);
        EXPECT_EQ(drawn.pages[0].At(90, 10, 0), 0);
    }
}

}  // namespace
}  // namespace VANTIX::TEST
