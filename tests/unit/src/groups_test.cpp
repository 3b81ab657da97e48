// SPDX-License-Identifier: MIT
#include <array>
#include <chrono>
#include <regex>

#include "connectionspacedelegatefactory.h"
#include "pagefixture.h"
#include "postscriptconnectionspace/softmaskgroup.h"
#include "postscriptconnectionspace/transparencygroup.h"

namespace VANTIX::TEST {
namespace {

using MaskType = GRAPHICS::IGraphicsState::TSoftMaskType;

constexpr const char* kSetPageMatrix =
    "/initialPageMatrix where {dup /initialPageMatrix get /savedInitialPageMatrix exch put} if\n"
    "/initialPageMatrix where {/initialPageMatrix matrix currentmatrix put} "
    "{userdict /initialPageMatrix matrix currentmatrix put} ifelse\n";
constexpr const char* kResetPageMatrix =
    "/savedInitialPageMatrix where {/savedInitialPageMatrix get /initialPageMatrix where "
    "{exch /initialPageMatrix exch put} {pop} ifelse } if\n";
constexpr const char* kCmykBlack = "/DeviceCMYK setcolorspace %set default colour to CMYK black\n";

class Holder : public TObject<IObject> {};

class Providers : public TObject<IO::IPacketDataProviderFactory> {
public:
    int left = 1 << 30;

    IO::IPacketDataProvider* CreatePacketDataProvider(IClassFactory* /*factory*/) override {
        return left-- > 0 ? new MemoryProvider : nullptr;
    }
};

class Groups : public PageFixture {
protected:
    Groups() {
        factory->Offer<RENDERING::ConnectionSpaceDelegateFactory>(
            RENDERING::CLSID_CONNECTIONSPACEDELEGATEFACTORY);
        factory->Offer<FakeFilterStack>(IO::IID_IOUTPUTFILTERSTACK);
        factory->OfferObject(IO::CLSID_PACKETDATAPROVIDERFACTORY, providers.Get());
        tile->cell = cell;
    }

    void Start(bool pdfmarks = true) {
        policy->SetBool(101, pdfmarks);
        PageFixture::Start();
        page->Take();
        log.Clear();
    }

    void Begin(bool isolated = false, COLOR::IConnectionColorSpace* group = nullptr) {
        const float box[] = {0, 0, 10, 20};
        EXPECT_TRUE(space->BeginTransparencyGroup(box, nullptr, isolated, false, group));
    }

    void BeginMask(MaskType type = MaskType::kAlpha) {
        EXPECT_TRUE(space->BeginSoftMask(nullptr, nullptr, 0, 0, 10, 20, rgb.Get(), nullptr, 0,
                                         true, false, type));
    }

    /// What was written, with numbers for the names of forms.
    std::string Written() {
        static const std::regex kName("(TRGForm|SoftMask|MaskedForm)[0-9a-f]+(-[0-9a-f]+){10}");
        std::string text = page->Take();
        std::vector<std::string> names;
        std::smatch found;
        while (std::regex_search(text, found, kName)) {
            const std::string name = found[0];
            const std::string kind = found[1];
            names.push_back(name);
            const std::string number = kind + '#' + std::to_string(names.size());
            for (std::size_t at = 0; (at = text.find(name, at)) != std::string::npos;) {
                text.replace(at, name.size(), number);
            }
        }
        return text;
    }

    /// Whether an interpreter that knows pdfmark executes the text and leaves no operands.
    static std::string Complaint(const std::string& text) {
        return RunPostScript("/pdfmark where {pop} {userdict /pdfmark {cleartomark} put} ifelse\n" +
                             text)
            .complaint;
    }

