// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <utility>

#include "core/object/iobject.h"

namespace VANTIX {

/// Implementation base over interface `I`: an atomic reference count that starts at 1, and an
/// ordered map of aggregated objects, each held with one reference and released at destruction in
/// map order.
template <class I>
class TObject : public I {
public:
    Status QueryInterface(const GUID& id, void** out) override {
        const auto found = mAggregates.find(id);
        // Interfaces travel as IObject so that a reader can cast down without knowing the class.
        *out = found == mAggregates.end() ? nullptr : found->second;
        return *out == nullptr ? STATUS::kNoInterface : STATUS::kOk;
    }

    std::uint32_t AddRef() override {
        return static_cast<std::uint32_t>(mReferences.fetch_add(1, std::memory_order_relaxed) + 1);
    }

    std::uint32_t Release() override {
        const std::int32_t left = mReferences.fetch_sub(1, std::memory_order_acq_rel) - 1;
        if (left == 0) {
#if !defined(__clang_analyzer__)  // it cannot follow the count and takes every release for the last
            delete this;
#endif
        }
        return static_cast<std::uint32_t>(left);
    }

    Status Aggregate(IObject* object, GUID id) override {
        if (object == nullptr) {
            return STATUS::kInvalidArgument;
        }
        IObject*& slot = mAggregates[id];
        if (slot != object) {
            object->AddRef();
            IObject* earlier = std::exchange(slot, object);
            if (earlier != nullptr) {
                earlier->Release();
            }
        }
        return STATUS::kOk;
    }

    Status Disaggregate(const GUID& id) override {
        const auto found = mAggregates.find(id);
        if (found == mAggregates.end()) {
            return STATUS::kNoInterface;
        }
        IObject* object = found->second;
        mAggregates.erase(found);
        object->Release();
        return STATUS::kOk;
    }

    void ClearAggregates() override {
        // A released object may ask this one again: it must find a map without itself.
        while (!mAggregates.empty()) {
            IObject* object = mAggregates.begin()->second;
            mAggregates.erase(mAggregates.begin());
            object->Release();
        }
    }

    std::map<GUID, IObject*>& GetAggregateMap() override {
        return mAggregates;
    }

    ~TObject() override {
        TObject::ClearAggregates();
    }

protected:
    TObject() = default;

private:
    std::atomic<std::int32_t> mReferences{1};
    std::map<GUID, IObject*> mAggregates;
};

}  // namespace VANTIX
