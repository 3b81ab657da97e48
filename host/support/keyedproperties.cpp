// SPDX-License-Identifier: MIT
#include "host/support/keyedproperties.h"

namespace VANTIX::HOST {

bool KeyedProperties::Get(FourCC key, const char*& value, std::size_t& length) const {
    const auto found = mValues.find(key);
    if (found == mValues.end()) {
        return false;
    }
    value = found->second.data();
    length = found->second.size();
    return true;
}

Status KeyedProperties::Set(FourCC key, const void* value, std::int32_t length) {
    if (length < 0 || (value == nullptr && length > 0)) {
        return STATUS::kInvalidArgument;
    }
    const auto* bytes = static_cast<const char*>(value);
    mValues[key] = std::string(bytes, bytes + length);
    return STATUS::kOk;
}

}  // namespace VANTIX::HOST
