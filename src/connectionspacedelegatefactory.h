// SPDX-License-Identifier: MIT
#pragma once

#include "baseconnectionspacedelegate/iconnectionspacedelegate.h"
#include "core/object/tobject.h"

namespace VANTIX::RENDERING {

/// Makes the delegate of an output colour model with the options of the policy dictionary.
class ConnectionSpaceDelegateFactory : public TObject<IConnectionSpaceDelegateFactory> {
public:
    /// Null (logged) without a colour-space factory.
    IConnectionSpaceDelegate* CreateConnectionSpaceDelegate(
        IClassFactory& factory, TDelegateType type, const IO::IDictionary* options) const override;
};

}  // namespace VANTIX::RENDERING
