// SPDX-License-Identifier: MIT
#include <cmath>
#include <limits>
#include <numbers>

#include "gmock/gmock.h"
#include "postscriptconnectionspace/postscriptconnectionspace.h"
#include "support/delegatefixture.h"
#include "support/fakebaseconnectionspace.h"
#include "support/fakedictionary.h"
#include "support/fakefilterstack.h"
#include "support/fakestatestack.h"
#include "support/memoryprovider.h"

namespace VANTIX::TEST {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

/// A delegate that notes what the connection space hands it.
class NotingDelegate : public TObject<RENDERING::IConnectionSpaceDelegate> {
public:
    bool marks = true;
    bool defaultColour = false;
    GRAPHICS::IGraphicsState* state = nullptr;
    std::vector<float> image;
    std::string fills;

    void Init(bool setDefaultColour) override { defaultColour = setDefaultColour; }

    bool SetColorSpace(COLOR::IConnectionColorSpace* /*space*/, bool /*fill*/) override {
        return true;
    }

    void SetColorSpaceAndValues(COLOR::IConnectionColorSpace* /*space*/, const float* /*values*/,
                                std::int32_t /*count*/, bool /*fill*/) override {}

    bool SetUncoloredPattern(const char* name, COLOR::IConnectionColorSpace* /*underlying*/,
                             bool /*fill*/) override {
        fills += std::string("uncoloured ") + name + "\n";
        return true;
    }

    bool SetPatternColorSpace(const char* name) override {
        fills += std::string("coloured ") + name + "\n";
        return true;
    }

    void Image(GRAPHICS::IRasterComponent& /*raster*/, float x, float y, float width,
               float height) override {
        image = {x, y, width, height};
    }

    void FillWithColorSpace(COLOR::IConnectionColorSpace* /*shading*/, ResourceId id, float /*x*/,
                            float /*y*/, float /*width*/, float /*height*/, bool paint) override {
        fills += "shading " + std::to_string(id) + (paint ? " paint\n" : "\n");
    }

    void SetGraphicsState(GRAPHICS::IGraphicsState* newState) override { state = newState; }

    bool CanMarkTheCanvas() const override { return marks; }

    bool WasDefaultColourSet() const override { return defaultColour; }
};

/// Gives the delegate that a test names.
class NotingDelegateFactory : public TObject<RENDERING::IConnectionSpaceDelegateFactory> {
public:
    NotingDelegate* delegate = nullptr;

    RENDERING::IConnectionSpaceDelegate* CreateConnectionSpaceDelegate(
        IClassFactory& /*factory*/, RENDERING::TDelegateType /*type*/,
        const IO::IDictionary* /*options*/) const override {
        if (delegate != nullptr) {
            delegate->AddRef();
        }
        return delegate;
    }
};

class FakeRaster : public TObject<GRAPHICS::IRasterComponent> {
public:
    Status Init(COLOR::IConnectionColorSpace* /*space*/, std::int32_t /*width*/,
                std::int32_t /*height*/, std::int8_t /*bits*/, float /*x*/, float /*y*/,
                std::uint8_t /*settings*/, std::int32_t /*flags*/) override {
        return STATUS::kOk;
    }

    std::int32_t GetWidth() const override { return 1; }

    std::int32_t GetHeight() const override { return 1; }

    std::int32_t GetBitsPerSample() const override { return 8; }

    COLOR::IConnectionColorSpace* GetColorSpace() const override { return nullptr; }

    std::int32_t GetPrimaryCount() const override { return 0; }

    GRAPHICS::IChannelDesc* GetPrimary(std::int32_t /*index*/) const override { return nullptr; }

    std::int32_t GetExtraCount() const override { return 0; }

    GRAPHICS::IChannelDesc* GetExtra(std::int32_t /*index*/) const override { return nullptr; }

    Status AddExtra(GRAPHICS::IChannelDesc* /*channel*/) override { return STATUS::kOk; }

