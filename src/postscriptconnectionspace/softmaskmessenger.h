// SPDX-License-Identifier: MIT
#pragma once

#include "core/object/tinterfaceptr.h"
#include "core/object/tobject.h"

namespace VANTIX::PS {

class PostScriptConnectionSpace;

/// The way back to a connection space for objects that may outlive it.
class SpaceLink : public TObject<IObject> {
public:
    /// Not referenced; null when the space writes no more.
    PostScriptConnectionSpace* space = nullptr;
};

/// Ends what a soft mask applies to when the host lets it go. The host keeps it where the mask is
/// in force: in a graphics state that the connection space may own, so it holds the link alone.
class SoftMaskMessenger : public TObject<IObject> {
public:
    explicit SoftMaskMessenger(SpaceLink& link) : mLink(&link) {}

    SoftMaskMessenger(const SoftMaskMessenger&) = delete;
    SoftMaskMessenger& operator=(const SoftMaskMessenger&) = delete;
    SoftMaskMessenger(SoftMaskMessenger&&) = delete;
    SoftMaskMessenger& operator=(SoftMaskMessenger&&) = delete;

    ~SoftMaskMessenger() override;

private:
    TInterfacePtr<SpaceLink> mLink;
};

}  // namespace VANTIX::PS
