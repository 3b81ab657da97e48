// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>

#include <array>
#include <string>

#include "support/ghostscriptpages.h"
#include "support/outputcontextfixture.h"

namespace VANTIX::PS {
namespace {

using COLOR::InkColorKind;
using TEST::FakeCalculator;
using TEST::FakeCalibratedSpace;
using TEST::FakeDeviceNSpace;
using TEST::FakeDeviceSpace;
using TEST::FakeFunctionArray;
using TEST::FakeInkCollection;
using TEST::FakeProfileSpace;
using TEST::FakeRegistrationSpace;
using TEST::RecordingLogger;
using ::testing::EndsWith;
using ::testing::StartsWith;
using FunctionPtr = TInterfacePtr<COLOR::IColorFunction>;
using Point = std::array<float, 4>;

constexpr const char* kStandardRGB =
    "\n[/CIEBasedABC\n<<\n\t/DecodeLMN [{ dup 0.03928 le {12.92321 div} {0.055 add 1.055 div 2.4 "
    "exp} ifelse } bind dup dup]\n"
    "\t/MatrixLMN [0.412457 0.212673 0.019334 0.357576 0.715152 0.119192 0.180437 0.072175 "
    "0.950301]\n"
    "\t/WhitePoint [0.96420002 1 0.82489997]\n>>]\n";

/// A function that becomes the procedure "T".
FunctionPtr Procedure() {
    return MakeObject<FakeCalculator>("{T}", 1, 1, [](const float*, float*) {});
}

/// A function that has no procedure; its full tint is 0.25 0.5 0.75 1.
FunctionPtr OnlyFullTint() {
    return MakeObject<FakeFunctionArray>(1, 4, [](const float* in, float* out) {
        for (int i = 0; i < 4; ++i) {
            out[i] = in[0] * static_cast<float>(i + 1) / 4;
        }
    });
}

class TintTransforms : public TEST::OutputContextFixture {
protected:
    std::string Alternate(COLOR::IConnectionColorSpace* space, const FunctionPtr& tint,
                          bool managed = false) {
        std::string buffer(4096, '#');
        const std::int32_t length = context->WriteAlternativeColorSpaceAndTintTransformProcToBuffer(
            space, tint.Get(), buffer.data(), 4096, managed);
        EXPECT_EQ(buffer[static_cast<std::size_t>(length)], '\0');
        return buffer.substr(0, static_cast<std::size_t>(length));
    }

    std::string DeviceN(FakeDeviceNSpace& space, bool substitute = false) {
        std::string buffer(65536, '#');
        std::int32_t count = 0;
        const std::int32_t length = context->WriteDeviceNSpaceToBuffer(&space, buffer.data(), 65536,
                                                                       substitute, count, false);
        EXPECT_EQ(count, -1);
        EXPECT_EQ(buffer[static_cast<std::size_t>(length)], '\0');
        return buffer.substr(0, static_cast<std::size_t>(length));
    }