    bool GetChannelMask(std::uint64_t& /*mask*/) const override { return false; }
};

/// A space over real streams, output context and as-is delegate on a page in memory.
class ConnectionSpace : public DelegateFixture {
protected:
    ConnectionSpace() {
        factory->creators[RENDERING::CLSID_CONNECTIONSPACEDELEGATEFACTORY] =
            RENDERING::CreateConnectionSpaceDelegateFactory;
        factory->OfferObject(IO::IID_IOUTPUTFILTERSTACK, filters.Get());
        factory->OfferObject(GRAPHICS::IID_IBASECONNECTIONSPACE, base.Get());
        factory->Offer<FakeStateStack>(GRAPHICS::CLSID_MUTABLEGRAPHICSSTATESTACK);
        base->state = state.Get();
        state->spaceId = "gray"_cc;
        state->space = gray;
    }

    void Start() {
        ASSERT_TRUE(space->Init(page.Get(), factory.Get(), policy.Get()));
        page->Take();
    }

    /// Starts with a delegate that only notes.
    void StartNoting() {
        const auto maker = MakeObject<NotingDelegateFactory>();
        maker->delegate = noting.Get();
        factory->creators[RENDERING::CLSID_CONNECTIONSPACEDELEGATEFACTORY] = [maker]() {
            maker->AddRef();
            return maker.Get();
        };
        Start();
    }

    /// What was written since the last call.
    std::string Written() { return page->Take(); }

