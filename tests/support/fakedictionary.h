// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <variant>
#include <vector>

#include "core/io/idictionary.h"
#include "core/object/tobject.h"

namespace VANTIX::TEST {

/// A dictionary as the host keeps it: a value of one kind under each key.
class FakeDictionary : public TObject<IO::IDictionary> {
public:
    using Binary = std::vector<std::uint8_t>;
    using Value = std::variant<Binary, std::u16string, bool, std::int32_t, std::uint8_t>;

    /// Wide strings are kept with their terminating zero.
    std::map<std::int32_t, Value> entries;

    Status SetBinary(std::int32_t key, const void* data, std::int32_t length) override {
        const auto* bytes = static_cast<const std::uint8_t*>(data);
        entries[key] = Binary(bytes, bytes + length);
        return STATUS::kOk;
    }

    Status SetWideString(std::int32_t key, const char16_t* text) override {
        entries[key] = std::u16string(text) + u'\0';
        return STATUS::kOk;
    }

    Status SetBool(std::int32_t key, bool value) override { return Store(key, value); }

    Status SetInt(std::int32_t key, std::int32_t value) override { return Store(key, value); }

    Status SetByte(std::int32_t key, std::uint8_t value) override { return Store(key, value); }

    bool GetBinary(std::int32_t key, std::vector<std::uint8_t>& data) const override {
        return Fetch(key, data);
    }

    bool GetWideString(std::int32_t key, std::u16string& text) const override {
        return Fetch(key, text);
    }

    bool GetBool(std::int32_t key, bool& value) const override { return Fetch(key, value); }

    bool GetInt(std::int32_t key, std::int32_t& value) const override { return Fetch(key, value); }

    bool GetByte(std::int32_t key, std::uint8_t& value) const override { return Fetch(key, value); }

    bool GetFilter(std::int32_t key, bool& value) const override { return Fetch(key, value); }

    Status CopyTo(TInterfacePtr<IO::IDictionary>& out) const override {
        auto copy = MakeObject<FakeDictionary>();
        copy->entries = entries;
        out = std::move(copy);
        return STATUS::kOk;
    }

private:
    template <class T>
    Status Store(std::int32_t key, T value) {
        entries[key] = value;
        return STATUS::kOk;
    }

    template <class T>
    bool Fetch(std::int32_t key, T& value) const {
        const auto found = entries.find(key);
        const T* held = found == entries.end() ? nullptr : std::get_if<T>(&found->second);
        if (held != nullptr) {
            value = *held;
        }
        return held != nullptr;
    }
};

}  // namespace VANTIX::TEST
