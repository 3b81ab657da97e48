// SPDX-License-Identifier: MIT
#pragma once

#include <map>
#include <string>

#include "core/io/idictionary.h"
#include "core/object/tobject.h"
#include "host/export.h"

namespace VANTIX::HOST {

/// Byte strings under four-character keys. A lent value stays valid until its key is set again.
class NORVANE_HOST_API KeyedProperties : public TObject<IO::IKeyedProperties> {
public:
    bool Get(FourCC key, const char*& value, std::size_t& length) const override;
    Status Set(FourCC key, const void* value, std::int32_t length) override;

private:
    std::map<FourCC, std::string> mValues;
};

}  // namespace VANTIX::HOST
