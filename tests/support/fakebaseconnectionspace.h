// SPDX-License-Identifier: MIT
#pragma once

#include <map>

#include "core/graphics/pluginhelper/delegateconnectionspace.h"
#include "support/fakecolorspaces.h"

namespace VANTIX::TEST {

/// The host's front object: attaches itself to its delegate and keeps a table of colour spaces.
/// Tests draw through the delegate itself.
class FakeBaseConnectionSpace
    : public GRAPHICS::IdleConnectionSpace<GRAPHICS::IBaseConnectionSpace> {
public:
    std::map<ResourceId, TInterfacePtr<COLOR::IConnectionColorSpace>> spaces;
    /// Handed to the delegate when it is attached (borrowed).
    GRAPHICS::IGraphicsState* state = nullptr;
    Status initStatus = STATUS::kOk;
    bool attaches = true;

    Status Init(GRAPHICS::IDelegateConnectionSpace* delegate) override {
        if (attaches && initStatus == STATUS::kOk) {
            delegate->Aggregate(this, GRAPHICS::IID_IBASECONNECTIONSPACE);
            delegate->SetGraphicsState(state);
        }
        return initStatus;
    }

    bool GetColorSpace(ResourceId id, COLOR::IConnectionColorSpace** out) override {
        const auto found = spaces.find(id);
        if (found == spaces.end()) {
            return false;
        }
        auto held = found->second;
        *out = held.Detach();
        return true;
    }
};

}  // namespace VANTIX::TEST
