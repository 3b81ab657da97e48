// SPDX-License-Identifier: MIT
#pragma once

#include "core/object/iclassfactory.h"

namespace VANTIX::IO {
class IDataProvider;
class IDictionary;
}  // namespace VANTIX::IO

namespace VANTIX::COREREGISTRY {

/// A tile of picture data on its way through adaptors.
class ITile : public IObject {};

class ITileAdaptor;

/// Something that can hand out the object to which a request is passed on.
class ITileSource : public IObject {
public:
    virtual ITileAdaptor* GetTileAdaptor() = 0;
};

/// One link in a chain of objects that adapt picture tiles.
class ITileAdaptor : public IObject {
public:
    /// Passes the tiles to the held adaptor, if there is one.
    virtual Status ForwardTile(ITile* inputTile, ITile* outputTile) = 0;
    virtual Status AdaptTile(ITile* inputTile, ITile* outputTile) = 0;
    virtual Status Reserved1() = 0;
    /// Replaces the held adaptor: releases the old one, references the new one (null allowed).
    virtual Status SetNextTileAdaptor(ITileAdaptor* next) = 0;
    /// The held adaptor (borrowed), or null.
    virtual ITileAdaptor* GetNextTileAdaptor() = 0;
    /// Finds the adaptor of a class in this object, its aggregates or the adaptors behind it
    /// (borrowed); null and `kNoInterface` when none has it.
    virtual Status FindTileAdaptor(const GUID& classId, ITileAdaptor** out) = 0;
    /// Asks the adaptor that `source` hands out.
    virtual Status ForwardToSource(ITileSource* source, const GUID& classId,
                                   ITileAdaptor** out) = 0;
};

/// A picture made of several graphics, read by an import filter.
class ICompositeGraphic : public ITileAdaptor {
public:
    virtual Status Init(IClassFactory& factory, IO::IDataProvider& stream,
                        const IO::IDictionary* options) = 0;
    virtual const GUID* GetClassID() const = 0;
};

}  // namespace VANTIX::COREREGISTRY
