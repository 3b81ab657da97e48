// SPDX-License-Identifier: MIT
#include "host/fonts/fontfinder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <utility>
#include <vector>

#include "host/fonts/truetypeprogram.h"
#include "madetruetype.h"
#include "support/temporaryfolder.h"

namespace VANTIX::HOST {
namespace {

bool AreStandardFontsInstalled() {
    return FindInstalledFont({.name = "NimbusSans-Regular"}).value_or(FoundFont()).name ==
           "NimbusSans-Regular";
}

TEST(FontFinder, PutsAFontOfTheSameKindInThePlaceOfOneThatIsMissing) {
    if (!AreStandardFontsInstalled()) {
        GTEST_SKIP() << "fonts-urw-base35 is not installed";
    }
    const std::vector<std::pair<FontWish, std::string>> cases = {
        {{.name = "Helvetica"}, "NimbusSans-Regular"},
        {{.name = "Arial,Bold"}, "NimbusSans-Bold"},
        {{.name = "ZapfDingbats"}, "D050000L"},
        {{.name = "NoSuchFont"}, "NimbusSans-Regular"},
        {{.name = "", .isSerif = true, .isBold = true}, "NimbusRoman-Bold"},
        {{.name = "NoSuchFont", .isSerif = true, .isItalic = true}, "NimbusRoman-Italic"},
        {{.name = "NoSuchFont", .isFixedPitch = true, .isItalic = true, .isBold = true},
         "NimbusMonoPS-BoldItalic"},
        {{.name = "NoSuchFont", .isSymbolic = true}, "StandardSymbolsPS"},
    };
    for (const auto& [wish, name] : cases) {
        const auto font = FindInstalledFont(wish);
        ASSERT_TRUE(font) << wish.name;
        EXPECT_EQ(font->name, name);
        EXPECT_FALSE(font->isTrueType);
        EXPECT_EQ(font->path, FindInstalledFont(wish)->path);
    }
}

TEST(FontFinder, ReadsAFileThatIsNamed) {
    const std::string path = "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf";
    if (!std::filesystem::exists(path)) {
        GTEST_SKIP() << "fonts-dejavu-core is not installed";
    }
    std::string problem;
    const auto font = ReadFontFile(path, problem);
    ASSERT_TRUE(font) << problem;
    EXPECT_EQ(font->name, "DejaVuSans");
    EXPECT_TRUE(font->isTrueType);
    EXPECT_EQ(font->bytes.size(), std::filesystem::file_size(path));
}

TEST(FontFinder, TakesAFaceOutOfACollection) {
    const std::vector<std::vector<std::string>> faces = {
        {"", TEST::TriangleGlyph(100)}, {"", TEST::TriangleGlyph(100), TEST::TriangleGlyph(200)}};
    std::string header = "ttcf" + TEST::LongWord(0x10000) + TEST::LongWord(faces.size());
    std::string files;
    for (const auto& glyphs : faces) {
        const std::size_t start = 12 + 4 * faces.size() + files.size();
        header += TEST::LongWord(start);
        const auto tables = TEST::MadeTables(glyphs);
        std::string file = TEST::MakeSfnt(tables);
        std::size_t offset = 12 + 16 * tables.size();
        for (std::size_t i = 0; const auto& table : tables) {
            file.replace(12 + 16 * i++ + 8, 4, TEST::LongWord(start + offset));
            offset += (table.second.size() + 3) / 4 * 4;
        }
        files += file;
    }
    const TEST::TemporaryFolder folder;
    const std::string path = folder.File("two.ttc");
    TEST::WriteFile(path, header + files);
    std::string problem;
    for (int face = 0; face < 2; ++face) {
        const auto font = ReadFontFile(path, problem, face);
        ASSERT_TRUE(font) << problem;
        EXPECT_TRUE(font->isTrueType);
        const auto program = TrueTypeProgram::Open(font->bytes, problem);
        ASSERT_NE(program, nullptr) << problem;
        EXPECT_EQ(program->GlyphCount(), 2U + static_cast<unsigned>(face));
    }
    EXPECT_FALSE(ReadFontFile(path, problem, 2));
}

TEST(FontFinder, SaysWhyAFileIsOfNoUse) {
    const TEST::TemporaryFolder folder;
    TEST::WriteFile(folder.File("text"), "no font");
    TEST::WriteFile(folder.File("nothing"), "");
    for (const std::string& path : {folder.File("text"), folder.File("nothing"),
                                    folder.File("missing"), folder.Path().string()}) {
        std::string problem;
        EXPECT_FALSE(ReadFontFile(path, problem)) << path;
        EXPECT_NE(problem, "");
    }
}

}  // namespace
}  // namespace VANTIX::HOST
