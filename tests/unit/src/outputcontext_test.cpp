// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>

#include <limits>

#include "postscriptconnectionspace/blendmodes.h"
#include "postscriptconnectionspace/standardhashie.h"
#include "support/ghostscriptpages.h"
#include "support/outputcontextfixture.h"

namespace VANTIX::PS {
namespace {

using COLOR::TRenderingIntent;
using TEST::FakeCalculator;
using TEST::FakeCalibratedSpace;
using TEST::FakeDeviceNSpace;
using TEST::FakeDeviceSpace;
using TEST::FakeExponential;
using TEST::FakeProfileSpace;
using TEST::FakeSeparationSpace;
using TEST::RecordingLogger;

constexpr float kD65[3] = {0.9505F, 1.0F, 1.089F};

class OutputContext : public TEST::OutputContextFixture {
protected:
    /// What `draw` writes at first, and nothing when it is repeated at once.
    template <class Draw>
    std::string Once(Draw draw) {
        draw();
        std::string first = Written();
        draw();
        EXPECT_EQ(Written(), "") << "repeated after " << first;
        return first;
    }
};

TInterfacePtr<FakeSeparationSpace> Spot(const char* name) {
    return MakeObject<FakeSeparationSpace>(
        name, MakeObject<FakeDeviceSpace>("cmyk"_cc),
        MakeObject<FakeExponential>(4, std::vector<float>(4, 0.0F),
                                    std::vector{0.0F, 1.0F, 0.5F, 0.25F}, 1.0F));
}

constexpr const char* kSpotTint =
    "{dup dup dup 4 -1 roll 0 mul 0 add 4 -1 roll 1 mul 0 add "
    "4 -1 roll 0.5 mul 0 add 4 -1 roll 0.25 mul 0 add }";

/// Whether an interpreter takes the text without an error and keeps its operand stack empty.
::testing::AssertionResult RunsClean(const std::string& text) {
    const auto run = TEST::RunPostScript("%!PS\n" + text + "\n");
    if (run.complaint.empty() && run.text.empty()) {
        return ::testing::AssertionSuccess();
    }
    return ::testing::AssertionFailure() << run.complaint << run.text << "in\n" << text;
}

TEST_F(OutputContext, WritesASpaceOnceWhileItIsCurrent) {
    EXPECT_EQ(Once([&] { context->SetDeviceColorSpace("gray"_cc); }),
              "/DeviceGray setcolorspace\n");
    EXPECT_EQ(Once([&] { context->SetDeviceColorSpace("rgb "_cc); }), "/DeviceRGB setcolorspace\n");
    EXPECT_EQ(Once([&] { context->SetDeviceColorSpace("cmyk"_cc); }),
              "/DeviceCMYK setcolorspace\n");
    EXPECT_FALSE(context->SetNamedColorSpace("SEPCS-1"));
    EXPECT_EQ(Written(), "");
    EXPECT_EQ(Once([&] { context->SetRegistrationColorSpace(); }),
              "[/Separation (All) /DeviceGray {1 exch sub}] setcolorspace 1 setcolor "
              "%% Registration\n");
    EXPECT_EQ(Once([&] { context->SetNoneColorSpace(); }),
              "[/Separation (None) /DeviceGray {1 exch sub}] setcolorspace 0 setcolor\n");
    EXPECT_EQ(Once([&] { context->SetCalibratedGrayColorSpace(0.95F, 1, 1.09F); }),
              "[ /CIEBasedA\n<< /MatrixA [0.94999999 1 1.09]\n"
              "/RangeLMN [0.0  0.94999999  0.0  1  0.0  1.09]\n"
              "/WhitePoint [0.94999999  1  1.09]\n>>\n] setcolorspace ");
    const auto spot = Spot("Gold");
    EXPECT_EQ(Once([&] { context->SetSeparationColorSpace("SEPCS-2", "Gold", spot.Get(), false); }),
              std::string("\n/SEPCS-2 [/Separation (Gold)/DeviceCMYK") + kSpotTint +
                  "] def\nSEPCS-2 setcolorspace\n");
    context->SetDeviceColorSpace("gray"_cc);
    Written();
    EXPECT_EQ(Once([&] { context->SetNamedColorSpace("SEPCS-2"); }), "SEPCS-2 setcolorspace\n");
}

TEST_F(OutputContext, RefusesUnknownAndMissingThings) {
    context->SetDeviceColorSpace("clab"_cc);
    EXPECT_TRUE(RecordingLogger::Get().Has("Unhandled device color space encountered: 1668047202"));
    EXPECT_FALSE(context->SetNamedColorSpace(nullptr));
    context->SetSeparationColorSpace(nullptr, "Gold", Spot("Gold").Get(), false);
    context->SetDeviceNColorSpace("N", nullptr, false);
    context->SetLabColorSpace(nullptr);
    context->SetColor(nullptr, 3);
    context->SetColorSpace(nullptr, TRenderingIntent::kPerceptual);
    context->SetDefaultColour("clab"_cc, false);
    context->SetRenderingIntent(static_cast<TRenderingIntent>(4));
    EXPECT_FALSE(context->SetCalibratedColorSpace(nullptr));
    EXPECT_FALSE(context->SetPatternColor(nullptr, nullptr, nullptr));
    EXPECT_FALSE(
        context->SetPatternColor("P1", MakeObject<FakeDeviceSpace>("gray"_cc).Get(), nullptr));
    EXPECT_EQ(Written(), "");
    streams.Pop();
    context->SetDeviceColorSpace("gray"_cc);
    context->GSave();
    EXPECT_EQ(context->GetBaseDataStream(), nullptr);
}

TEST_F(OutputContext, NeedsAStateStack) {
    const auto bare = MakeObject<PostScriptOutputContext>(streams);
    EXPECT_FALSE(bare->Init(nullptr));
    EXPECT_FALSE(bare->Init(MakeObject<TEST::FakeFactory>().Get()));
    EXPECT_EQ(RecordingLogger::Get().Count(
                  "Could not create a mutable graphics state stack from the registry."),
              2);
}

TEST_F(OutputContext, WritesAColourOnceUntilTheSpaceChanges) {
    const float gray[] = {0.5F};
    const float many[17] = {};
    context->SetDeviceColorSpace("gray"_cc);
    Written();
    EXPECT_EQ(Once([&] { context->SetColor(gray, 1); }), "0.5 setcolor\n");
    const float rgb[] = {0.5F, 1.0F / 3, 1e-7F};
    EXPECT_EQ(Once([&] { context->SetColor(rgb, 3); }), "0.5 0.33333334 1e-07 setcolor\n");
    context->SetDeviceColorSpace("rgb "_cc);
    context->SetColor(rgb, 3);
    EXPECT_EQ(Written(), "/DeviceRGB setcolorspace\n0.5 0.33333334 1e-07 setcolor\n");
    context->SetColor(many, 17);
    const std::string seventeen = Written();
    context->SetColor(many, 17);
    EXPECT_EQ(Written(), seventeen);
}

TEST_F(OutputContext, AlwaysWritesAColourThatIsNotANumber) {
    const float bad[] = {std::numeric_limits<float>::quiet_NaN(), 1};
    context->SetColor(bad, 2);
    context->SetColor(bad, 2);
    EXPECT_EQ(Written(), "0 1 setcolor\n0 1 setcolor\n");
}

TEST_F(OutputContext, RegistrationKnowsItsColourAndNoneDoesNot) {
    const float full[] = {1};
    context->SetRegistrationColorSpace();
    Written();
    context->SetColor(full, 1);
    EXPECT_EQ(Written(), "");
    context->SetNoneColorSpace();
    Written();
    context->SetColor(full, 1);
    EXPECT_EQ(Written(), "1 setcolor\n");
}

TEST_F(OutputContext, RestoresWhatTheInterpreterRestores) {
    context->SetDeviceColorSpace("gray"_cc);
    context->GSave();
    context->SetDeviceColorSpace("rgb "_cc);
    context->GRestore();
    context->SetDeviceColorSpace("gray"_cc);
    context->SetDeviceColorSpace("rgb "_cc);
    EXPECT_EQ(Written(),
              "/DeviceGray setcolorspace\ngsave\n/DeviceRGB setcolorspace\ngrestore\n"
              "/DeviceRGB setcolorspace\n");
    context->BeginRecording();
    context->SetDeviceColorSpace("gray"_cc);
    Written();
    context->EndRecording();
    EXPECT_EQ(Written(), "");
    context->SetDeviceColorSpace("rgb "_cc);
    EXPECT_EQ(Written(), "");
}

TEST_F(OutputContext, DefaultColourIsBlackAndKnown) {
    const float black[] = {0, 0, 0, 1};
    context->SetDefaultColour("gray"_cc, false);
    context->SetDefaultColour("rgb "_cc, false);
    context->SetDefaultColour("cmyk"_cc, false);
    EXPECT_EQ(Written(),
              "/DeviceGray setcolorspace %set default colour to Gray black\n"
              "/DeviceRGB setcolorspace %set default colour to RGB black\n"
              "/DeviceCMYK setcolorspace %set default colour to CMYK black\n");
    context->SetDeviceColorSpace("cmyk"_cc);
    context->SetColor(black, 4);
    EXPECT_EQ(Written(), "");
}

TEST_F(OutputContext, ManagedDefaultColourIsTheProfileResource) {
    context->SetDefaultColour("cmyk"_cc, true);
    EXPECT_EQ(Written(),
              " /GCSA4 [/Profile4]def\n"
              " GCSA4 %%set default colour with black color\n setcolorspace\n");
    // Four zeros are white: black has yet to be set.
    const float black[] = {0, 0, 0, 1};
    context->SetColor(black, 4);
    EXPECT_EQ(Written(), "0 0 0 1 setcolor\n");
    context->SetDefaultColour("gray"_cc, true);
    Written();
    context->SetColor(black, 1);
    EXPECT_EQ(Written(), "");
}

TEST_F(OutputContext, RenderingIntentsStartPerceptual) {
    const auto text = [](const std::string& name, const char* end) {
        return "languagelevel 3 ge { /" + name +
               " findcolorrendering {/ColorRendering findresource setcolorrendering} { dup "
               "/DefaultColorRendering eq {pop} {/ColorRendering findresource setcolorrendering} "
               "ifelse } ifelse } if" +
               end;
    };
    context->SetRenderingIntent(TRenderingIntent::kPerceptual);
    context->SetRenderingIntent2(TRenderingIntent::kPerceptual);
    EXPECT_EQ(Written(), "");
    EXPECT_EQ(Once([&] { context->SetRenderingIntent(TRenderingIntent::kRelativeColorimetric); }),
              text("RelativeColorimetric", " \n"));
    EXPECT_EQ(Once([&] { context->SetRenderingIntent2(TRenderingIntent::kAbsoluteColorimetric); }),
              text("AbsoluteColorimetric", "\n"));
    context->SetRenderingIntent(TRenderingIntent::kSaturation);
    context->SetRenderingIntent2(TRenderingIntent::kPerceptual);
    EXPECT_TRUE(RunsClean(Written()));
}

TEST_F(OutputContext, OverprintIsComparedWithWhatWasWrittenLast) {
    const std::string on =
        "true setoverprint systemdict /setoverprintmode known {true setoverprintmode} if \n";
    context->SetOverprint(0, false, true);
    EXPECT_EQ(Written(), "");
    EXPECT_EQ(Once([&] { context->SetOverprint(1, true, true); }), on);
    // The interpreter has one parameter for filling and stroking.
    EXPECT_EQ(Once([&] { context->SetOverprint(0, true, false); }), "false setoverprint\n");
    EXPECT_EQ(Once([&] { context->SetOverprint(1, true, true); }), on);
    EXPECT_EQ(
        Once([&] { context->SetOverprint(1, false, false); }),
        "true setoverprint systemdict /setoverprintmode known {false setoverprintmode} if \n");
}

TEST_F(OutputContext, TranslatesAndScalesByWhatChanges) {
    context->TranslateAndScale(0, 0, 1, 1);
    EXPECT_EQ(page->writes, 0);
    context->TranslateAndScale(10, 0.5F, 2, 1);
    EXPECT_EQ(page->writes, 1);
    EXPECT_EQ(Written(), "\n10 0.5 translate\n\n2 1 scale\n");
}

TEST_F(OutputContext, SelectsPatterns) {
    EXPECT_EQ(Once([&] { context->SetPatternColor("P1.2", nullptr, nullptr); }),
              "\n/P1.2 where  {/P1.2 get /Pattern setcolorspace setcolor} { stopped } ifelse\n");
    const auto rgb = MakeObject<FakeDeviceSpace>("rgb "_cc);
    const float color[] = {0.25F, 1.0F / 3, 1};
    EXPECT_TRUE(context->SetPatternColor("P3.4", rgb.Get(), color));
    EXPECT_EQ(Written(),
              "\n[/Pattern currentcolorspace] setcolorspace\n 0.25 0.333333 1"
              "/P3.4 where  {/P3.4 get setcolor} { stopped } ifelse\n");
    EXPECT_EQ(mirror->top.colorSpaceKey, StandardHashie("P3.4"));
}

TEST_F(OutputContext, PassesFiltersDataAndTextMatricesOn) {
    const float matrix[6] = {1, 2, 3, 4, 5, 6};
    context->PushOutputFilter(5);
    context->WriteStreamData("abc", 3);
    context->FlushStreamData();
    context->SetCurrentTextMatrix(matrix);
    EXPECT_EQ(filters->filters, std::vector{5});
    EXPECT_EQ(filters->filteredWrites, 1);
    EXPECT_EQ(filters->ends, 1);
    EXPECT_EQ(mirror->top.textMatrix[5], 6);
    context->PopOutputFilter();
    EXPECT_TRUE(filters->filters.empty());
    EXPECT_EQ(Written(), "abc");
}

TEST_F(OutputContext, WritesIntoWhatIsBeingRecorded) {
    const auto recording = MakeObject<TEST::MemoryProvider>();
    const auto inner =
        TInterfacePtr<IPostScriptDataStream>::Adopt(CreatePostscriptDataStream(recording.Get()));
    const auto innerFilters = MakeObject<TEST::FakeFilterStack>();
    innerFilters->Attach(recording.Get());
    inner->Aggregate(innerFilters.Get(), IO::IID_IOUTPUTFILTERSTACK);
    streams.Push(inner.Get());
    context->GSave();
    EXPECT_EQ(recording->contents, "gsave\n");
    EXPECT_EQ(Written(), "");
    EXPECT_NE(context->GetBaseDataStream(), inner.Get());
}

TEST_F(OutputContext, DefinesAResourceOnceForASpaceAndAnIntent) {
    FakeProfileSpace space("rgb "_cc, 77);
    space.array = "[/Array]";
    std::string name = "left over";
    context->GetColorSpaceResourceName(&space, TRenderingIntent::kPerceptual, name);
    EXPECT_EQ(name, "GCSA77 ");
    EXPECT_EQ(Written(), " /GCSA77 [/Array]def\n");
    EXPECT_EQ(Once([&] { context->SetColorSpace(&space, TRenderingIntent::kPerceptual); }),
              " GCSA77  setcolorspace\n");
    // Another intent takes over the name, so that the first is defined anew when it comes back.
    EXPECT_EQ(Once([&] { context->SetColorSpace(&space, TRenderingIntent::kSaturation); }),
              " /GCSA77 [/Array]def\n GCSA77  setcolorspace\n");
    EXPECT_EQ(Once([&] { context->SetColorSpace(&space, TRenderingIntent::kPerceptual); }),
              " /GCSA77 [/Array]def\n GCSA77  setcolorspace\n");
    EXPECT_EQ(space.arrayRequests, 3);

    FakeProfileSpace negative("rgb "_cc, 0xFFFFFFFEU);
    negative.array = "[/B]";
    context->GetColorSpaceResourceName(&negative, TRenderingIntent::kPerceptual, name);
    EXPECT_EQ(Written(), " /GCSA-2 [/B]def\n");
    context->WriteColorSpaceResourceName(name, false);
    EXPECT_EQ(Written(), " GCSA-2  ");
}

TEST_F(OutputContext, ResourceThatCannotBeWrittenStaysUndefined) {
    FakeProfileSpace space("rgb "_cc, 5);
    std::string name;
    context->GetColorSpaceResourceName(&space, TRenderingIntent::kPerceptual, name);
    context->SetColorSpace(&space, TRenderingIntent::kPerceptual);
    EXPECT_EQ(name, "");
    EXPECT_EQ(Written(), "");
    space.array = "[/Now]";
    context->SetColorSpace(&space, TRenderingIntent::kPerceptual);
    EXPECT_EQ(Written(), " /GCSA5 [/Now]def\n GCSA5  setcolorspace\n");
}

TEST_F(OutputContext, WritesCalibratedSpaces) {
    FakeCalibratedSpace gray("cgry"_cc, 1);
    gray.white = {0.9F, 1, 0.8F};
    EXPECT_EQ(Once([&] { EXPECT_TRUE(context->SetCalibratedColorSpace(&gray)); }),
              "\n[/CIEBasedA\n<<\n\t/RangeA [0 100]\n\t/DecodeA { 16 add 116 div dup 6 29 div ge "
              "{dup dup mul mul} {4 29 div sub 108 841 div mul} ifelse 1 mul} bind\n"
              "\t/MatrixA [0.89999998 1 0.80000001] \n"
              "\t/RangeLMN [0 0.89999998 0 1 0 0.80000001] \n"
              "\t/WhitePoint [0.89999998 1 0.80000001]\n>>]\nsetcolorspace\n");
    FakeCalibratedSpace lab("clab"_cc, 2);
    const std::string line =
        "\t\t{dup 6 29 div ge {dup dup mul mul} {4 29 div sub 108 841 div mul} ifelse ";
    const std::string labText =
        "[/CIEBasedABC\n<<\n\t/RangeABC [0 100 -128 127 -128 127]\n"
        "\t/DecodeABC[{16 add 116 div}bind {500 div}bind {200 div}bind]\n"
        "\t/MatrixABC [1 1 1 1 0 0 0 0 -1] \n"
        "/RangeLMN [-0.1181 1.254 0.1379 1.0 -0.4971 1.64]\n/DecodeLMN\n\t[\n" +
        line + "0.96420002 mul}bind\n" + line + "1 mul}bind\n" + line +
        "0.82489997 mul}bind\n\t]\n\t/WhitePoint [0.96420002 1 0.82489997]\n>>] ";
    EXPECT_EQ(Once([&] { context->SetCalibratedColorSpace(&lab); }), labText + "setcolorspace\n");
    const float d50[] = {0.9642F, 1, 0.8249F};
    EXPECT_EQ(Once([&] { context->SetLabColorSpace(d50); }), labText + "setcolorspace\n");
    context->SetLabColorSpace(kD65);
    EXPECT_TRUE(RunsClean(Written()));
    context->WriteCalibratedColorSpace(&lab, false);
    EXPECT_EQ(Written(), labText + "\n");
    FakeCalibratedSpace odd("cmyk"_cc, 3);
    context->WriteCalibratedColorSpace(&odd, true);
    EXPECT_TRUE(RecordingLogger::Get().Has("Do not support this colorspace."));
    EXPECT_EQ(Written(), "");
}

TEST_F(OutputContext, WritesCalibratedRGBWithAndWithoutItsMatrix) {
    const auto text = [](const char* gamma, const std::string& rest) {
        const std::string decode =
            std::string("{ dup 0.03928 le {12.92321 div} {0.055 add 1.055 div ") + gamma +
            " exp} ifelse } bind";
        return "\n[/CIEBasedABC\n<<\n\t/DecodeLMN [" + decode + " \n" + decode + " \n" + decode +
               "]\n\t/MatrixLMN [" + rest;
    };
    FakeCalibratedSpace space("crgb"_cc, 1);
    space.white = {0.5F, 1, 0.25F};
    context->SetCalibratedColorSpace(&space);
    const std::string standard = Written();
    EXPECT_EQ(standard,
              text("2.4000001",
                   "0.412457 0.212673 0.019334 0.357576 0.715152 0.119192 0.180437 0.072175 "
                   "0.950301]\n\t/WhitePoint [0.5 1 0.25]\n>>]setcolorspace\n"));
    space.gammas = {2, 2, 2};
    space.matrix = {1, 2, 3, 4, 5, 6, 7, 8, 9};
    context->WriteCalibratedColorSpace(&space, false);
    EXPECT_EQ(Written(), text("2", "1 2 3 4 5 6 7 8 9]\n\t/WhitePoint [0.5 1 0.25]\n>>]\n"));
    EXPECT_TRUE(RunsClean(standard));
}

TEST_F(OutputContext, DefinesDeviceNUnderItsName) {
    const auto space = MakeObject<FakeDeviceNSpace>();
    space->names = {CoreString("Cyan"), CoreString("Gr\u00fcn (matt\\)"), std::nullopt};
    space->alternate = MakeObject<FakeDeviceSpace>("gray"_cc);
    space->tint = MakeObject<FakeCalculator>("{pop pop}", 3, 1, nullptr);
    EXPECT_EQ(Once([&] { context->SetDeviceNColorSpace("DevNCS-1", space.Get(), false); }),
              "\n/DevNCS-1[/DeviceN [(Cyan)(Gr\u00fcn \\(matt\\\\\\))()]/DeviceGray{pop pop}] def\n"
              "DevNCS-1 setcolorspace \n");
    EXPECT_TRUE(
        RecordingLogger::Get().Has("Could not prepare colour name 2 for DeviceN colorspace"));
    context->WriteColorSpaceToPostScript(*space, false);
    EXPECT_EQ(Written(),
              "\n[/DeviceN [(Cyan)(Gr\u00fcn \\(matt\\\\\\))()]/DeviceGray{pop pop}]\n\n");
}

TEST_F(OutputContext, WritesAnySpaceAsAnOperand) {
    const auto written = [&](COLOR::IConnectionColorSpace& space, bool managed) {
        context->WriteColorSpaceToPostScript(space, managed);
        return Written();
    };
    FakeDeviceSpace device("rgb "_cc);
    EXPECT_EQ(written(device, false), "/DeviceRGB\n");
    EXPECT_EQ(written(device, true), "/DeviceRGB\n");  // no profile form
    const auto profile = MakeObject<FakeProfileSpace>("rgb "_cc, 9U);
    profile->array = "[/X]";
    device.profile = profile;
    EXPECT_EQ(written(device, true), " /GCSA9 [/X]def\n GCSA9  ");
    EXPECT_EQ(written(*profile, true), " GCSA9  ");
    EXPECT_EQ(written(*profile, false), "/DeviceRGB\n");
    EXPECT_EQ(written(*Spot(""), false),
              std::string("\n [/Separation (All)/DeviceCMYK") + kSpotTint + "]\n\n");
    FakeCalibratedSpace lab("clab"_cc, 2);
    EXPECT_THAT(written(lab, false), ::testing::StartsWith("[/CIEBasedABC\n"));
    TEST::FakeNoneSpace none;
    EXPECT_EQ(written(none, false), "");
    EXPECT_TRUE(RecordingLogger::Get().Has("Unhandled colorspace."));
    EXPECT_TRUE(context->WriteDeviceColorSpace("gray"_cc, true, true));
    EXPECT_EQ(Written(), " /GCSA1 [/Profile1]def\n GCSA1  setcolorspace\n");
}

TEST(BlendModes, UnknownModeIsNormal) {
    RecordingLogger::Get().Clear();
    EXPECT_STREQ(GetPSBlendModeFromTBlenMode(GRAPHICS::TBlendMode::kColorDodge), "ColorDodge");
    EXPECT_STREQ(GetPSBlendModeFromTBlenMode(GRAPHICS::TBlendMode::kLuminosity), "Luminosity");
    EXPECT_TRUE(RecordingLogger::Get().Entries().empty());
    EXPECT_STREQ(GetPSBlendModeFromTBlenMode(static_cast<GRAPHICS::TBlendMode>(16)), "Normal");
    EXPECT_EQ(RecordingLogger::Get().Messages(), "could not ressolve Blend mode 16\n");
}

}  // namespace
}  // namespace VANTIX::PS
