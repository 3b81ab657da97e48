// SPDX-License-Identifier: MIT
#include "host/graphics/baseconnectionspace.h"

#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <string>

#include "core/graphics/pluginhelper/delegateconnectionspace.h"

namespace VANTIX::HOST {
namespace {

using GRAPHICS::DelegateConnectionSpace;

/// A colour space of which only the identity matters.
class PlainSpace : public TObject<COLOR::IConnectionColorSpace> {
public:
    std::int32_t GetComponentCount() const override { return 1; }

    GUID GetIdentifier() const override { return {1, 0, 0, {}}; }

    bool ToPCS(const float* /*values*/, float /*pcs*/[3],
               COLOR::TRenderingIntent /*intent*/) const override {
        return false;
    }

    bool FromPCS(const float /*pcs*/[3], float* /*values*/,
                 COLOR::TRenderingIntent /*intent*/) const override {
        return false;
    }

    bool GetDefaultValues(float* /*values*/, std::int32_t /*count*/) const override {
        return false;
    }

    bool GetWhitePoint(float /*xyz*/[3]) const override { return false; }

    bool StoresComponentsInverted() const override { return false; }

    Status WritePostScriptArray(COLOR::TRenderingIntent /*intent*/,
                                IO::IDataProvider& /*out*/) const override {
        return STATUS::kNotSupported;
    }

    COLOR::IConnectionColorSpace* GetProfileForm() override { return nullptr; }

    Status LineToPCS(const std::uint8_t* const* /*planes*/, std::int32_t /*width*/,
                     std::int32_t /*bits*/, float* /*pcs*/,
                     COLOR::TRenderingIntent /*intent*/) const override {
        return STATUS::kNotSupported;
    }

    Status ConvertLine(const COLOR::IConnectionColorSpace& /*target*/,
                       const COLOR::LineConversion& /*line*/) const override {
        return STATUS::kNotSupported;
    }
};

/// Notes what reaches it, as a PostScript space does: it answers for its class, passes every other
/// question on to the base space, and asks that for a space while it ends.
class Recorder : public DelegateConnectionSpace {
public:
    Recorder(std::string& calls, bool isPostScript) : mCalls(calls), mIsPostScript(isPostScript) {}

    ~Recorder() override {
        if (mBase != nullptr) {
            COLOR::IConnectionColorSpace* space = nullptr;
            mCalls += mBase->GetColorSpace(7, &space) ? "found " : "missing ";
            if (space != nullptr) {
                space->Release();
            }
        }
        mCalls += "end ";
    }

    Recorder(const Recorder&) = delete;
    Recorder& operator=(const Recorder&) = delete;
    Recorder(Recorder&&) = delete;
    Recorder& operator=(Recorder&&) = delete;

    Status QueryInterface(const GUID& id, void** out) override {
        if (mIsPostScript && id == GRAPHICS::CLSID_POSTSCRIPTCONNECTIONSPACE) {
            *out = static_cast<IObject*>(this);
            return STATUS::kOk;
        }
        const Status status = TObject::QueryInterface(id, out);
        return status == STATUS::kOk || mBase == nullptr ? status : mBase->QueryInterface(id, out);
    }

    void SaveGraphicsState() override { mCalls += "q "; }

    void RestoreGraphicsState() override { mCalls += "Q "; }

    void AddColorSpace(COLOR::IConnectionColorSpace* space, ResourceId id) override {
        mCalls += (space == nullptr ? "null" : "space") + std::to_string(id) + " ";
    }

    void LineTo(const float* points, std::int32_t count) override {
        mCalls += "line" + std::to_string(count) + ":" + std::to_string(int(points[1])) + " ";
    }

    bool BeginTextObject() override { return true; }

    void Bless(BaseConnectionSpace& base) {
        mBase = &base;
        EXPECT_EQ(base.Init(this), STATUS::kOk);
        EXPECT_EQ(mGraphicsState, &base.State());
    }

private:
    std::string& mCalls;
    bool mIsPostScript;
    BaseConnectionSpace* mBase = nullptr;
};

/// Says when its last reference goes, as a soft mask does.
class Holder : public TObject<IObject> {
public:
    explicit Holder(std::function<void()> atEnd) : mAtEnd(std::move(atEnd)) {}

    ~Holder() override { mAtEnd(); }

    Holder(const Holder&) = delete;
    Holder& operator=(const Holder&) = delete;
    Holder(Holder&&) = delete;
    Holder& operator=(Holder&&) = delete;

private:
    std::function<void()> mAtEnd;
};

class BaseSpace : public testing::Test {
protected:
    BaseSpace() { delegate->Bless(*base); }

