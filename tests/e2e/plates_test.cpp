// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "e2e/tool.h"
#include "support/ghostscriptpages.h"
#include "support/temporaryfolder.h"

namespace VANTIX::TEST {
namespace {

/// The plates of the first page that the tool makes of a case.
Plates ConvertedPlates(const std::string& name, std::vector<std::string> options) {
    const TemporaryFolder folder;
    const std::string output = folder.File("page.ps");
    options.insert(options.end(), {CasePath(name), output});
    const ChildResult run = RunTool(options);
    EXPECT_EQ(run.exitStatus, kDone) << run.errors;
    auto drawn = DrawPlates(output, {});
    EXPECT_EQ(drawn.complaint, "");
    return drawn.pages.empty() ? Plates{} : drawn.pages.front();
}

std::vector<std::string> Names(const Plates& plates) {
    std::vector<std::string> names;
    for (const auto& [name, plate] : plates) {
        names.push_back(name);
    }
    return names;
}

const std::vector<std::string> kProcessPlates{"Black", "Cyan", "Magenta", "Yellow"};

class PlatesOf : public testing::TestWithParam<const char*> {};

TEST_P(PlatesOf, AreThoseOfThePdf) {
    const auto reference = DrawPlates(CasePath(GetParam()), {});
    ASSERT_EQ(reference.pages.size(), 1U);
    for (const char* model : {"as-is", "devicen", "devicen-managed"}) {
        SCOPED_TRACE(model);
        const Plates plates = ConvertedPlates(GetParam(), {"--level", "3", "--color", model});
        EXPECT_EQ(Names(plates), Names(reference.pages.front()));
        for (const auto& [name, plate] : plates) {
            const auto own = reference.pages.front().find(name);
            if (own != reference.pages.front().end()) {
                const PageDifference difference = Compare(plate, own->second);
                EXPECT_TRUE(difference.IsMatch()) << name << ": " << difference.Describe();
            }
        }
    }
}

TEST_P(PlatesOf, AreTheProcessInksAloneWhenSpotsAreConverted) {
    for (const char* model : {"as-is-process", "cmyk", "cmyk-managed"}) {
        for (const char* level : {"2", "3"}) {
            const Plates plates = ConvertedPlates(GetParam(), {"--level", level, "--color", model});
            EXPECT_EQ(Names(plates), kProcessPlates) << model << " at level " << level;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Cases, PlatesOf,
                         testing::Values("plates", "overprint", "separation-exponential",
                                         "separation-names", "separation-all-none-black",
                                         "devicen-2-calculator", "devicen-3-sampled",
                                         "devicen-5-calculator", "devicen-none", "nchannel"),
                         NameOfCase());

TEST(Plates, RegistrationMarksEveryPlate) {
    const Plates plates = ConvertedPlates("plates", {"--color", "as-is"});
    ASSERT_EQ(plates.size(), 6U);
    for (const auto& [name, plate] : plates) {
        EXPECT_LE(plate.At(80, 120 - 62, 0), 16) << name;
        EXPECT_EQ(plate.At(55, 120 - 100, 0), 255) << name;
    }
}

TEST(Plates, OfAnotherInkStayEmptyUnderANoneSeparation) {
    const Plates plates = ConvertedPlates("separation-all-none-black", {"--color", "as-is"});
    for (const auto& [name, plate] : plates) {
        EXPECT_EQ(plate.At(10, 120 - 50, 0), 255) << name;
    }
}

/// The lowest rows of the press sheet, which are 595.
PageImage Part(const PageImage& plate, std::size_t rows) {
    PageImage part{720, rows, 1, {}};
    for (std::size_t y = plate.height - part.height; y < plate.height; ++y) {
        const auto row = plate.samples.begin() + static_cast<std::ptrdiff_t>(y * plate.width);
        part.samples.insert(part.samples.end(), row, row + static_cast<std::ptrdiff_t>(part.width));
    }
    return part;
}

TEST(Example, PressSheetComesApartIntoItsInks) {
    // From tests/e2e/cases.
    const std::string sheet = "../../../examples/press-sheet";
    const std::vector<std::string> inks{"Black",          "Cyan",    "Deep Sea", "Magenta",
                                        "Sunrise Orange", "Varnish", "Yellow"};
    const auto reference = DrawPlates(CasePath(sheet), {});
    ASSERT_EQ(reference.pages.size(), 1U);
    for (const char* model : {"as-is", "devicen", "devicen-managed"}) {
        SCOPED_TRACE(model);
        const Plates plates = ConvertedPlates(sheet, {"--color", model});
        ASSERT_EQ(Names(plates), inks);
        for (const auto& [name, plate] : plates) {
            const PageImage part = Part(plate, 595);
            EXPECT_FALSE(part.IsBlank()) << name;
            const PageDifference difference =
                Compare(part, Part(reference.pages.front().at(name), 595));
            EXPECT_TRUE(difference.IsMatch()) << name << ": " << difference.Describe();
        }
    }
}

TEST(Example, PressSheetIsPrintedInFourInksOnRequest) {
    const std::string sheet = "../../../examples/press-sheet";
    GhostscriptOptions options;
    options.spots = false;
    const auto reference = DrawPlates(CasePath(sheet), options);
    ASSERT_EQ(reference.pages.size(), 1U);
    const Plates plates = ConvertedPlates(sheet, {"--color", "cmyk"});
    ASSERT_EQ(Names(plates), kProcessPlates);
    // Above these are waves of varnish, which Ghostscript lets overprint in process inks, too.
    for (const auto& [name, plate] : plates) {
        const PageDifference difference =
            Compare(Part(plate, 140), Part(reference.pages.front().at(name), 140));
        EXPECT_TRUE(difference.IsMatch()) << name << ": " << difference.Describe();
    }
}

TEST(LevelTwo, HoldsNoColorantsOfLevelThree) {
    const TemporaryFolder folder;
    const std::string output = folder.File("page.ps");
    ASSERT_EQ(RunTool({"--level", "2", CasePath("plates"), output}).exitStatus, kDone);
    const std::string text = ReadFile(output);
    EXPECT_EQ(text.find("/DeviceN"), std::string::npos);
    EXPECT_NE(text.find("/Separation (Orange)"), std::string::npos);
}

}  // namespace
}  // namespace VANTIX::TEST