    static bool Logged(const char* message) { return RecordingLogger::Get().Has(message); }
};

TEST_F(TintTransforms, DeviceAlternatesTakeTheProcedureOrScaleTheFullTint) {
    FakeDeviceSpace gray("gray"_cc);
    FakeDeviceSpace rgb("rgb "_cc);
    FakeDeviceSpace cmyk("cmyk"_cc);
    EXPECT_EQ(Alternate(&gray, Procedure()), "/DeviceGray{T}");
    EXPECT_EQ(Alternate(&gray, OnlyFullTint()), "/DeviceGray{0.25 mul}");
    EXPECT_EQ(Alternate(&rgb, OnlyFullTint()),
              "/DeviceRGB{dup 0.25 mul exch dup 0.5 mul exch 0.75 mul}");
    EXPECT_EQ(Alternate(&cmyk, OnlyFullTint()),
              "/DeviceCMYK{dup 0.25 mul exch dup 0.5 mul exch dup 0.75 mul exch 1 mul}");
    EXPECT_EQ(Alternate(&cmyk, nullptr),
              "/DeviceCMYK{dup 1 mul exch dup 1 mul exch dup 1 mul exch 1 mul}");
    FakeDeviceSpace odd("clab"_cc);
    EXPECT_EQ(Alternate(&odd, Procedure()), "");
    EXPECT_TRUE(Logged("Unhandled ColorSpace."));
    std::string log;
    const auto scaled = TEST::RunProcedure(
        "dup 0.25 mul exch dup 0.5 mul exch dup 0.75 mul exch 1 mul", {{0.5F}}, &log);
    ASSERT_EQ(scaled.size(), 1U) << log;
    EXPECT_EQ(scaled[0], (std::vector{0.125, 0.25, 0.375, 0.5}));
}

TEST_F(TintTransforms, ProfileAlternates) {
    FakeProfileSpace gray("gray"_cc, 1);
    FakeProfileSpace rgb("rgb "_cc, 2);
    FakeProfileSpace cmyk("cmyk"_cc, 3);
    FakeProfileSpace lab("clab"_cc, 4);
    EXPECT_EQ(Alternate(&gray, Procedure()),
              "\n[/CIEBasedA\n <<\t/DecodeA {1 0.45 div exp} bind \n"
              "\t/MatrixA [0.96420002 1 0.82489997] \n"
              "\t/RangeLMN [0.0 0.96420002 0.0 1 0.0 0.82489997]\n"
              "\t/WhitePoint [0.96420002 1 0.82489997]\n>>]\n{T}");
    EXPECT_EQ(Alternate(&rgb, Procedure()), std::string(kStandardRGB) + "{T}");
    EXPECT_EQ(Alternate(&cmyk, Procedure()), "/DeviceCMYK{T}");
    // The fake spaces take the first three components, as complements, for X Y Z and R G B.
    EXPECT_EQ(Alternate(&cmyk, OnlyFullTint()),
              "/DeviceRGB{dup 0.75 mul exch dup 0.5 mul exch 0.25 mul}");
    const std::string labText = Alternate(&lab, Procedure());
    EXPECT_THAT(labText, StartsWith("\n[/CIEBasedABC\n"));
    EXPECT_THAT(labText, EndsWith("\n>>]\n{T}"));
    FakeProfileSpace odd("clbx"_cc, 5);
    EXPECT_EQ(Alternate(&odd, Procedure()), "");
    EXPECT_TRUE(Logged("Unhandled Device Key."));
}

TEST_F(TintTransforms, ManagedAlternatesAreResources) {
    const auto cmyk = MakeObject<FakeProfileSpace>("cmyk"_cc, 3U);
    cmyk->array = "[/A]";
    FakeDeviceSpace device("cmyk"_cc);
    EXPECT_EQ(Alternate(&device, Procedure(), true), "/DeviceCMYK{T}");  // no profile form
    device.profile = cmyk;
    EXPECT_EQ(Alternate(&device, Procedure(), true), "GCSA3 {T}");
    EXPECT_EQ(Written(), " /GCSA3 [/A]def\n");
    EXPECT_EQ(Alternate(cmyk.Get(), OnlyFullTint(), true),
              "GCSA3 {dup 0.25 mul exch dup 0.5 mul exch dup 0.75 mul exch 1 mul}");
    EXPECT_EQ(Written(), "");
}

TEST_F(TintTransforms, CalibratedAlternates) {
    FakeCalibratedSpace gray("cgry"_cc, 1);
    FakeCalibratedSpace rgb("crgb"_cc, 2);
    FakeCalibratedSpace lab("clab"_cc, 3);
    FakeCalibratedSpace cmyk("cmyk"_cc, 4);
    FakeCalibratedSpace odd("gray"_cc, 5);
    rgb.gammas = {1, 1, 1};
    const std::string grayText = Alternate(&gray, Procedure());
    EXPECT_THAT(grayText, StartsWith("\n[/CIEBasedA\n<<\n\t/RangeA [0 100]\n\t"));
    EXPECT_THAT(grayText, EndsWith("\n>>]\n% TintTransformation Proc\n{T}"));
    EXPECT_EQ(Alternate(&rgb, Procedure()),
              std::string(kStandardRGB) + "% TintTransformation Proc\n{T}");
    EXPECT_THAT(Alternate(&lab, Procedure()), StartsWith("\n[/CIEBasedABC\n"));
    EXPECT_EQ(Alternate(&cmyk, Procedure()), "");
    EXPECT_TRUE(Logged("Write the alternative color space as CIEBasedDEFG."));
    EXPECT_EQ(Alternate(&odd, Procedure()), "");
    EXPECT_TRUE(Logged("Unhandled Device Key for Calibrated Connection Color Space."));
}

TEST_F(TintTransforms, RegistrationAndUnknownAlternates) {
    FakeRegistrationSpace registration;
    EXPECT_EQ(Alternate(&registration, Procedure()), "\n/DeviceGray\n{T}");
    registration.components = 3;
    EXPECT_EQ(Alternate(&registration, Procedure()), "\n/DeviceRGB\n{T}");
    registration.components = 4;
    EXPECT_EQ(Alternate(&registration, Procedure()), "\n/DeviceCMYK\n{T}");
    registration.components = 2;
    EXPECT_EQ(Alternate(&registration, Procedure()), "");
    EXPECT_TRUE(
        Logged("At the moment we only handle Registration colorspace with 1, 3, and 4 "
               "channels only."));
    TEST::FakeNoneSpace none;
    EXPECT_EQ(Alternate(&none, Procedure()), "");
    EXPECT_TRUE(
        Logged("At the moment we only handle Device colorspaces as alternate for "
               "separation colours."));
    EXPECT_EQ(Alternate(nullptr, Procedure()), "");
    EXPECT_TRUE(Logged("Alternate colour space is missing here."));
}

TEST_F(TintTransforms, LargeProcedureOfOneTintIsScaledAndOfSeveralIsKept) {
    FakeDeviceSpace gray("gray"_cc);
    std::string program = "pop";
    while (program.size() < 8192) {
        program += " 0 pop";
    }
    const auto quarter = [](const float*, float* out) { out[0] = 0.25F; };
    EXPECT_EQ(Alternate(&gray, MakeObject<FakeCalculator>(program, 1, 1, quarter)),
              "/DeviceGray{0.25 mul}");
    EXPECT_TRUE(Logged("Input buffer size 8192 is smaller than the size ("));
    FakeDeviceNSpace space;
    space.names = {CoreString("A"), CoreString("B")};
    space.alternate = MakeObject<FakeDeviceSpace>("gray"_cc);
    space.tint = MakeObject<FakeCalculator>(program, 2, 1, quarter);
    EXPECT_EQ(DeviceN(space), "[\n/DeviceN [\n(A)\n(B)\n]\n/DeviceGray{" + program + "}]");
}

TEST_F(TintTransforms, SpaceThatDoesNotFitLeavesTheBufferEmpty) {
    TEST::FakeSeparationSpace space("Gold (1)", MakeObject<FakeDeviceSpace>("gray"_cc),
                                    Procedure());
    const std::string text = "[\n/Separation (Gold \\(1\\)) \n/DeviceGray{T}]";
    std::string buffer(text.size() + 1, '#');
    const auto size = static_cast<std::int32_t>(buffer.size());
    EXPECT_EQ(context->WriteSeparationSpaceToBuffer(&space, buffer.data(), size, false), size - 1);
    EXPECT_EQ(buffer.c_str(), text);
    EXPECT_EQ(context->WriteSeparationSpaceToBuffer(&space, buffer.data(), size - 1, false), 0);
    EXPECT_EQ(buffer[0], '\0');
    space.name = CoreString("");
    EXPECT_GT(context->WriteSeparationSpaceToBuffer(&space, buffer.data(), size, false), 0);
    EXPECT_THAT(buffer, StartsWith("[\n/Separation (All) \n"));
    EXPECT_EQ(context->WriteSeparationSpaceToBuffer(nullptr, buffer.data(), size, false), 0);
}

TEST_F(TintTransforms, DeviceNIsReplacedByItsAlternate) {
    FakeDeviceNSpace space;
    EXPECT_EQ(DeviceN(space, true), "");
    EXPECT_TRUE(
        Logged("DeviceN color space is not well formed. Must have an alternate colour "
               "space to function correctly."));
    space.alternate = MakeObject<FakeDeviceSpace>("rgb "_cc);
    EXPECT_EQ(DeviceN(space, true), "/DeviceRGB");
    for (const FourCC family : {"crgb"_cc, "cgry"_cc, "clab"_cc}) {
        space.alternate = MakeObject<FakeCalibratedSpace>(family, 1U);
        EXPECT_THAT(DeviceN(space, true), EndsWith("\n>>]\n"));
    }
    space.alternate = MakeObject<FakeRegistrationSpace>();
    EXPECT_EQ(DeviceN(space, true), "");
    EXPECT_TRUE(Logged("Do not support this colorspace in DeviceN substitution."));
}

TEST_F(TintTransforms, DeviceNWithAMissingNameIsAbandonedThere) {
    FakeDeviceNSpace space;
    space.names = {CoreString("A"), CoreString(u"\xD800")};
    EXPECT_EQ(DeviceN(space), "[\n/DeviceN [\n(A)\n");
    EXPECT_TRUE(Logged("Could not prepare colour name 1 for DeviceN colorspace"));
}

TEST_F(TintTransforms, InksThatCannotBeUsedAreNamedInTheLog) {
    FakeDeviceNSpace space;
    EXPECT_EQ(DeviceN(space), "");
    EXPECT_TRUE(
        Logged("The deviceN space doesn't have any colour names or an ink collection. Bailing."));
    const auto inks = MakeObject<FakeInkCollection>();
    space.inks = inks;
    EXPECT_EQ(DeviceN(space), "");
    EXPECT_TRUE(Logged("The deviceN space has an empty ink collection."));
    inks->Add("A", InkColorKind::kOther, {});
    inks->Add("B", InkColorKind::kOther, {});
    EXPECT_EQ(DeviceN(space), "[\n/DeviceN [\n(A)(B)]\n");
    EXPECT_TRUE(Logged("Don't have color function for DeviceN."));
    inks->instances.emplace_back(MakeObject<TEST::FakeInkInstance>(nullptr));
    EXPECT_EQ(DeviceN(space), "[\n/DeviceN [\n(A)(B)");
    EXPECT_TRUE(Logged("The ink instance doesn't have an ink."));
    inks->instances[1] = nullptr;
    EXPECT_EQ(DeviceN(space), "[\n/DeviceN [\n(A)");
    EXPECT_TRUE(Logged("Could not get ink instance [1]."));
    const auto bad = MakeObject<TEST::FakeInk>(std::nullopt, InkColorKind::kCMYK, Point{});
    inks->instances[0] = MakeObject<TEST::FakeInkInstance>(bad);
    EXPECT_EQ(DeviceN(space), "[\n/DeviceN [\n");
    EXPECT_TRUE(Logged("The ink has to have a name."));
    bad->name = CoreString(u"\xDC00");
    EXPECT_EQ(DeviceN(space), "[\n/DeviceN [\n");
    EXPECT_TRUE(Logged("Could not get a UTF8 representation of the ink colour name."));
}

TEST_F(TintTransforms, OneInkIsASeparation) {
    FakeDeviceNSpace space;
    const auto inks = MakeObject<FakeInkCollection>();
    space.inks = inks;
    inks->Add("Gold", InkColorKind::kCMYK, {1, 0.75F, 0.5F, 0.25F});
    EXPECT_EQ(DeviceN(space),
              "[\n/Separation (Gold)/DeviceCMYK{0.0 0.0 0.0 0.0 "
              "\n5 -1 roll dup 5 index 1.0 exch sub mul 0\n"
              "mul 6 -1 roll add exch dup 5 index 1.0 exch sub mul 0.25\n"
              "mul 6 -1 roll add exch dup 5 index 1.0 exch sub mul 0.5\n"
              "mul 6 -1 roll add exch 4 index 1.0 exch sub mul 0.75\n"
              "mul 5 -1 roll add\n}]");
}

/// Ink counts and kinds.
class InkFunctions : public TintTransforms,
                     public ::testing::WithParamInterface<std::pair<int, InkColorKind>> {};

TEST_P(InkFunctions, ComputeInksPrintedOverOneAnother) {
    const auto [count, kind] = GetParam();
    const bool cmyk = kind == InkColorKind::kCMYK;
    constexpr Point kColors[] = {
        {1, 0.25F, 0.5F, 0.75F}, {0.5F, 0.9F, 0.125F, 1}, {0, 0.75F, 1, 0.5F}};
    const auto inks = MakeObject<FakeInkCollection>();
    for (int i = 0; i < count; ++i) {
        inks->Add("Ink", kind, kColors[i]);
    }
    FakeDeviceNSpace space;
    space.inks = inks;
    const auto function =
        FunctionPtr::Adopt(cmyk ? context->CreateTintfunctionForCMYKColorspace(&space)
                                : context->CreateTintfunctionForRGBColorspace(&space));
    ASSERT_TRUE(function);
    EXPECT_EQ(function->GetInputCount(), count);
    std::vector<std::vector<float>> tints;
    for (int i = 0; i < 9; ++i) {
        tints.push_back({static_cast<float>(i) / 8, 0.5F, static_cast<float>(8 - i) / 8});
        tints.back().resize(static_cast<std::size_t>(count));
    }
    std::string log;
    const auto results =
        TEST::RunProcedure(static_cast<FakeCalculator&>(*function).program, tints, &log);
    ASSERT_EQ(results.size(), tints.size()) << log;
    for (std::size_t i = 0; i < tints.size(); ++i) {
        ASSERT_EQ(results[i].size(), cmyk ? 4U : 3U);
        for (std::size_t k = 0; k < results[i].size(); ++k) {
            double paper = 1;
            for (std::size_t ink = 0; ink < tints[i].size(); ++ink) {
                paper *= 1 - tints[i][ink] * (1 - kColors[ink][k]);
            }
            EXPECT_NEAR(results[i][k], cmyk ? 1 - paper : paper, 1e-3);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(
    Inks, InkFunctions,
    ::testing::Values(std::pair{1, InkColorKind::kCMYK}, std::pair{2, InkColorKind::kCMYK},
                      std::pair{3, InkColorKind::kCMYK}, std::pair{1, InkColorKind::kRGB},
                      std::pair{2, InkColorKind::kRGB}, std::pair{3, InkColorKind::kRGB}));

TEST_F(TintTransforms, InkOfAnotherKindMarksNothingButGivesUpItsTint) {
    FakeDeviceNSpace space;
    const auto inks = MakeObject<FakeInkCollection>();
    space.inks = inks;
    inks->Add("Odd", InkColorKind::kRGB, {});
    inks->Add("Black", InkColorKind::kCMYK, {1, 1, 1, 0});
    const auto function = FunctionPtr::Adopt(context->CreateTintfunctionForCMYKColorspace(&space));
    EXPECT_TRUE(Logged("Alternate colorspace 4 not handled."));
    std::string log;
    const auto results =
        TEST::RunProcedure(static_cast<FakeCalculator&>(*function).program, {{1, 0.5F}}, &log);
    ASSERT_EQ(results.size(), 1U) << log;
    EXPECT_EQ(results[0], (std::vector{0.0, 0.0, 0.0, 0.5}));
}

}  // namespace
}  // namespace VANTIX::PS
