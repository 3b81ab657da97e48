// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <map>
#include <vector>

#include "core/object/iclassfactory.h"
#include "core/object/tobject.h"

namespace VANTIX::TEST {

/// A class factory that knows what a test tells it: `creators[id]` makes a new object with one
/// reference, or null.
class FakeFactory : public TObject<IClassFactory> {
public:
    std::map<GUID, std::function<IObject*()>> creators;
    /// Every class that was asked for, in order.
    std::vector<GUID> asked;

    /// Makes objects of `T` by its default constructor.
    template <class T>
    void Offer(const GUID& classId) {
        creators[classId] = [] { return new T; };
    }

    /// Gives `object` itself, with a new reference each time.
    void OfferObject(const GUID& classId, IObject* object) {
        creators[classId] = [object] {
            object->AddRef();
            return object;
        };
    }

    Status CreateInstance(const GUID& classId, IObject** out) override {
        asked.push_back(classId);
        const auto found = creators.find(classId);
        *out = found == creators.end() ? nullptr : found->second();
        return *out == nullptr ? STATUS::kNoInterface : STATUS::kOk;
    }
};

}  // namespace VANTIX::TEST
