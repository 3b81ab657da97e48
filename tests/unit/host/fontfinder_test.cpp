// SPDX-License-Identifier: MIT
#include "host/fonts/fontfinder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <utility>
#include <vector>

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
