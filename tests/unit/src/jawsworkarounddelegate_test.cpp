// SPDX-License-Identifier: MIT
#include <functional>

#include "jawsworkaroundconnectionspacedelegate.h"
#include "postscriptconnectionspace/iformobject.h"
#include "support/delegatefixture.h"
#include "support/fakedictionary.h"
#include "support/fakeraster.h"
#include "support/memoryprovider.h"

namespace VANTIX::TEST {
namespace {

using RENDERING::IConnectionSpaceDelegate;
using RENDERING::JAWSWorkaroundConnectionSpaceDelegate;

constexpr std::int32_t kTransparencyWritten = 110;
constexpr const char* kHalf =
    "[/ca 0.5 /CA 1 /BM /Normal /AIS false /TK true /SetTransparency pdfmark\n";
constexpr const char* kDefault =
    "[/ca 1 /CA 1 /BM /Normal /AIS false /TK true /SetTransparency pdfmark\n";

/// A delegate that notes its calls in the page.
class NotingDelegate : public TObject<IConnectionSpaceDelegate> {
public:
    explicit NotingDelegate(MemoryProvider& page) : mPage(page) {}

    GRAPHICS::IGraphicsState* state = nullptr;

    void Init(bool set) override { Note(set ? "Init set" : "Init"); }

    bool SetColorSpace(COLOR::IConnectionColorSpace* /*space*/, bool fill) override {
        Note("space");
        return fill;
    }

    void SetColorSpaceAndValues(COLOR::IConnectionColorSpace* /*space*/, const float* values,
                                std::int32_t count, bool /*fill*/) override {
        Note("color " + std::to_string(count) + " " + std::to_string(values[0]));
    }

    bool SetUncoloredPattern(const char* name, COLOR::IConnectionColorSpace* /*underlying*/,
                             bool fill) override {
        Note(std::string("uncolored ") + name);
        return fill;
    }

    bool SetPatternColorSpace(const char* name) override {
        Note(std::string("pattern ") + name);
        return true;
    }

    void Image(GRAPHICS::IRasterComponent& /*raster*/, float x, float y, float width,
               float height) override {
        Note("image " + std::to_string(x + 2 * y + 4 * width + 8 * height));
    }

    void FillWithColorSpace(COLOR::IConnectionColorSpace* /*shading*/, ResourceId id, float x,
                            float y, float width, float height, bool paint) override {
        Note("shading " + std::to_string(id) + " " + std::to_string(x + y + width + height) +
             (paint ? " paint" : ""));
    }

    void SetGraphicsState(GRAPHICS::IGraphicsState* theState) override { state = theState; }

    bool CanMarkTheCanvas() const override { return false; }

    bool WasDefaultColourSet() const override { return false; }

private:
    void Note(const std::string& text) {
        const std::string line = text + "\n";
        mPage.Write(line.data(), line.size());
    }

    MemoryProvider& mPage;
};

class FakeForm : public TObject<PS::IFormObject> {
public:
    void WriteBeginPicture(PS::IPostScriptDataStream& /*out*/) const override {}

    void WriteEndPicture(PS::IPostScriptDataStream& /*out*/) const override {}

    void WriteDrawPicture(PS::IPostScriptDataStream& /*out*/) const override {}

