// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <cmath>
#include <sstream>

#include "host/color/colorspacefactory.h"
#include "support/ghostscriptpages.h"
#include "support/iccprofiles.h"
#include "support/memoryprovider.h"
#include "support/temporaryfolder.h"

namespace VANTIX::TEST {
namespace {

using COLOR::TRenderingIntent;
using HOST::ColorSpacePtr;

constexpr auto kRelative = TRenderingIntent::kRelativeColorimetric;

std::string ArrayOf(const ColorSpacePtr& space) {
    MemoryProvider out;
    EXPECT_EQ(space->WritePostScriptArray(kRelative, out), STATUS::kOk);
    return out.contents;
}

/// One pixel for each colour, as an interpreter shows it in sRGB.
std::vector<std::uint8_t> Render(const std::string& array,
                                 const std::vector<std::vector<float>>& colors) {
    std::ostringstream program;
    // As the output context defines a space, with something on the stack that must stay there.
    program << "%!PS\n<< /PageSize [" << colors.size() << " 1] >> setpagedevice\n"
            << "(mark) /GCSA1 " << array << "def\n GCSA1 setcolorspace\n";
    for (std::size_t i = 0; i < colors.size(); ++i) {
        for (const float value : colors[i]) {
            program << value << ' ';
        }
        program << "setcolor " << i << " 0 1 1 rectfill\n";
    }
    program << "gsave showpage grestore (mark) eq not {stop} if\n";
    const TemporaryFolder folder;
    WriteFile(folder.File("colors.ps"), program.str());
    const auto drawn = DrawPages(folder.File("colors.ps"), {});
    EXPECT_EQ(drawn.complaint, "") << array.substr(0, 500);
    return drawn.pages.size() == 1 ? drawn.pages[0].samples : std::vector<std::uint8_t>();
}

class PostScriptArrays : public testing::Test {
protected:
    /// `inks` and light are the operands of `setcolor`; the space takes complements of inks.
    void ExpectRendered(const ColorSpacePtr& space, const std::vector<std::vector<float>>& colors,
                        int tolerance) {
        ASSERT_TRUE(space) << mError;
        const auto pixels = Render(ArrayOf(space), colors);
        ASSERT_EQ(pixels.size(), 3 * colors.size());
        const auto rgb = mFactory->DeviceSpace("rgb "_cc);
        for (std::size_t i = 0; i < colors.size(); ++i) {
            std::vector<float> values = colors[i];
            for (float& value : values) {
                value = space->StoresComponentsInverted() ? 1 - value : value;
            }
            float pcs[3];
            float light[3];
            ASSERT_TRUE(space->ToPCS(values.data(), pcs, kRelative));
            ASSERT_TRUE(rgb->FromPCS(pcs, light, kRelative));
            for (std::size_t k = 0; k < 3; ++k) {
                EXPECT_NEAR(pixels[3 * i + k], light[k] * 255, tolerance) << i << " " << k;
            }
        }
    }

    std::string mError;
    TInterfacePtr<HOST::ColorSpaceFactory> mFactory = MakeObject<HOST::ColorSpaceFactory>();
    const std::vector<std::vector<float>> mLight{{1, 1, 1},          {0, 0, 0},
                                                 {0.5F, 0.5F, 0.5F}, {0.8F, 0.2F, 0},
                                                 {0, 1, 0.3F},       {0.03F, 0.1F, 0.9F}};
};

TEST_F(PostScriptArrays, BuiltInSpacesRenderAsTheyConvert) {
    ExpectRendered(ColorSpacePtr(mFactory->DeviceSpace("rgb "_cc)->GetProfileForm()), mLight, 2);
    ExpectRendered(ColorSpacePtr(mFactory->DeviceSpace("gray"_cc)->GetProfileForm()),
                   {{0}, {0.1F}, {0.5F}, {0.8F}, {1}}, 2);
}

TEST_F(PostScriptArrays, ProfilesOfEveryClassRenderAsTheyConvert) {
    ExpectRendered(mFactory->ProfileSpace(GammaRGBProfile(2.2), 3, mError), mLight, 2);
    ExpectRendered(mFactory->ProfileSpace(GammaGrayProfile(1.8), 1, mError),
                   {{0}, {0.1F}, {0.5F}, {1}}, 2);
    ExpectRendered(mFactory->ProfileSpace(TableRGBProfile(), 3, mError), mLight, 5);
    ExpectRendered(mFactory->ProfileSpace(LabProfile(), 3, mError),
                   {{100, 0, 0}, {50, 40, 20}, {70, -20, 30}}, 5);
    ExpectRendered(mFactory->ProfileSpace(InkProfile(), 4, mError),
                   {{0, 0, 0, 0}, {0, 0, 0, 1}, {1, 0, 0, 0}, {0.2F, 0.6F, 0.1F, 0.1F}}, 6);
    ExpectRendered(mFactory->CalibratedSpace("crgb"_cc, {.gammas = {1.8F, 1.0F, 2.5F}}, mError),
                   {{1, 1, 1}, {0.5F, 0.5F, 0.4F}}, 3);
}

TEST_F(PostScriptArrays, ShortFormsStandForTheUsualCurves) {
    EXPECT_LT(ArrayOf(mFactory->ProfileSpace(GammaRGBProfile(2.2), 3, mError)).size(), 400U);
    EXPECT_LT(ArrayOf(mFactory->ProfileSpace(GammaGrayProfile(2.2), 1, mError)).size(), 200U);
    EXPECT_LT(ArrayOf(mFactory->ProfileSpace(InkProfile(), 4, mError)).size(), 45000U);
    EXPECT_EQ(ArrayOf(mFactory->ProfileSpace(InkProfile(), 4, mError)),
              ArrayOf(mFactory->ProfileSpace(InkProfile(), 4, mError)));
}

TEST_F(PostScriptArrays, CmykWithoutAProfileStandsForItself) {
    const auto cmyk = mFactory->DeviceSpace("cmyk"_cc);
    EXPECT_EQ(cmyk->GetProfileForm(), cmyk.Get());
    EXPECT_EQ(ArrayOf(cmyk), "/DeviceCMYK ");
}

TEST_F(PostScriptArrays, SpacesWithoutAFormSaySo) {
    MemoryProvider out;
    EXPECT_NE(mFactory->NoneSpace()->WritePostScriptArray(kRelative, out), STATUS::kOk);
    EXPECT_EQ(out.contents, "");
    out.writeStatus = STATUS::kWriteFailed;
    EXPECT_EQ(mFactory->DeviceSpace("rgb "_cc)->WritePostScriptArray(kRelative, out),
              STATUS::kWriteFailed);
}

}  // namespace
}  // namespace VANTIX::TEST
