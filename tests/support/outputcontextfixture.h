// SPDX-License-Identifier: MIT
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "core/color/iconnectioncolorspacefactory.h"
#include "postscriptconnectionspace/postscriptoutputcontext.h"
#include "support/fakecolorspaces.h"
#include "support/fakefactory.h"
#include "support/fakefilterstack.h"
#include "support/fakefunctions.h"
#include "support/fakestatestack.h"
#include "support/memoryprovider.h"
#include "support/recordinglogger.h"

namespace VANTIX::TEST {

/// An output context on one stream in memory, with all that it asks of its host.
class OutputContextFixture : public ::testing::Test {
protected:
    OutputContextFixture() {
        RecordingLogger::Get().Clear();
        factory->OfferObject(GRAPHICS::CLSID_MUTABLEGRAPHICSSTATESTACK, mirror.Get());
        factory->Offer<FakeColorSpaceFactory>(COLOR::IID_ICONNECTIONCOLORSPACEFACTORY);
        factory->Offer<FakeFunctionFactory>(COLOR::CLSID_COLORFUNCTIONFACTORY);
        factory->Offer<MemoryProvider>(IO::IID_IDATAPROVIDER);
        filters->Attach(page.Get());
        const auto stream = TInterfacePtr<PS::IPostScriptDataStream>::Adopt(
            PS::CreatePostscriptDataStream(page.Get()));
        stream->Aggregate(filters.Get(), IO::IID_IOUTPUTFILTERSTACK);
        streams.Push(stream.Get());
        context = MakeObject<PS::PostScriptOutputContext>(streams);
        context->Init(factory.Get());
    }

    /// What was written since the last call.
    std::string Written() { return page->Take(); }

    TInterfacePtr<FakeFactory> factory = MakeObject<FakeFactory>();
    TInterfacePtr<FakeStateStack> mirror = MakeObject<FakeStateStack>();
    TInterfacePtr<MemoryProvider> page = MakeObject<MemoryProvider>();
    TInterfacePtr<FakeFilterStack> filters = MakeObject<FakeFilterStack>();
    PS::PostScriptStreamStack streams;
    TInterfacePtr<PS::PostScriptOutputContext> context;
};

}  // namespace VANTIX::TEST