    TInterfacePtr<MemoryProvider> page = MakeObject<MemoryProvider>();
    TInterfacePtr<FakeDictionary> policy = MakeObject<FakeDictionary>();
    TInterfacePtr<FakeFilterStack> filters = MakeObject<FakeFilterStack>();
    TInterfacePtr<FakeBaseConnectionSpace> base = MakeObject<FakeBaseConnectionSpace>();
    TInterfacePtr<NotingDelegate> noting = MakeObject<NotingDelegate>();
    TInterfacePtr<PS::PostScriptConnectionSpace> space =
        MakeObject<PS::PostScriptConnectionSpace>();
};

TEST_F(ConnectionSpace, EachOperatorIsOneWrite) {
    Start();
    const auto expect = [this](const char* text, auto draw) {
        draw(*space);
        EXPECT_EQ(page->writes, 1) << text;
        EXPECT_EQ(Written(), text);
    };
    const float line[] = {1, 2, 3.5F, -4, 1e-9F, 1e9F};
    const float lengths[] = {3, 0.5F};
    using Space = PS::PostScriptConnectionSpace;
    expect("gsave\n", [](Space& s) { s.SaveGraphicsState(); });
    expect("grestore\n", [](Space& s) { s.RestoreGraphicsState(); });
    expect("2 0.5 scale\n", [](Space& s) { s.Scale(2, 0.5F); });
    expect("-1 12345.678 translate\n", [](Space& s) { s.Translate(-1, 12345.678F); });
    expect("[1 0 0 1 72 0.1] concat\n", [](Space& s) { s.Concat(1, 0, 0, 1, 72, 0.1F); });
    expect("newpath\n", [](Space& s) { s.NewPath(); });
    expect("1 2 moveto\n", [](Space& s) { s.MoveTo(1, 2); });
    expect("0.5 -2 rmoveto\n", [](Space& s) { s.RelativeMoveTo(0.5F, -2); });
    expect("1 2 lineto\n3.5 -4 lineto\n9.9999997e-10 1e+09 lineto\n",
           [&](Space& s) { s.LineTo(line, 3); });
    expect("1 2 3.5 -4 9.9999997e-10 1e+09 curveto\n", [&](Space& s) { s.CurveTo(line, 1); });
    expect("0 0 10 270 360 arc\n", [](Space& s) { s.Arc(0, 0, 10, 0, 90); });
    expect("1 2 3 4 5 arcto 4 {pop} repeat\n", [](Space& s) { s.ArcTo(1, 2, 3, 4, 5); });
    expect("closepath\n", [](Space& s) { s.ClosePath(); });
    expect("newpath\n", [](Space& s) { s.ResetPath(); });
    expect("clip\n", [](Space& s) { s.Clip(); });
    expect("eoclip\n", [](Space& s) { s.EOClip(); });
    expect("0.25 setlinewidth\n", [](Space& s) { s.SetLineWidth(0.25F); });
    expect("2 setlinecap\n", [](Space& s) { s.SetLineCap(2); });
    expect("-1 setlinejoin\n", [](Space& s) { s.SetLineJoin(-1); });
    expect("[3 0.5 ] 1 setdash\n", [&](Space& s) { s.SetDash(1, lengths, 2); });
    expect("[] 0 setdash\n", [](Space& s) { s.SetDash(0, nullptr, 0); });
    expect("10 setmiterlimit\n", [](Space& s) { s.SetMiterLimit(10); });
    expect("1 setflat\n", [](Space& s) { s.SetFlatness(1); });
    expect("true setoverprint\n", [](Space& s) { s.SetOverprintState(true); });
    expect(
        "userdict dup /initialPageMatrix known {dup /initialPageMatrix exch 1 index get "
        "currentmatrix put} {/initialPageMatrix matrix currentmatrix put} ifelse\n",
        [](Space& s) { s.SaveInitialPageMatrix(); });
    expect("raw", [](Space& s) { s.WriteRawData("raw", 3); });
    space->Rotate(std::numbers::pi_v<float> / 2);
    EXPECT_THAT(Written(),
                ::testing::MatchesRegex("\\[-?[0-9.]+e-0[89] -1 1 .*e-0[89] 0 0\\] concat\n"));
}

TEST_F(ConnectionSpace, LongPathsAndDashesLoseNothing) {
    Start();
    std::vector<float> points(3000, 123.45678F);
    space->CurveTo(points.data(), 500);
    std::string curves;
    for (int i = 0; i < 500; ++i) {
        curves += "123.45678 123.45678 123.45678 123.45678 123.45678 123.45678 curveto\n";
    }
    EXPECT_EQ(Written(), curves);
    space->SetDash(-1, points.data(), 500);
    const std::string dash = Written();
    EXPECT_EQ(std::count(dash.begin(), dash.end(), ' '), 502);
    EXPECT_EQ(dash.substr(dash.size() - 13), "] -1 setdash\n");
}

TEST_F(ConnectionSpace, NothingIsReadFromEmptyOrMissingArrays) {
    Start();
    const float point[] = {1, 2};
    space->LineTo(point, 0);
    space->LineTo(point, -1);
    space->LineTo(nullptr, 3);
    space->CurveTo(nullptr, 1);
    space->QuadCurveTo(nullptr, 1);
    space->QuadCurveTo(point, -1);
    space->WriteRawData(nullptr, 5);
    EXPECT_EQ(Written(), "");
    space->SetDash(0, nullptr, 5);
    EXPECT_EQ(Written(), "[] 0 setdash\n");
}

TEST_F(ConnectionSpace, NumbersThatAreNoneBecomeZero) {
    Start();
    space->MoveTo(std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity());
    EXPECT_EQ(Written(), "0 0 moveto\n");
}

TEST_F(ConnectionSpace, QuadraticCurvesStartFromWhereTheLastOperatorEnded) {
    Start();
    const auto quadFrom = [this](auto draw) {
        draw(*space);
        Written();
        const float quad[] = {3, 3, 6, 0};
        space->QuadCurveTo(quad, 1);
        return Written();
    };
    using Space = PS::PostScriptConnectionSpace;
    EXPECT_EQ(quadFrom([](Space& s) { s.MoveTo(0, 0); }), "2 2 4 2 6 0 curveto\n");
    // The last curve ended in (6, 0).
    EXPECT_EQ(quadFrom([](Space& /*s*/) {}), "4 2 4 2 6 0 curveto\n");
    EXPECT_EQ(quadFrom([](Space& s) { s.RelativeMoveTo(-6, 9); }), "2 5 4 2 6 0 curveto\n");
    // An arc drawn clockwise from 90 degrees ends at its first angle.
    EXPECT_THAT(quadFrom([](Space& s) { s.Arc(0, 0, 9, 0, 90); }), StartsWith("5 2"));
    // The corner of the axes, rounded by 3: the arc ends 3 from the corner.
    EXPECT_EQ(quadFrom([](Space& s) {
                  s.MoveTo(0, 9);
                  s.ArcTo(0, 0, 9, 0, 3);
              }),
              "3 2 4 2 6 0 curveto\n");
    // No corner: the operator draws a line to its first point.
    EXPECT_EQ(quadFrom([](Space& s) {
                  s.MoveTo(0, 9);
                  s.ArcTo(0, 6, 0, 0, 3);
              }),
              "2 4 4 2 6 0 curveto\n");
}

TEST_F(ConnectionSpace, PaintingKeepsThePathAndWritesTheColourOnce) {
    Start();
    state->color = {0.5F};
    space->Fill();
    space->Stroke();
    space->EOFill();
    EXPECT_EQ(Written(),
              "/DeviceGray setcolorspace\n0.5 setcolor\ngsave fill grestore\n"
              "gsave stroke grestore\ngsave eofill grestore\n");
    state->strokeOverprint = true;
    state->overprintMode = 1;
    space->Stroke();
    EXPECT_EQ(Written(),
              "true setoverprint systemdict /setoverprintmode known {true setoverprintmode} if \n"
              "gsave stroke grestore\n");
}

TEST_F(ConnectionSpace, ColourComesFromTheHostsTableElseFromADeviceSpace) {
    Start();
    base->spaces[77] = MakeObject<FakeCalibratedSpace>("crgb"_cc);
    state->spaceId = 77;
    state->space = base->spaces[77];
    state->color = {1, 0, 0};
    space->Fill();
    EXPECT_THAT(Written(), HasSubstr("/CIEBasedABC"));
    state->spaceId = "cmyk"_cc;
    state->space = cmyk;
    state->color = {1, 1, 1, 0};
    space->Fill();
    EXPECT_EQ(Written(), "/DeviceCMYK setcolorspace\n0 0 0 1 setcolor\ngsave fill grestore\n");
    state->spaceId = 78;
    space->Fill();
    EXPECT_EQ(Written(), "gsave fill grestore\n");
}

TEST_F(ConnectionSpace, AColourThatIsSetAlreadyNeedsNoColourSpaceFactory) {
    Start();
    base->spaces["gray"_cc] = gray;
    space->Fill();
    factory->asked.clear();
    space->Fill();
    EXPECT_TRUE(factory->asked.empty());
}

TEST_F(ConnectionSpace, WithoutDefaultColourPaintingLeavesTheColourAlone) {
    policy->SetBool(106, false);
    ASSERT_TRUE(space->Init(page.Get(), factory.Get(), policy.Get()));
    EXPECT_EQ(Written(), "");
    space->Fill();
    EXPECT_EQ(Written(), "gsave fill grestore\n");
}

TEST_F(ConnectionSpace, TextColourFollowsTheRenderingMode) {
    Start();
    using Mode = GRAPHICS::IGraphicsState::TTextRendering;
    space->SetTextRenderingColor(Mode::kInvisible);
    EXPECT_EQ(Written(), "");
    state->color = {0.5F};
    space->SetTextRenderingColor(Mode::kFillStroke);
    EXPECT_EQ(Written(), "/DeviceGray setcolorspace\n0.5 setcolor\n");
    state->color = {0.25F};
    space->SetTextRenderingColor(Mode::kStroke);
    EXPECT_EQ(Written(), "0.25 setcolor\n");
}

TEST_F(ConnectionSpace, DelegateThatMayNotMarkWritesNothingAtAll) {
    StartNoting();
    noting->marks = false;
    space->Fill();
    space->Stroke();
    EXPECT_EQ(Written(), "");
}

TEST_F(ConnectionSpace, GraphicsStateReachesTheDelegate) {
    StartNoting();
    EXPECT_EQ(noting->state, state.Get());
    EXPECT_TRUE(noting->defaultColour);
    space->SetGraphicsState(nullptr);
    EXPECT_EQ(noting->state, nullptr);
    space->Fill();  // no state, no colour
    EXPECT_EQ(Written(), "gsave fill grestore\n");
}

TEST_F(ConnectionSpace, ImageIsPlacedInItsNormalisedRectangle) {
    policy->SetBool(113, true);
    StartNoting();
    FakeRaster raster;
    space->DrawImage(&raster, 10, 100, 30, -50);
    EXPECT_EQ(noting->image, (std::vector<float>{10, 50, 30, 50}));
    EXPECT_EQ(Written(),
              "%%START OF THE IMAGE DRAW FUNCTION\ngsave\n1 -1 scale\n0 -50 translate\n"
              "\n10 50 translate\n\n30 50 scale\n\ngrestore\n"
              "\n%%END OF THE IMAGE DRAW FUNCTION\n");
    space->DrawImage(nullptr, 0, 0, 1, 1);
    EXPECT_EQ(Written(), "");
}

TEST_F(ConnectionSpace, ShadingFillSetsOverprintAndGoesToTheDelegate) {
    StartNoting();
    state->fillOverprint = true;
    space->FillWithColorSpace(rgb.Get(), 9, 0, 0, 1, 1);
    EXPECT_EQ(noting->fills, "shading 9 paint\n");
    EXPECT_THAT(Written(), StartsWith("true setoverprint"));
}

TEST_F(ConnectionSpace, PatternsAreSelectedByTheirResourceName) {
    StartNoting();
    const auto tile = MakeObject<FakeTilePattern>();
    base->spaces[5] = tile;
    base->spaces[6] = MakeObject<FakeShadingPattern>();
    space->AddPostScriptColorSpaceResource(5, "P1.5");
    space->AddPostScriptColorSpaceResource(6, "P2.6");
    space->AddPostScriptColorSpaceResource(6, "P3.6");
    EXPECT_STREQ(space->GetPostScriptResourceName(6), "P2.6");
    EXPECT_EQ(space->GetPostScriptResourceName(7), nullptr);
    EXPECT_EQ(log.Messages(),
              "PostScript resource already exist, May you are building the same resource multiple "
              "times.!!!\n");
    EXPECT_EQ(log.Entries().front().type, LogType::kNotice);
    for (const ResourceId id : {5U, 6U}) {
        state->spaceId = id;
        space->Fill();
    }
    tile->paintType = 2;
    state->spaceId = 5;
    space->Fill();  // without an underlying space nothing is selected
    tile->underlying = gray;
    space->Fill();
    EXPECT_EQ(noting->fills, "coloured P1.5\ncoloured P2.6\nuncoloured P1.5\n");
}

TEST_F(ConnectionSpace, PatternsThatAreNotDefinedAreReported) {
    Start();
    const auto tile = MakeObject<FakeTilePattern>();
    base->spaces[5] = tile;
    state->spaceId = 5;
    space->AddColorSpace(nullptr, 1);
    space->AddColorSpace(rgb.Get(), 2);
    space->AddColorSpace(tile.Get(), 5);
    space->AddColorSpace(MakeObject<FakeShadingPattern>().Get(), 6);
    space->Fill();
    EXPECT_EQ(log.Messages(),
              "cannot add a NULL colorspace.\n"
              "Do not find any PaintProc for the Pattern.\n"
              "Unable to craete the Tile Pattern Dictionary.\n"
              "Unable to craete the Shading Pattern Dictionary (Type 2 Pattern Resource).!!!\n"
              "Do not find any PaintProc for the Pattern.\n"
              "Unable to create the Tile Pattern Dictionary.\n"
              "Either No Pattern Resource or failed to craete the pattern resource.\n");
}

TEST_F(ConnectionSpace, InitRefusesMissingStreamAndFactory) {
    EXPECT_FALSE(space->Init(nullptr, factory.Get(), policy.Get()));
    EXPECT_FALSE(space->Init(page.Get(), nullptr, policy.Get()));
    EXPECT_EQ(log.Messages(),
              "Cannot accept a NULL data provider.\nCannot accept a NULL factory.\n");
    // Drawing into a space that was never set up is harmless.
    space->MoveTo(1, 2);
    space->SaveGraphicsState();
    space->Fill();
    space->SaveInitialPageMatrix();
    space->FlushContextStreamData();
    EXPECT_EQ(Written(), "");
}

TEST_F(ConnectionSpace, InitWritesTheDefaultColourAndFindsItsParts) {
    ASSERT_TRUE(space->Init(page.Get(), factory.Get(), policy.Get()));
    EXPECT_EQ(Written(), "/DeviceRGB setcolorspace %set default colour to RGB black\n");
    EXPECT_EQ(log.Messages(), "");
    const auto find = [this](const GUID& id) { return FindInterface<IObject>(space.Get(), id); };
    EXPECT_EQ(find(GRAPHICS::CLSID_POSTSCRIPTCONNECTIONSPACE), space.Get());
    EXPECT_EQ(find(GRAPHICS::IID_IBASECONNECTIONSPACE), base.Get());
    EXPECT_EQ(find(IO::IID_IDATAPROVIDER), page.Get());
    EXPECT_EQ(find(IID_CLASSFACTORY), factory.Get());
    EXPECT_NE(find(RENDERING::IID_ICONNECTIONSPACEDELEGATE), nullptr);
    IObject* copy = find(IO::IID_IPOSTSCRIPTPOLICYDICT);
    EXPECT_TRUE(copy != nullptr && copy != policy.Get());
    // What the host hangs on its base space is visible from here, but not the other way round.
    base->Aggregate(rgb.Get(), COLOR::IID_IDEVICECOLORSPACE);
    EXPECT_EQ(find(COLOR::IID_IDEVICECOLORSPACE), rgb.Get());
    EXPECT_EQ(find(COLOR::IID_IAXIALSHADING), nullptr);
    EXPECT_EQ(FindInterface<IObject>(base.Get(), IO::IID_IDATAPROVIDER), nullptr);
}

TEST_F(ConnectionSpace, PolicyIsReadWithItsDefaults) {
    policy->SetInt(103, 1);
    policy->SetByte(112, 7);
    Start();
    EXPECT_EQ(log.Messages(), "I don't know level 1 PostScript.\n");
    EXPECT_EQ(log.Entries().front().type, LogType::kNotice);
    EXPECT_EQ(log.Entries().front().level, LogLevel::kNormal);
    EXPECT_EQ(space->GetPolicy().languageLevel, 3);
    EXPECT_EQ(space->GetPolicy().tilingFlag, 7);
    EXPECT_TRUE(space->GetPolicy().trueTypeDownload);

    const auto second = MakeObject<PS::PostScriptConnectionSpace>();
    policy->SetInt(103, 2);
    ASSERT_TRUE(second->Init(page.Get(), factory.Get(), policy.Get()));
    EXPECT_EQ(second->GetPolicy().languageLevel, 2);
    EXPECT_FALSE(second->GetPolicy().trueTypeDownload);
}

struct FilterChoice {
    const char* name;
    std::vector<std::int32_t> asked;
    bool onlyAscii85;
    std::vector<std::int32_t> pushed;
};

class OutputFilters : public ConnectionSpace, public ::testing::WithParamInterface<FilterChoice> {};

TEST_P(OutputFilters, ArePushedInTheOrderOfTheirCodes) {
    for (const std::int32_t code : GetParam().asked) {
        policy->SetBool(code, true);
    }
    policy->SetBool(109, GetParam().onlyAscii85);
    Start();
    EXPECT_EQ(filters->filters, GetParam().pushed);
}

INSTANTIATE_TEST_SUITE_P(Choices, OutputFilters,
                         ::testing::Values(FilterChoice{"All", {3, 4, 5}, false, {5, 4, 3}},
                                           FilterChoice{"Binary", {4}, false, {4}},
                                           FilterChoice{"None", {}, false, {5}},
                                           FilterChoice{"OnlyAscii85", {3, 4, 5}, true, {5}}),
                         [](const auto& tested) { return std::string(tested.param.name); });

TEST_F(ConnectionSpace, WithoutPolicyNoFilterIsPushed) {
    policy = nullptr;
    Start();
    EXPECT_TRUE(filters->filters.empty());
}

struct Missing {
    const char* name;
    GUID what;
    const char* message;
};

class MissingService : public ConnectionSpace, public ::testing::WithParamInterface<Missing> {};

TEST_P(MissingService, IsReportedAndPathsGoOn) {
    factory->creators.erase(GetParam().what);
    Start();
    EXPECT_THAT(log.Messages(), HasSubstr(GetParam().message));
    FakeRaster raster;
    space->SaveGraphicsState();
    space->SelectRenderingIntent(COLOR::TRenderingIntent::kSaturation);
    space->SelectRenderingIntent2(COLOR::TRenderingIntent::kSaturation);
    space->WriteContextStreamData("data", 4);
    space->FlushContextStreamData();
    space->FillWithColorSpace(MakeObject<FakeAxialShading>().Get(), 1, 0, 0, 1, 1);
    space->DrawImage(&raster, 0, 0, 1, 1);
    space->RestoreGraphicsState();
    EXPECT_EQ(Written(), "");
    space->MoveTo(1, 2);
    space->Fill();
    EXPECT_EQ(Written(), "1 2 moveto\ngsave fill grestore\n");
}

INSTANTIATE_TEST_SUITE_P(
    Services, MissingService,
    ::testing::Values(Missing{"DelegateFactory", RENDERING::CLSID_CONNECTIONSPACEDELEGATEFACTORY,
                              "Failed to create IConnectionSpaceDelegate\n"},
                      Missing{"ColorSpaceFactory", COLOR::IID_ICONNECTIONCOLORSPACEFACTORY,
                              "Failed to create default ConnectionSpace Delegate\n"},
                      Missing{"FilterStack", IO::IID_IOUTPUTFILTERSTACK,
                              "Failed to create IID_IOUTPUTFILTERSTACK\n"},
                      Missing{
                          "StateStack", GRAPHICS::CLSID_MUTABLEGRAPHICSSTATESTACK,
                          "Could not create a mutable graphics state stack from the registry.\n"}),
    [](const auto& tested) { return std::string(tested.param.name); });

TEST_F(ConnectionSpace, WithoutDelegateFillsAndImagesAreReported) {
    factory->creators.erase(RENDERING::CLSID_CONNECTIONSPACEDELEGATEFACTORY);
    Start();
    log.Clear();
    FakeRaster raster;
    base->spaces[5] = MakeObject<FakeTilePattern>();
    state->spaceId = 5;
    space->FillWithColorSpace(rgb.Get(), 1, 0, 0, 1, 1);
    space->DrawImage(&raster, 0, 0, 1, 1);
    space->Fill();
    space->PlayTo(*base);
    EXPECT_EQ(log.Messages(),
              "No delegate.\nNo delegate around to handle image\n"
              "No Connection Space Delegate installed\nUnimplemented\n");
    EXPECT_EQ(log.Entries().front().file, "src/postscriptconnectionspace");
}

TEST_F(ConnectionSpace, PdfmarkTransparencyIsWrittenInFrontOfWhatTheDelegateWrites) {
    policy->SetBool(101, true);
    StartNoting();
    Written();
    state->fillAlpha = 0.5F;
    state->spaceId = "rgb "_cc;
    state->space = rgb;
    space->FillWithColorSpace(rgb.Get(), 1, 0, 0, 1, 1);
    const std::string text = Written();
    EXPECT_THAT(text, HasSubstr("[/ca 0.5 /CA 1 "));
    EXPECT_EQ(noting->fills, "shading 1 paint\n");
    EXPECT_EQ(noting->state, state.Get());
    EXPECT_EQ(log.Messages(), "");
}

TEST_F(ConnectionSpace, InitFailsWithoutABaseSpaceThatAttaches) {
    base->attaches = false;
    EXPECT_FALSE(space->Init(page.Get(), factory.Get(), nullptr));
    EXPECT_EQ(log.Messages(), "Failed to get IID_IBASECONNECTIONSPACE.\n");
    log.Clear();
    factory->creators.erase(GRAPHICS::IID_IBASECONNECTIONSPACE);
    EXPECT_FALSE(space->Init(page.Get(), factory.Get(), nullptr));
    EXPECT_EQ(log.Messages(),
              "Could not create an instance of IID_IBASECONNECTIONSPACE\n"
              "Failed to bless the delegate connection space.\n");
}

TEST_F(ConnectionSpace, DestructionTakesTheJobsNamesOutOfTheSpacesItUsed) {
    Start();
    const auto kept = MakeObject<FakeKeyedProperties>();
    const auto hang = [&](ResourceId id, TInterfacePtr<COLOR::IConnectionColorSpace> used) {
        used->Aggregate(kept.Get(), IO::IID_IDICTIONARY);
        base->spaces[id] = std::move(used);
    };
    hang(1, MakeObject<FakeSeparationSpace>("Orange", rgb, nullptr));
    hang(2, MakeObject<FakeDeviceNSpace>());
    hang(3, MakeObject<FakeTilePattern>());
    hang(4, rgb);
    hang(5, MakeObject<FakeSeparationSpace>("Unused", rgb, nullptr));
    for (const ResourceId id : {1U, 2U, 3U, 4U, 99U}) {
        space->RegisterColorSpaceUse(id);
    }
    space->RegisterColorSpaceUse(1, true);
    space = MakeObject<PS::PostScriptConnectionSpace>();
    std::string left;
    for (const auto& [id, used] : base->spaces) {
        if (FindInterface<IObject>(used.Get(), IO::IID_IDICTIONARY) != nullptr) {
            left += std::to_string(id) + " ";
        }
    }
    EXPECT_EQ(left, "4 5 ");
}

TEST_F(ConnectionSpace, DestructionReleasesEverything) {
    Start();
    state->space = MakeObject<FakeSeparationSpace>("Orange", gray, nullptr);
    state->spaceId = 11;
    base->spaces[11] = state->space;
    space->Fill();
    space = MakeObject<PS::PostScriptConnectionSpace>();
    base->spaces.clear();
    const auto references = [](IObject* object) {
        object->AddRef();
        return object->Release();
    };
    EXPECT_EQ(references(page.Get()), 2U);  // the test's filter stack is attached to it
    EXPECT_EQ(references(filters.Get()), 1U);
    EXPECT_EQ(references(base.Get()), 1U);
    EXPECT_EQ(references(factory.Get()), 1U);
    EXPECT_EQ(references(state->space.Get()), 1U);
}

}  // namespace
}  // namespace VANTIX::TEST
