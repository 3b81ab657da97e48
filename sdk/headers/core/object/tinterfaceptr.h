// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <utility>

namespace VANTIX {

/// Holds one reference to an `IObject` descendant and releases it at its end.
template <class T>
class TInterfacePtr {
public:
    TInterfacePtr() = default;

    TInterfacePtr(std::nullptr_t) {}  // NOLINT(google-explicit-constructor): null is null

    /// Takes a reference of its own.
    explicit TInterfacePtr(T* object) : mObject(object) {
        if (mObject != nullptr) {
            mObject->AddRef();
        }
    }

    TInterfacePtr(const TInterfacePtr& other) : TInterfacePtr(other.mObject) {}

    TInterfacePtr(TInterfacePtr&& other) noexcept
        : mObject(std::exchange(other.mObject, nullptr)) {}

    /// From a pointer to a derived interface.
    template <class U>
    TInterfacePtr(const TInterfacePtr<U>& other)  // NOLINT(google-explicit-constructor)
        : TInterfacePtr(static_cast<T*>(other.Get())) {}

    template <class U>
    TInterfacePtr(TInterfacePtr<U>&& other) noexcept  // NOLINT(google-explicit-constructor)
        : mObject(other.Detach()) {}

    TInterfacePtr& operator=(TInterfacePtr other) noexcept {
        std::swap(mObject, other.mObject);
        return *this;
    }

    ~TInterfacePtr() {
        if (mObject != nullptr) {
            mObject->Release();
        }
    }

    /// Takes over the caller's reference: the form for what a "Create…" function returned.
    [[nodiscard]] static TInterfacePtr Adopt(T* object) {
        TInterfacePtr pointer;
        pointer.mObject = object;
        return pointer;
    }

    /// Gives the reference to the caller.
    [[nodiscard]] T* Detach() { return std::exchange(mObject, nullptr); }

    /// Releases what is held and lends the address for an out-parameter that gives a reference.
    [[nodiscard]] T** Receive() {
        *this = nullptr;
        return &mObject;
    }

    [[nodiscard]] T* Get() const { return mObject; }

    T* operator->() const { return mObject; }

    T& operator*() const { return *mObject; }

    explicit operator bool() const { return mObject != nullptr; }

    friend bool operator==(const TInterfacePtr& pointer, std::nullptr_t) {
        return pointer.mObject == nullptr;
    }

private:
    T* mObject = nullptr;
};

/// A new object of class `T` (constructed with the given arguments), held by its first reference.
template <class T, class... Arguments>
TInterfacePtr<T> MakeObject(Arguments&&... arguments) {
    return TInterfacePtr<T>::Adopt(new T(std::forward<Arguments>(arguments)...));
}

}  // namespace VANTIX