    COLOR::IConnectionColorSpace* GetGroupColorSpace() const override { return nullptr; }
};

class FakeMask : public TObject<PS::ISoftMaskGroup> {
public:
    void WriteExtGState(PS::IPostScriptDataStream& out) const override { out << "mask\n"; }
};

struct Operation {
    const char* name;
    std::function<void(IConnectionSpaceDelegate&)> run;
    /// What the wrapped delegate notes.
    const char* noted;
};

const Operation kOperations[] = {
    {"space", [](auto& each) { EXPECT_TRUE(each.SetColorSpace(nullptr, true)); }, "space\n"},
    {"color",
     [](auto& each) {
         const float values[] = {0.25F};
         each.SetColorSpaceAndValues(nullptr, values, 1, false);
     },
     "color 1 0.250000\n"},
    {"uncolored", [](auto& each) { EXPECT_FALSE(each.SetUncoloredPattern("P1", nullptr, false)); },
     "uncolored P1\n"},
    {"pattern", [](auto& each) { EXPECT_TRUE(each.SetPatternColorSpace("P2")); }, "pattern P2\n"},
    {"image",
     [](auto& each) {
         FakeRaster raster;
         each.Image(raster, 1, 2, 3, 4);
     },
     "image 49.000000\n"},
    {"shading", [](auto& each) { each.FillWithColorSpace(nullptr, 7, 1, 2, 3, 4, true); },
     "shading 7 10.000000 paint\n"},
};

class JAWSWorkaround : public DelegateFixture {
protected:
    JAWSWorkaround() {
        streams.Push(TInterfacePtr<PS::IPostScriptDataStream>::Adopt(
                         PS::CreatePostscriptDataStream(page.Get()))
                         .Get());
    }

    TInterfacePtr<IConnectionSpaceDelegate> Make() {
        auto made = TInterfacePtr<IConnectionSpaceDelegate>::Adopt(
            RENDERING::CreateJAWSWorkaroundConnectionSpaceDelegate(*factory, streams, next.Get(),
                                                                   policy.Get()));
        made->SetGraphicsState(state.Get());
        return made;
    }

    /// What is written when a pattern is selected.
    std::string Selected(IConnectionSpaceDelegate& delegate) {
        delegate.SetPatternColorSpace("P");
        std::string text = page->Take();
        const std::size_t noted = text.find("pattern P\n");
        EXPECT_EQ(noted + 10, text.size()) << text;
        return text.substr(0, noted);
    }