    TInterfacePtr<Providers> providers = MakeObject<Providers>();
};

TEST_F(Groups, AnInnerGroupIsDefinedBeforeTheOneThatDrawsIt) {
    Start();
    front->own->fillAlpha = 0.5F;
    front->own->blendMode = GRAPHICS::TBlendMode::kMultiply;
    const float box[] = {0, 0, 10, 20};
    const float matrix[] = {2, 0, 0, 2, 5, 5};
    space->BeginTransparencyGroup(box, matrix, true, false, rgb.Get());
    space->BeginTransparencyGroup(box, nullptr, false, true, gray.Get());
    space->SetLineWidth(3);
    space->EndTransparencyGroup();
    EXPECT_EQ(space->mGroupDepth, 1);
    space->EndTransparencyGroup();
    EXPECT_EQ(space->mGroupDepth, 0);
    const std::string text = Written();
    EXPECT_EQ(text,
              std::string(kSetPageMatrix) +
                  "\n%Define the transparency group\n[/_objdef {TRGForm#1} /BBox [0 0 10 20]\n"
                  "/Group <</S /Transparency /K true /I false>> /BP pdfmark\ngsave\ninitclip\n" +
                  kCmykBlack +
                  "3 setlinewidth\n"
                  "\ngrestore\n[/EP pdfmark\n%%Close the transparency group\n" +
                  kResetPageMatrix + kSetPageMatrix +
                  "\n%Define the transparency group\n[/_objdef {TRGForm#2} /BBox [0 0 10 20]\n"
                  "/Group <</CS /DeviceRGB /S /Transparency /K false /I true>> /BP pdfmark\n"
                  "gsave\ninitclip\n"
                  "/DeviceRGB setcolorspace %set default colour to RGB black\n"
                  "%%Draw the transparency group\ngsave\n"
                  "[/ca 0.5 /CA 1 /BM /Multiply /SetTransparency pdfmark\n"
                  "[{TRGForm#1} /SP pdfmark\ngrestore\n"
                  "\ngrestore\n[/EP pdfmark\n%%Close the transparency group\n" +
                  kResetPageMatrix +
                  "%%Draw the transparency group\ngsave\n[2 0 0 2 5 5] concat\n"
                  "[/ca 0.5 /CA 1 /BM /Multiply /SetTransparency pdfmark\n"
                  "[{TRGForm#2} /SP pdfmark\ngrestore\n");
    EXPECT_EQ(Complaint(text), "");
    EXPECT_EQ(log.Messages(), "");
}

TEST_F(Groups, AGroupNamesNoBlendingSpaceThatThereIsNot) {
    struct Case {
        TInterfacePtr<COLOR::IConnectionColorSpace> group;
        const char* text;
    };

    const auto two = MakeObject<FakeCalibratedSpace>("crgb"_cc, 9U);
    two->components = 2;
    const Case cases[] = {{gray, "<</CS /DeviceGray /S"},
                          {MakeObject<FakeProfileSpace>("cmyk"_cc, 5U), "<</CS /DeviceCMYK /S"},
                          {MakeObject<FakeCalibratedSpace>("crgb"_cc, 6U), "<</CS /DeviceRGB /S"},
                          {two, "<</S"},
                          {MakeObject<FakeDeviceSpace>("clab"_cc, 7U), "<</S"},
                          {nullptr, "<</S"}};
    Start();
    for (const Case& each : cases) {
        Begin(false, each.group.Get());
        space->EndTransparencyGroup();
        EXPECT_THAT(Written(), HasSubstr(each.text));
    }
    EXPECT_THAT(log.Messages(), HasSubstr("Don't know the color space with channel count = 2"));
    EXPECT_THAT(log.Messages(), HasSubstr("Don't know the color key 1668047202"));
}

TEST_F(Groups, WhatASoftMaskAppliesToEndsWhenTheHostLetsGo) {
    Start();
    front->own->softMaskHolder = MakeObject<Holder>();
    const RENDERING::IConnectionSpaceDelegate* outside = space->Delegate();
    BeginMask(MaskType::kLuminosity);
    EXPECT_NE(space->Delegate(), outside);
    space->SetLineWidth(1);
    space->EndSoftMask();
    EXPECT_EQ(space->Delegate(), outside);
    EXPECT_EQ(space->mGroupDepth, 0);
    EXPECT_THAT(Written(),
                HasSubstr("/Group <</CS /DeviceRGB /S /Transparency /K false /I true>> /BP"));
    space->SetLineWidth(2);
    Begin();
    space->EndTransparencyGroup();
    front->own->softMaskHolder = nullptr;
    space->SetLineWidth(4);
    const std::string text = Written();
    EXPECT_THAT(text, HasSubstr(std::string("/BP pdfmark\ngsave\ninitclip\ngsave\n") + kCmykBlack +
                                "2 setlinewidth\n"));
    // The group within is masked as a whole.
    EXPECT_EQ(Count(text, "%%SET THE EXT_GSTATE\n"), 1U);
    EXPECT_THAT(text, HasSubstr("/SMask <</S /Luminosity /G {SoftMask#"));
    EXPECT_THAT(text, HasSubstr("grestore\ngrestore\n[/EP pdfmark\n%%Close the form\n"));
    EXPECT_THAT(text, HasSubstr("%%Draw the form\ngsave\n[{MaskedForm#2} /SP pdfmark\ngrestore\n"
                                "4 setlinewidth\n"));
    EXPECT_EQ(Complaint(text), "");
    EXPECT_EQ(mirror->saved.size(), 0U);
}

TEST_F(Groups, WithoutAHolderAMaskAppliesToNothing) {
    Start();
    BeginMask();
    space->EndSoftMask();
    const std::string text = Written();
    EXPECT_EQ(Count(text, "[/EP pdfmark"), 2U);
    EXPECT_EQ(Count(text, "gsave\n"), 2 * Count(text, "grestore\n") - Count(text, "gsave\n"));
}

TEST_F(Groups, AMessengerThatOutlivesTheJobDoesNothing) {
    for (const bool ends : {true, false}) {
        space = MakeObject<OpenSpace>();
        Start();
        const auto state = front->own;
        state->softMaskHolder = MakeObject<Holder>();
        BeginMask();
        space->EndSoftMask();
        if (ends) {
            space->CloseGroups();
            EXPECT_EQ(Count(Written(), "/EP pdfmark"), 2U);
        } else {
            space->ForgetSoftMasks();
            space = nullptr;
        }
        page->Take();
        state->softMaskHolder = nullptr;
        EXPECT_EQ(Written(), "");
    }
}

TEST_F(Groups, AMaskKeepsTheJobAliveUntilItEnds) {
    Start();
    front->own->softMaskHolder = MakeObject<Holder>();
    BeginMask();
    space->EndSoftMask();
    const auto references = [&] {
        space->AddRef();
        return space->Release();
    };
    EXPECT_EQ(references(), 2U);
    front->own->softMaskHolder = nullptr;
    EXPECT_EQ(references(), 1U);
}

TEST_F(Groups, AMaskSaysBackdropAndTransferAsPostScriptHasThem) {
    const auto cmyk = MakeObject<FakeDeviceSpace>("cmyk"_cc);
    const auto invert = Inverse();
    const auto pair =
        MakeObject<FakeExponential>(2, std::vector<float>{}, std::vector<float>{}, 1.0F);
    const PS::FormObject group("G", nullptr, PS::FormObject::kIdentity, {});
    const std::array<float, 20> backdrop{0.25F, 1};

    struct Case {
        MaskType type;
        const COLOR::IColorFunction* transfer;
        const COLOR::IConnectionColorSpace* colours;
        const float* backdrop;
        std::uint64_t count;
        const char* part;
        const char* message;
    };

    const Case cases[] = {
        {MaskType::kLuminosity, nullptr, cmyk.Get(), backdrop.data(), 2, "/BC [ 0.75 0 ]  >>", ""},
        {MaskType::kLuminosity, nullptr, gray.Get(), backdrop.data(), 1, "/BC [ 0.25 ]  >>", ""},
        {MaskType::kLuminosity, nullptr, rgb.Get(), nullptr, 0, "/BC [ 0 0 0 ]  >>", ""},
        {MaskType::kLuminosity, nullptr, gray.Get(), backdrop.data(), 20, "] ",
         "truncated from 20 to 16"},
        {MaskType::kLuminosity, nullptr, nullptr, nullptr, 0, "}  >>",
         "Failed to get default color space of SoftMask!"},
        {MaskType::kAlpha, nullptr, cmyk.Get(), backdrop.data(), 4, "}  >> /SetT", ""},
        {MaskType::kAlpha, invert.Get(), cmyk.Get(), nullptr, 0, "/TR {", ""},
        {MaskType::kAlpha, pair.Get(), cmyk.Get(), nullptr, 0, "}  >> /SetT", "not one of one"},
    };
    for (const Case& each : cases) {
        log.Clear();
        const PS::SoftMaskGroup mask(group, each.transfer, each.colours, each.backdrop, each.count,
                                     each.type);
        const auto stream = TInterfacePtr<PS::IPostScriptDataStream>::Adopt(
            PS::CreatePostscriptDataStream(page.Get()));
        mask.WriteExtGState(*stream);
        EXPECT_EQ(page->writes, 2);
        const std::string text = page->Take();
        EXPECT_THAT(text, HasSubstr(each.part));
        EXPECT_THAT(text, HasSubstr(each.type == MaskType::kAlpha ? "<</S /Alpha /G {G"
                                                                  : "<</S /Luminosity /G {G"));
        EXPECT_EQ(Count(text, "/TR {"), each.transfer == invert.Get() ? 1U : 0U);
        EXPECT_EQ(Complaint(text), "") << text;
        EXPECT_THAT(log.Messages(), HasSubstr(each.message));
        EXPECT_EQ(log.Messages().empty(), *each.message == 0);
    }
}

TEST_F(Groups, ANameIsDefinedAgainWhereItIsNotKnown) {
    Start();
    Begin();
    front->PaintIn(5, spot);
    front->PaintIn(7, tile);
    Begin();
    front->PaintIn(5, spot);
    front->PaintIn(7, tile);
    front->PaintIn(5, spot);
    space->EndTransparencyGroup();
    EXPECT_EQ(Count(page->contents, "[/Separation (Gold)"), 1U);
    EXPECT_EQ(Count(page->contents, "makepattern"), 1U);
    front->PaintIn(5, spot);
    front->PaintIn(7, tile);
    space->EndTransparencyGroup();
    front->PaintIn(5, spot);
    front->PaintIn(7, tile);
    const std::string text = Written();
    EXPECT_EQ(Count(text, "[/Separation (Gold)"), 2U);
    EXPECT_EQ(Count(text, "makepattern"), 2U);
    EXPECT_EQ(Count(text, "initmatrix [1"), 2U);
    EXPECT_EQ(Complaint(text), "") << text;
    EXPECT_THAT(log.Messages(), Not(HasSubstr("already exist")));
}

TEST_F(Groups, AFormInACellIsDefinedAheadOfThePattern) {
    cell->draw = [&](GRAPHICS::IConnectionSpace& to) {
        auto& in = In(to);
        in.PaintIn(5, spot);
        const float box[] = {0, 0, 1, 1};
        in.delegate->BeginTransparencyGroup(box, nullptr, true, false, nullptr);
        in.PaintIn(5, spot);
        in.delegate->EndTransparencyGroup();
        in.PaintIn(5, spot);
        in.delegate->BeginTransparencyGroup(box, nullptr, true, false, nullptr);
    };
    Start();
    log.Clear();
    Begin();
    front->PaintIn(7, tile);
    space->EndTransparencyGroup();
    const std::string text = Written();
    const std::size_t procedure = text.find("/PaintProc");
    EXPECT_EQ(text.find("/_objdef {TRGForm#3}") < procedure, true) << text;
    EXPECT_EQ(Count(text.substr(0, procedure), "exec"), 0U) << text;
    EXPECT_EQ(Count(text.substr(procedure), "/SP pdfmark"), 3U);
    EXPECT_EQ(Count(text.substr(0, procedure), "(Gold)"), 1U);
    EXPECT_EQ(Complaint(text), "") << text;
    EXPECT_THAT(log.Messages(), HasSubstr("was left open"));
}

TEST_F(Groups, WithPdfmarksOffGroupsAreNoneAndMasksAreLeftOut) {
    Start(false);
    const RENDERING::IConnectionSpaceDelegate* outside = space->Delegate();
    Begin();
    space->EndTransparencyGroup();
    EXPECT_EQ(space->mGroupDepth, 0);
    BeginMask();
    space->SetLineWidth(1);
    space->EndSoftMask();
    EXPECT_EQ(space->mGroupDepth, 0);
    EXPECT_EQ(space->Delegate(), outside);
    EXPECT_EQ(Written(), "");
    EXPECT_EQ(mirror->saved.size(), 0U);
    EXPECT_EQ(log.Messages(), "");
}

TEST_F(Groups, WhatBeganInVainEndsNothingElse) {
    Start();
    Begin();
    providers->left = 0;
    Begin();
    BeginMask();
    space->SetLineWidth(1);
    space->EndSoftMask();
    providers->left = 1;
    BeginMask();
    space->EndSoftMask();
    EXPECT_EQ(space->mGroupDepth, 2);
    space->EndTransparencyGroup();
    EXPECT_EQ(page->contents, "");
    space->EndTransparencyGroup();
    space->EndTransparencyGroup();
    space->EndSoftMask();
    EXPECT_EQ(space->mGroupDepth, 0);
    EXPECT_EQ(Count(Written(), "/EP pdfmark"), 1U);
    EXPECT_EQ(mirror->saved.size(), 0U);
    const std::string messages = log.Messages();
    EXPECT_THAT(messages, HasSubstr("Could not create a temp file based data provider.\n"
                                    "Problem pushing a new PostScriptDataStream on the "
                                    "transparency group stack.\n"));
    EXPECT_THAT(messages, HasSubstr("Could not push the masked group onto the group stack. Soft "
                                    "mask failure.\nCould not push the masked group"));
    EXPECT_THAT(messages, HasSubstr("Could not push the soft mask onto the group stack."));
    EXPECT_EQ(Count(messages, "Transparency Group stack is empty"), 2U);
    EXPECT_EQ(Count(messages, "Expected a soft mask here."), 3U);
}

TEST_F(Groups, EachMissingThingHasItsStatus) {
    const auto form =
        MakeObject<PS::FormObject>("F", nullptr, PS::FormObject::kIdentity, PS::FormObject::Box{});
    EXPECT_EQ(space->PopFormObject(), STATUS::kStackUnderflow);
    EXPECT_THAT(log.Messages(), HasSubstr("Ideally we should not here when pdfmarks turned off\n"
                                          "PostScriptDataStream underflow."));
    Start();
    EXPECT_EQ(space->PopFormObject(), STATUS::kNoForm);
    EXPECT_THAT(log.Messages(), HasSubstr("Expected a transparency group here."));
    factory->creators.erase(IO::IID_IOUTPUTFILTERSTACK);
    EXPECT_EQ(space->PushFormObject(*form), STATUS::kNoProvider);
    EXPECT_THAT(log.Messages(), HasSubstr("Could not manufacture an IOutputFilterStack."));
    factory->creators.erase(IO::CLSID_PACKETDATAPROVIDERFACTORY);
    EXPECT_EQ(space->PushFormObject(*form), STATUS::kNoProvider);
    log.Clear();
    space->EndMaskedGroup();
    EXPECT_THAT(log.Messages(), HasSubstr("Expected an IFormObject attached to current"));
    EXPECT_EQ(Written(), "");
    EXPECT_EQ(mirror->saved.size(), 0U);
}

TEST_F(Groups, AFormLeavesNoSavesAndRestoresNoneOfOthers) {
    Start();
    Begin();
    space->RestoreGraphicsState();
    space->SaveGraphicsState();
    space->SaveGraphicsState();
    space->EndTransparencyGroup();
    const std::string text = Written();
    EXPECT_EQ(Count(text, "gsave\n"), 4U);
    EXPECT_EQ(Count(text, "grestore\n"), 4U);
    EXPECT_EQ(mirror->saved.size(), 0U);
}

TEST_F(Groups, AnImageOfAFormInACellStaysInTheForm) {
    const auto image = MakeObject<FakeRaster>();
    image->Init(gray.Get(), 2, 1, 8, 1, 1, 0, 0);
    cell->draw = [&](GRAPHICS::IConnectionSpace& to) {
        auto& in = In(to);
        const float box[] = {0, 0, 1, 1};
        in.delegate->BeginTransparencyGroup(box, nullptr, true, false, nullptr);
        in.delegate->DrawImage(image.Get(), 0, 0, 5, 5);
        in.delegate->EndTransparencyGroup();
        in.delegate->DrawImage(image.Get(), 0, 0, 5, 5);
    };
    Start();
    front->PaintIn(7, tile);
    const std::string text = Written();
    const std::size_t form = text.find("/DataSource currentfile");
    EXPECT_LT(form, text.find("[/EP pdfmark")) << text;
    EXPECT_LT(text.find("[/EP pdfmark"), text.find("/ImageData1")) << text;
    EXPECT_EQ(Count(text, "ReusableStreamDecode filter"), 1U);
}

TEST_F(Groups, TenThousandGroupsCostNoMoreThanTheirText) {
    Start();
    const auto start = std::chrono::steady_clock::now();
    constexpr std::size_t kGroups = 10000;
    for (std::size_t i = 0; i < kGroups; ++i) {
        Begin();
        front->PaintIn(5, spot);
        space->EndTransparencyGroup();
    }
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
    EXPECT_EQ(Count(page->contents, "(Gold)"), 1U);
    EXPECT_LT(page->contents.size(), kGroups * 1500);
}

TEST_F(Groups, GroupsAreNestedDeeplyAndRefusedBeyondABound) {
    Start();
    constexpr int kDeep = 1200;
    for (int i = 0; i < kDeep; ++i) {
        Begin();
    }
    for (int i = 0; i < kDeep; ++i) {
        space->EndTransparencyGroup();
    }
    EXPECT_EQ(space->mGroupDepth, 0);
    EXPECT_GE(Count(page->contents, "/EP pdfmark"), 500U);
    EXPECT_EQ(mirror->saved.size(), 0U);
    EXPECT_THAT(log.Messages(), HasSubstr("nested too deeply"));
}

}  // namespace
}  // namespace VANTIX::TEST
