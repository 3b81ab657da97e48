// SPDX-License-Identifier: MIT
#pragma once

#include "core/object/iobject.h"

namespace VANTIX::COREREGISTRY {

/// Class of the host's registrar.
inline constexpr GUID CLSID_REGISTRAR = "DA9DB78F-6185-472C-B6CD-D6897EEECCD5"_guid;

/// The host's table of class creators; what is registered here the class factory can make.
class IRegistrar : public IObject {
public:
    /// Makes a new object with one reference.
    using Creator = IObject* (*)();

    virtual Status RegisterClass(const GUID& classId, Creator creator) = 0;
};

}  // namespace VANTIX::COREREGISTRY
