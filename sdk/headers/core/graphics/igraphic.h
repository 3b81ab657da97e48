// SPDX-License-Identifier: MIT
#pragma once

#include "core/object/iobject.h"

namespace VANTIX::GRAPHICS {

class IConnectionSpace;

/// Something that can draw itself.
class IGraphic : public IObject {
public:
    virtual Status PlayTo(IConnectionSpace& space) const = 0;
};

}  // namespace VANTIX::GRAPHICS
