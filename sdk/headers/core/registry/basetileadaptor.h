// SPDX-License-Identifier: MIT
#pragma once

#include "core/object/tobject.h"
#include "core/registry/icompositegraphic.h"

namespace VANTIX::COREREGISTRY {

/// Common behaviour of tile adaptors over interface `I`: holds the next adaptor of the chain.
/// `I` must be an `ITileAdaptor` with a `GetClassID` of its own.
template <class I>
class BaseTileAdaptor : public TObject<I> {
public:
    Status ForwardTile(ITile* inputTile, ITile* outputTile) override {
        ITileAdaptor* next = GetNextTileAdaptor();
        return next == nullptr ? STATUS::kOk : next->AdaptTile(inputTile, outputTile);
    }

    Status Reserved1() override { return STATUS::kOk; }

    Status SetNextTileAdaptor(ITileAdaptor* next) override {
        mNext = TInterfacePtr<ITileAdaptor>(next);
        return STATUS::kOk;
    }

    ITileAdaptor* GetNextTileAdaptor() override { return mNext.Get(); }

    Status FindTileAdaptor(const GUID& classId, ITileAdaptor** out) override {
        *out = nullptr;
        if (const GUID* own = this->GetClassID(); own != nullptr && *own == classId) {
            *out = this;
        } else if (auto* aggregated = FindInterface<ITileAdaptor>(this, classId)) {
            *out = aggregated;
        } else if (mNext) {
            return mNext->FindTileAdaptor(classId, out);
        }
        return *out == nullptr ? STATUS::kNoInterface : STATUS::kOk;
    }

    Status ForwardToSource(ITileSource* source, const GUID& classId, ITileAdaptor** out) override {
        ITileAdaptor* adaptor = source == nullptr ? nullptr : source->GetTileAdaptor();
        if (adaptor == nullptr) {
            *out = nullptr;
            return STATUS::kNoInterface;
        }
        return adaptor->FindTileAdaptor(classId, out);
    }

private:
    TInterfacePtr<ITileAdaptor> mNext;
};

}  // namespace VANTIX::COREREGISTRY
