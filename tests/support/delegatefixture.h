// SPDX-License-Identifier: MIT
#pragma once

#include <gtest/gtest.h>

#include "baseconnectionspacedelegate/baseconnectionspacedelegate.h"
#include "support/fakecolorspaces.h"
#include "support/fakefactory.h"
#include "support/fakefunctions.h"
#include "support/fakegraphicsstate.h"
#include "support/fakekeyedproperties.h"
#include "support/fakeoutputcontext.h"
#include "support/fakepatternspaces.h"
#include "support/recordinglogger.h"

namespace VANTIX::TEST {

/// What a colour delegate finds around it: a factory, a graphics state and an output context that
/// notes what it is asked.
class DelegateFixture : public ::testing::Test {
protected:
    DelegateFixture() {
        log.Clear();
        factory->Offer<FakeKeyedProperties>(IO::CLSID_KEYEDPROPERTIES);
        factory->Offer<FakeColorSpaceFactory>(COLOR::IID_ICONNECTIONCOLORSPACEFACTORY);
    }

    /// Gives the delegate context and state.
    template <class T>
    TInterfacePtr<T> Connect(TInterfacePtr<T> delegate) {
        delegate->Aggregate(out.Get(), PS::IID_IPOSTSCRIPTOUTPUTCONTEXT);
        delegate->SetGraphicsState(state.Get());
        return delegate;
    }

    /// Sets a colour (in host form) as the connection space does.
    void Paint(RENDERING::IConnectionSpaceDelegate& delegate,
               TInterfacePtr<COLOR::IConnectionColorSpace> space, std::vector<float> color) {
        state->space = std::move(space);
        state->color = std::move(color);
        delegate.SetColorSpaceAndValues(state->space.Get(), state->color.data(),
                                        static_cast<std::int32_t>(state->color.size()), true);
    }

    RecordingLogger& log = RecordingLogger::Get();
    TInterfacePtr<FakeFactory> factory = MakeObject<FakeFactory>();
    TInterfacePtr<FakeGraphicsState> state = MakeObject<FakeGraphicsState>();
    TInterfacePtr<FakeOutputContext> out = MakeObject<FakeOutputContext>();
    TInterfacePtr<FakeDeviceSpace> gray = MakeObject<FakeDeviceSpace>("gray"_cc, 1U);
    TInterfacePtr<FakeDeviceSpace> rgb = MakeObject<FakeDeviceSpace>("rgb "_cc, 3U);
    TInterfacePtr<FakeDeviceSpace> cmyk = MakeObject<FakeDeviceSpace>("cmyk"_cc, 4U);
};

}  // namespace VANTIX::TEST
