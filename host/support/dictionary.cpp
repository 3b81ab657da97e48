// SPDX-License-Identifier: MIT
#include "host/support/dictionary.h"

#include <utility>

namespace VANTIX::HOST {

Status Dictionary::Set(std::int32_t key, Value value) {
    mValues.insert_or_assign(key, std::move(value));
    return STATUS::kOk;
}

template <class T>
bool Dictionary::Get(std::int32_t key, T& value) const {
    const auto found = mValues.find(key);
    const T* held = found == mValues.end() ? nullptr : std::get_if<T>(&found->second);
    if (held == nullptr) {
        return false;
    }
    value = *held;
    return true;
}

Status Dictionary::SetBinary(std::int32_t key, const void* data, std::int32_t length) {
    if (length < 0 || (data == nullptr && length > 0)) {
        return STATUS::kInvalidArgument;
    }
    const auto* bytes = static_cast<const std::uint8_t*>(data);
    return Set(key, std::vector<std::uint8_t>(bytes, bytes + length));
}

Status Dictionary::SetWideString(std::int32_t key, const char16_t* text) {
    if (text == nullptr) {
        return STATUS::kInvalidArgument;
    }
    return Set(key, std::u16string(text) + u'\0');
}

Status Dictionary::SetBool(std::int32_t key, bool value) {
    return Set(key, value);
}

Status Dictionary::SetInt(std::int32_t key, std::int32_t value) {
    return Set(key, value);
}

Status Dictionary::SetByte(std::int32_t key, std::uint8_t value) {
    return Set(key, value);
}

bool Dictionary::GetBinary(std::int32_t key, std::vector<std::uint8_t>& data) const {
    return Get(key, data);
}

bool Dictionary::GetWideString(std::int32_t key, std::u16string& text) const {
    return Get(key, text);
}

bool Dictionary::GetBool(std::int32_t key, bool& value) const {
    return Get(key, value);
}

bool Dictionary::GetInt(std::int32_t key, std::int32_t& value) const {
    return Get(key, value);
}

bool Dictionary::GetByte(std::int32_t key, std::uint8_t& value) const {
    return Get(key, value);
}

bool Dictionary::GetFilter(std::int32_t key, bool& value) const {
    return Get(key, value);
}

Status Dictionary::CopyTo(TInterfacePtr<IO::IDictionary>& out) const {
    auto copy = MakeObject<Dictionary>();
    copy->mValues = mValues;
    out = std::move(copy);
    return STATUS::kOk;
}

}  // namespace VANTIX::HOST
