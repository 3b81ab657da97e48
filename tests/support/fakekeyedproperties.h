// SPDX-License-Identifier: MIT
#pragma once

#include <map>
#include <string>

#include "core/io/idictionary.h"
#include "core/object/tobject.h"

namespace VANTIX::TEST {

/// The property object of a colour space, as the host keeps it.
class FakeKeyedProperties : public TObject<IO::IKeyedProperties> {
public:
    std::map<FourCC, std::string> values;

    bool Get(FourCC key, const char*& value, std::size_t& length) const override {
        const auto found = values.find(key);
        if (found == values.end()) {
            return false;
        }
        value = found->second.data();
        length = found->second.size();
        return true;
    }

    Status Set(FourCC key, const void* value, std::int32_t length) override {
        values[key].assign(static_cast<const char*>(value), static_cast<std::size_t>(length));
        return STATUS::kOk;
    }
};

}  // namespace VANTIX::TEST
