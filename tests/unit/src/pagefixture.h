// SPDX-License-Identifier: MIT
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "postscriptconnectionspace/postscriptconnectionspace.h"
#include "support/fakebaseconnectionspace.h"
#include "support/fakecolorspaces.h"
#include "support/fakedictionary.h"
#include "support/fakefactory.h"
#include "support/fakefilterstack.h"
#include "support/fakefonts.h"
#include "support/fakefunctions.h"
#include "support/fakekeyedproperties.h"
#include "support/fakepatternspaces.h"
#include "support/fakeraster.h"
#include "support/fakestatestack.h"
#include "support/ghostscriptpages.h"
#include "support/memoryprovider.h"
#include "support/recordinglogger.h"

namespace VANTIX::TEST {

using ::testing::HasSubstr;
using ::testing::Not;

/// A front object with a graphics state of its own, through which pages, forms and cells draw.
class Front : public FakeBaseConnectionSpace {
public:
    Front() { state = own.Get(); }

    TInterfacePtr<FakeTextState> own = MakeObject<FakeTextState>();
    GRAPHICS::IDelegateConnectionSpace* delegate = nullptr;

    Status Init(GRAPHICS::IDelegateConnectionSpace* to) override {
        delegate = to;
        return FakeBaseConnectionSpace::Init(to);
    }

    /// Makes a colour the current one.
    void Use(ResourceId id, TInterfacePtr<COLOR::IConnectionColorSpace> space,
             std::vector<float> color) {
        spaces[id] = space;
        own->spaceId = id;
        own->space = std::move(space);
        own->color = std::move(color);
    }

    void Rectangle(float x, float y, float size) const {
        const float corners[] = {x + size, y, x + size, y + size, x, y + size};
        delegate->MoveTo(x, y);
        delegate->LineTo(corners, 3);
        delegate->ClosePath();
        delegate->Fill();
        delegate->NewPath();
    }

    /// A square of the space's full tint.
    void PaintIn(ResourceId id, const TInterfacePtr<COLOR::IConnectionColorSpace>& space) {
        Use(id, space, {1});
        Rectangle(0, 0, 1);
    }
};

/// Shows what it is made of.
class OpenSpace : public PS::PostScriptConnectionSpace {
public:
    using PostScriptConnectionSpace::Delegate;
    using PostScriptConnectionSpace::mGroupDepth;
};

/// A page that is written to memory.
class PageFixture : public ::testing::Test {
protected:
    PageFixture() {
        log.Clear();
        factory->OfferObject(GRAPHICS::CLSID_MUTABLEGRAPHICSSTATESTACK, mirror.Get());
        factory->Offer<FakeColorSpaceFactory>(COLOR::IID_ICONNECTIONCOLORSPACEFACTORY);
        factory->Offer<FakeKeyedProperties>(IO::CLSID_KEYEDPROPERTIES);
        factory->Offer<FakeDictionary>(IO::IID_IDICTIONARY);
        factory->Offer<Front>(GRAPHICS::IID_IBASECONNECTIONSPACE);
    }

    void Start() {
        ASSERT_TRUE(space->Init(page.Get(), factory.Get(), policy.Get()));
        front = FindInterface<Front>(space.Get(), GRAPHICS::IID_IBASECONNECTIONSPACE);
    }

    /// The factory makes no other front objects.
    static Front& In(GRAPHICS::IConnectionSpace& to) { return static_cast<Front&>(to); }

    static std::size_t Count(const std::string& text, const std::string& part) {
        std::size_t count = 0;
        for (std::size_t at = text.find(part); at != std::string::npos;
             at = text.find(part, at + 1)) {
            ++count;
        }
        return count;
    }

    /// A function of one input that runs from 1 to 0.
    static TInterfacePtr<FakeExponential> Inverse() {
        return MakeObject<FakeExponential>(1, std::vector<float>{1}, std::vector<float>{0}, 1.0F);
    }

    RecordingLogger& log = RecordingLogger::Get();
    TInterfacePtr<FakeFactory> factory = MakeObject<FakeFactory>();
    TInterfacePtr<FakeStateStack> mirror = MakeObject<FakeStateStack>();
    TInterfacePtr<MemoryProvider> page = MakeObject<MemoryProvider>();
    TInterfacePtr<FakeDictionary> policy = MakeObject<FakeDictionary>();
    TInterfacePtr<FakeDeviceSpace> gray = MakeObject<FakeDeviceSpace>("gray"_cc, 1U);
    TInterfacePtr<FakeDeviceSpace> rgb = MakeObject<FakeDeviceSpace>("rgb "_cc, 3U);
    TInterfacePtr<FakeSeparationSpace> spot =
        MakeObject<FakeSeparationSpace>("Gold", gray, Inverse());
    TInterfacePtr<FakeCell> cell = MakeObject<FakeCell>();
    TInterfacePtr<FakeTilePattern> tile = MakeObject<FakeTilePattern>();
    TInterfacePtr<OpenSpace> space = MakeObject<OpenSpace>();
    Front* front = nullptr;
};

}  // namespace VANTIX::TEST
