// SPDX-License-Identifier: MIT
#pragma once

#include "core/object/iobject.h"

namespace VANTIX::IO {
class IDataProvider;
class IDictionary;
}  // namespace VANTIX::IO

namespace VANTIX::GRAPHICS {

class IConnectionSpace;

/// Begins and ends output jobs. Jobs may be nested: `End` closes the one begun last. `Begin` and
/// `End` may be called from several threads; each job is drawn on one thread at a time.
class IGraphicExporter : public IObject {
public:
    virtual Status SetClassFactory(IObject* factory) = 0;

    /// The space to draw the job into, lent until the matching `End`; null when the job cannot
    /// begin.
    virtual IConnectionSpace* Begin(IO::IDataProvider& stream, const IO::IDictionary* options) = 0;

    virtual Status End() = 0;
};

}  // namespace VANTIX::GRAPHICS
