// SPDX-License-Identifier: MIT
#pragma once

#include "core/object/tinterfaceptr.h"
#include "core/object/tobject.h"

namespace VANTIX::PS {

class PostScriptConnectionSpace;

/// Ends what a soft mask applies to when the host lets it go. It keeps the connection space alive
/// until then or until the job ends: the host may hold it in a graphics state that the space itself
/// owns, so the space makes all of them forget it.
class SoftMaskMessenger : public TObject<IObject> {
public:
    explicit SoftMaskMessenger(PostScriptConnectionSpace& space);

    SoftMaskMessenger(const SoftMaskMessenger&) = delete;
    SoftMaskMessenger& operator=(const SoftMaskMessenger&) = delete;
    SoftMaskMessenger(SoftMaskMessenger&&) = delete;
    SoftMaskMessenger& operator=(SoftMaskMessenger&&) = delete;

    ~SoftMaskMessenger() override;

    /// The job has ended: nothing is left to be done.
    void Forget() { mSpace = nullptr; }

private:
    TInterfacePtr<PostScriptConnectionSpace> mSpace;
};

}  // namespace VANTIX::PS