    TInterfacePtr<MemoryProvider> page = MakeObject<MemoryProvider>();
    PS::PostScriptStreamStack streams;
    TInterfacePtr<FakeDictionary> policy = MakeObject<FakeDictionary>();
    TInterfacePtr<NotingDelegate> next = MakeObject<NotingDelegate>(*page);
};

TEST_F(JAWSWorkaround, EveryMarkGetsItsStateOnceOneWasWritten) {
    const auto delegate = Make();
    EXPECT_EQ(next->state, state.Get());
    for (const Operation& each : kOperations) {
        each.run(*delegate);
        EXPECT_EQ(page->Take(), each.noted) << each.name;
    }
    EXPECT_FALSE(policy->entries.contains(kTransparencyWritten));
    state->fillAlpha = 0.5F;
    for (const Operation& each : kOperations) {
        each.run(*delegate);
        EXPECT_EQ(page->writes, 2) << each.name;
        EXPECT_EQ(page->Take(), std::string(kHalf) + each.noted) << each.name;
    }
    state->fillAlpha = 1;
    EXPECT_EQ(Selected(*delegate), kDefault);
    delegate->Init(true);
    EXPECT_FALSE(delegate->CanMarkTheCanvas());
    EXPECT_FALSE(delegate->WasDefaultColourSet());
    EXPECT_EQ(page->Take(), "Init set\n");
    EXPECT_EQ(log.Messages(), "");
}

TEST_F(JAWSWorkaround, EachValueOfTheStateIsWatchedAndWritten) {
    const std::pair<std::function<void(FakeGraphicsState&)>, const char*> kChanges[] = {
        {[](auto& each) { each.fillAlpha = 0.123456789F; },
         "/ca 0.123457 /CA 1 /BM /Normal /AIS false /TK true"},
        {[](auto& each) { each.strokeAlpha = 0; }, "/ca 1 /CA 0 /BM /Normal /AIS false /TK true"},
        {[](auto& each) { each.blendMode = GRAPHICS::TBlendMode::kColorDodge; },
         "/ca 1 /CA 1 /BM /ColorDodge /AIS false /TK true"},
        {[](auto& each) { each.alphaIsShape = true; },
         "/ca 1 /CA 1 /BM /Normal /AIS true /TK true"},
        {[](auto& each) { each.textKnockout = false; },
         "/ca 1 /CA 1 /BM /Normal /AIS false /TK false"},
    };
    for (const auto& [change, line] : kChanges) {
        state = MakeObject<FakeGraphicsState>();
        policy->entries.clear();
        const auto delegate = Make();
        change(*state);
        EXPECT_EQ(Selected(*delegate), "[" + std::string(line) + " /SetTransparency pdfmark\n");
    }
}

TEST_F(JAWSWorkaround, LaterDelegatesOfTheJobWriteAtOnce) {
    state->fillAlpha = 0.5F;
    EXPECT_EQ(Selected(*Make()), kHalf);
    state->fillAlpha = 1;
    EXPECT_EQ(Selected(*Make()), kDefault);
}

TEST_F(JAWSWorkaround, MaskFollowsOnlyWhereAFormUnderItIsRecorded) {
    const auto holder = MakeObject<FakeMask>();
    const auto form = MakeObject<FakeForm>();
    const auto delegate = Make();
    state->softMaskHolder = holder;
    EXPECT_EQ(Selected(*delegate), "");
    streams.Top()->Aggregate(form.Get(), PS::IID_IFORMOBJECT);
    EXPECT_EQ(Selected(*delegate), "");
    EXPECT_FALSE(policy->entries.contains(kTransparencyWritten));
    form->Aggregate(holder.Get(), PS::IID_ISOFTMASKGROUP);
    // Even where the state is that of a page.
    EXPECT_EQ(Selected(*delegate), std::string(kDefault) + "mask\n");
    EXPECT_TRUE(policy->entries.contains(kTransparencyWritten));
    state->softMaskHolder = nullptr;
    EXPECT_EQ(Selected(*delegate), kDefault);
}

TEST_F(JAWSWorkaround, WrappedDelegateFindsWhatIsAggregated) {
    const auto delegate = Make();
    delegate->Aggregate(out.Get(), PS::IID_IPOSTSCRIPTOUTPUTCONTEXT);
    for (IObject* each :
         {static_cast<IObject*>(delegate.Get()), static_cast<IObject*>(next.Get())}) {
        EXPECT_EQ(FindInterface<IObject>(each, PS::IID_IPOSTSCRIPTOUTPUTCONTEXT), out.Get());
    }
}

TEST_F(JAWSWorkaround, MissingCollaboratorsAreLoggedAndHarmNothing) {
    EXPECT_EQ(RENDERING::CreateJAWSWorkaroundConnectionSpaceDelegate(*factory, streams, nullptr,
                                                                     policy.Get()),
              nullptr);
    EXPECT_EQ(log.Messages(),
              "Next delegate nil.\nInitialization of JAWS workaround delgate failed.\n");
    state->fillAlpha = 0.5F;
    policy = nullptr;
    EXPECT_EQ(Selected(*Make()), kHalf);

    log.Clear();
    const auto stateless = Make();
    stateless->SetGraphicsState(nullptr);
    EXPECT_EQ(Selected(*stateless), "");
    EXPECT_EQ(log.Messages(), "GState Manager is nil.\n");

    log.Clear();
    JAWSWorkaroundConnectionSpaceDelegate alone(streams, nullptr, nullptr);
    alone.Init(true);
    alone.Aggregate(out.Get(), PS::IID_IPOSTSCRIPTOUTPUTCONTEXT);
    alone.SetGraphicsState(state.Get());
    EXPECT_FALSE(alone.SetPatternColorSpace("P"));
    EXPECT_TRUE(alone.CanMarkTheCanvas());
    EXPECT_TRUE(alone.WasDefaultColourSet());
    EXPECT_EQ(log.Count("Missing next delegate."), 5);
    EXPECT_EQ(FindInterface<IObject>(&alone, PS::IID_IPOSTSCRIPTOUTPUTCONTEXT), out.Get());

    log.Clear();
    const auto delegate = Make();
    ASSERT_EQ(streams.Pop(), STATUS::kOk);
    page->Take();
    EXPECT_EQ(Selected(*delegate), "");
    EXPECT_EQ(log.Entries().size(), 1U);
}

}  // namespace
}  // namespace VANTIX::TEST
