// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <map>

#include "core/object/guid.h"
#include "core/status.h"

namespace VANTIX {

/// Root of every object that crosses the border between host and plug-in: counted references and
/// aggregation of other objects under identifiers. No exception crosses any of its operations, and
/// every interface derives from it in a single line, so that `FindInterface` is the only cast.
class IObject {
public:
    /// Lends the object aggregated under `id` (no reference is added). When absent `*out` is null
    /// and the result is `kNoInterface`. `out` must not be null.
    virtual Status QueryInterface(const GUID& id, void** out) = 0;

    virtual std::uint32_t AddRef() = 0;

    /// Destroys the object when the last reference goes; answers the references left.
    virtual std::uint32_t Release() = 0;

    /// Stores one reference to `object` under `id` and releases a different earlier one. The same
    /// object again changes nothing. A null object is refused with `kInvalidArgument`.
    virtual Status Aggregate(IObject* object, GUID id) = 0;

    /// Releases what is stored under `id`; `kNoInterface` when nothing is.
    virtual Status Disaggregate(const GUID& id) = 0;

    virtual void ClearAggregates() = 0;
    virtual std::map<GUID, IObject*>& GetAggregateMap() = 0;
    virtual ~IObject() = default;

    IObject(const IObject&) = delete;
    IObject& operator=(const IObject&) = delete;
    IObject(IObject&&) = delete;
    IObject& operator=(IObject&&) = delete;

protected:
    IObject() = default;
};

/// Borrowed pointer to the object that `object` offers under `id`, or null. `id` must belong to
/// `T`.
template <class T>
T* FindInterface(IObject* object, const GUID& id) {
    if (object == nullptr) {
        return nullptr;
    }
    void* found = nullptr;
    if (object->QueryInterface(id, &found) != STATUS::kOk || found == nullptr) {
        return nullptr;
    }
    return static_cast<T*>(static_cast<IObject*>(found));
}

/// The same for a constant object whose interface is only read. Asking changes nothing in it.
template <class T>
const T* FindInterface(const IObject* object, const GUID& id) {
    return FindInterface<T>(const_cast<IObject*>(object), id);
}

}  // namespace VANTIX
