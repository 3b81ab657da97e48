// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <map>

#include "e2e/tool.h"
#include "support/ghostscriptpages.h"
#include "support/temporaryfolder.h"

namespace VANTIX::TEST {
namespace {

/// Which of a case's runs must look like the PDF. All runs must be free of errors.
enum class Judged {
    kAll,
    kAllAndEmbedded,  ///< profiles are written on request, and change nothing that can be seen
    kEmbedded,        ///< without its profile, the page is the device space's
};

/// What a case has of its own.
struct Special {
    Judged judged = Judged::kAll;
    std::string password;
    std::string reference;  ///< the case that it must look like, where Ghostscript is no judge
};

const std::map<std::string, Special>& Specials() {
    static const std::map<std::string, Special> kSpecials{
        {"calgray", {Judged::kAllAndEmbedded, {}, {}}},
        {"calgray-linear", {Judged::kEmbedded, {}, {}}},
        {"calrgb-1", {Judged::kEmbedded, {}, {}}},
        {"calrgb-1.8", {Judged::kEmbedded, {}, {}}},
        {"calrgb-2.2", {Judged::kAllAndEmbedded, {}, {}}},
        {"calrgb-mixed", {Judged::kEmbedded, {}, {}}},
        {"damaged-xref", {Judged::kAll, {}, "path-operators"}},
        {"default-spaces", {Judged::kAllAndEmbedded, {}, {}}},
        {"encrypted", {Judged::kAll, {}, "clips"}},
        {"encrypted-password", {Judged::kAll, "sesame", "clips"}},
        {"icc-cmyk", {Judged::kEmbedded, {}, {}}},
        {"icc-gray", {Judged::kAllAndEmbedded, {}, {}}},
        {"icc-srgb", {Judged::kAllAndEmbedded, {}, {}}},
        {"lab", {Judged::kAllAndEmbedded, {}, {}}},
        {"optional-content-form", {Judged::kAll, {}, "optional-content"}},
        {"separation-cie-alternates", {Judged::kAllAndEmbedded, {}, {}}},
    };
    return kSpecials;
}

Special SpecialOf(const std::string& name) {
    const auto found = Specials().find(name);
    return found == Specials().end() ? Special{} : found->second;
}

std::vector<std::string> CaseNames() {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(NORVANE_CASES)) {
        if (entry.path().extension() == ".pdf") {
            names.push_back(entry.path().stem().string());
        }
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::vector<std::string> CasesWithProfiles() {
    std::vector<std::string> names = CaseNames();
    std::erase_if(names, [](const auto& name) { return SpecialOf(name).judged == Judged::kAll; });
    return names;
}

class Render : public testing::TestWithParam<std::string> {
protected:
    /// Converts the case with the options and draws the result; a run that is not judged must
    /// only be free of errors.
    void Check(const std::vector<std::string>& options, bool judged) {
        SCOPED_TRACE(testing::PrintToString(options));
        const TemporaryFolder folder;
        const std::string output = folder.File("page.ps");
        std::vector<std::string> arguments = options;
        arguments.insert(arguments.end(), {"--password", mSpecial.password, mInput, output});
        const ChildResult run = RunTool(arguments);
        ASSERT_EQ(run.exitStatus, kDone) << run.errors;
        const auto drawn = DrawPages(output, {});
        EXPECT_EQ(drawn.complaint, "");
        ASSERT_EQ(drawn.pages.size(), mReference.size());
        for (std::size_t i = 0; judged && i < mReference.size(); ++i) {
            const PageDifference difference = Compare(drawn.pages[i], mReference[i]);
            EXPECT_TRUE(difference.IsMatch()) << "page " << i + 1 << ": " << difference.Describe();
        }
    }

    void SetUp() override {
        const std::string reference =
            mSpecial.reference.empty() ? mInput : CasePath(mSpecial.reference);
        mReference = DrawPages(reference, {}).pages;
        ASSERT_FALSE(mReference.empty());
        ASSERT_FALSE(mReference.front().IsBlank());
    }

    const std::string mInput = CasePath(GetParam());
    const Special mSpecial = SpecialOf(GetParam());
    std::vector<PageImage> mReference;
};

TEST_P(Render, LooksAsThePdf) {
    for (const char* level : {"2", "3"}) {
        for (const char* color : {"as-is", "as-is-process"}) {
            Check({"--level", level, "--color", color}, mSpecial.judged != Judged::kEmbedded);
        }
    }
}

using RenderProfiles = Render;

TEST_P(RenderProfiles, LooksAsThePdfWithItsProfiles) {
    for (const char* color : {"as-is", "as-is-process"}) {
        Check({"--level", "3", "--color", color, "--embed-profiles"}, true);
    }
    // Level 2 has no table of several inks: only what needs none is embedded.
    Check({"--level", "2", "--embed-profiles"}, mSpecial.judged == Judged::kAllAndEmbedded);
}

INSTANTIATE_TEST_SUITE_P(Cases, Render, testing::ValuesIn(CaseNames()), NameOfCase());
INSTANTIATE_TEST_SUITE_P(Cases, RenderProfiles, testing::ValuesIn(CasesWithProfiles()),
                         NameOfCase());

TEST(RenderTable, NamesOnlyCasesThatAreThere) {
    for (const auto& [name, special] : Specials()) {
        EXPECT_TRUE(std::filesystem::exists(CasePath(name))) << name;
    }
}

}  // namespace
}  // namespace VANTIX::TEST