    std::string calls;
    TInterfacePtr<PlainSpace> gray = MakeObject<PlainSpace>();
    TInterfacePtr<BaseConnectionSpace> base = MakeObject<BaseConnectionSpace>(gray);
    TInterfacePtr<Recorder> delegate = MakeObject<Recorder>(calls, true);
};

TEST_F(BaseSpace, BeginsInDeviceGrayBlack) {
    EXPECT_EQ(base->State().GetColorSpace(true), gray.Get());
    EXPECT_EQ(base->State().GetColorSpaceID(false), "gray"_cc);
}

TEST_F(BaseSpace, ForwardsArgumentsAndAnswers) {
    const std::array<float, 4> points{1, 2, 3, 4};
    base->LineTo(points.data(), 2);
    EXPECT_EQ(calls, "line2:2 ");
    EXPECT_TRUE(base->BeginTextObject());
}

TEST_F(BaseSpace, StatesOfHostAndDelegateStayInStepAtBothEnds) {
    base->RestoreGraphicsState();
    EXPECT_EQ(calls, "");
    for (std::size_t i = 0; i < GraphicsState::kMaxLevels; ++i) {
        base->SaveGraphicsState();
    }
    calls.clear();
    base->SaveGraphicsState();
    EXPECT_EQ(calls, "");
    EXPECT_EQ(base->State().Depth(), GraphicsState::kMaxLevels);
    base->RestoreGraphicsState();
    EXPECT_EQ(calls, "Q ");
}

TEST_F(BaseSpace, ASoftMaskEndsBeforeTheRestoreOfTheLevelThatSetIt) {
    base->SaveGraphicsState();
    base->State().Current().softMaskHolder = MakeObject<Holder>([this] {
        calls += "mask";
        calls += std::to_string(base->State().Depth()) + " ";
        EXPECT_EQ(base->State().GetSoftMaskHolder(), nullptr);
    });
    base->SaveGraphicsState();
    base->RestoreGraphicsState();
    base->RestoreGraphicsState();
    EXPECT_EQ(calls, "q q Q mask1 Q ");
}

TEST_F(BaseSpace, KeepsTheFirstSpaceUnderANumber) {
    const auto other = MakeObject<PlainSpace>();
    base->AddColorSpace(gray.Get(), 7);
    base->AddColorSpace(other.Get(), 7);
    base->EnterColorSpace(other.Get(), 8);
    base->AddColorSpace(nullptr, 9);
    EXPECT_EQ(calls, "space7 space7 null9 ");
    TInterfacePtr<COLOR::IConnectionColorSpace> found;
    EXPECT_TRUE(base->GetColorSpace(7, found.Receive()));
    EXPECT_EQ(found.Get(), gray.Get());
    EXPECT_TRUE(base->GetColorSpace(8, found.Receive()));
    EXPECT_EQ(found.Get(), other.Get());
    EXPECT_FALSE(base->GetColorSpace(9, found.Receive()));
    EXPECT_FALSE(found);
}

TEST_F(BaseSpace, QuestionsGoToTheDelegateForItsClassOnly) {
    constexpr GUID kUnknown = "11111111-2222-3333-4444-555555555555"_guid;
    EXPECT_EQ(FindInterface<Recorder>(base.Get(), GRAPHICS::CLSID_POSTSCRIPTCONNECTIONSPACE),
              delegate.Get());
    EXPECT_EQ(FindInterface<IObject>(delegate.Get(), kUnknown), nullptr);
    EXPECT_EQ(BaseConnectionSpace::From(delegate.Get()), base.Get());
    EXPECT_EQ(BaseConnectionSpace::From(base.Get()), base.Get());
    EXPECT_EQ(BaseConnectionSpace::From(nullptr), nullptr);
}

TEST_F(BaseSpace, AnswersWhileTheDelegateEndsAndForwardsNothingAfterwards) {
    base->AddColorSpace(gray.Get(), 7);
    calls.clear();
    delegate = nullptr;
    EXPECT_EQ(calls, "found end ");
    base->SaveGraphicsState();
    base->AddColorSpace(gray.Get(), 8);
    EXPECT_FALSE(base->BeginTextObject());
    EXPECT_EQ(base->GetCurrentTextObject(), nullptr);
    EXPECT_EQ(FindInterface<Recorder>(base.Get(), GRAPHICS::CLSID_POSTSCRIPTCONNECTIONSPACE),
              nullptr);
    EXPECT_EQ(calls, "found end ");
}

TEST_F(BaseSpace, EndsWithADelegateThatHoldsItAlone) {
    std::string end;
    base->State().Current().softMaskHolder = MakeObject<Holder>([&end] { end = "released"; });
    base = nullptr;
    delegate = nullptr;
    EXPECT_EQ(end, "released");
}

TEST_F(BaseSpace, AnotherBaseSpaceTakesTheDelegateOver) {
    const auto second = MakeObject<BaseConnectionSpace>(gray);
    delegate->Bless(*second);
    calls.clear();
    base->SaveGraphicsState();
    EXPECT_EQ(calls, "");
    second->SaveGraphicsState();
    EXPECT_EQ(calls, "q ");
    base = nullptr;
    second->RestoreGraphicsState();
    EXPECT_EQ(calls, "q Q ");
}

TEST(BaseConnectionSpace, ADelegateOfAnotherKindIsNotAskedInCircles) {
    std::string calls;
    const auto base = MakeObject<BaseConnectionSpace>(nullptr);
    const auto delegate = MakeObject<Recorder>(calls, false);
    delegate->Bless(*base);
    EXPECT_EQ(FindInterface<IObject>(base.Get(), GRAPHICS::CLSID_POSTSCRIPTCONNECTIONSPACE),
              nullptr);
    EXPECT_EQ(base->Init(nullptr), STATUS::kInvalidArgument);
    EXPECT_EQ(base->Init(delegate.Get()), STATUS::kInvalidArgument);
}

}  // namespace
}  // namespace VANTIX::HOST
