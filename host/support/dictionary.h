// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <variant>
#include <vector>

#include "core/io/idictionary.h"
#include "core/object/tobject.h"
#include "host/export.h"

namespace VANTIX::HOST {

/// A dictionary in memory. A key holds one value of one kind; setting another kind replaces it.
class NORVANE_HOST_API Dictionary : public TObject<IO::IDictionary> {
public:
    Status SetBinary(std::int32_t key, const void* data, std::int32_t length) override;
    Status SetWideString(std::int32_t key, const char16_t* text) override;
    Status SetBool(std::int32_t key, bool value) override;
    Status SetInt(std::int32_t key, std::int32_t value) override;
    Status SetByte(std::int32_t key, std::uint8_t value) override;

    bool GetBinary(std::int32_t key, std::vector<std::uint8_t>& data) const override;
    bool GetWideString(std::int32_t key, std::u16string& text) const override;
    bool GetBool(std::int32_t key, bool& value) const override;
    bool GetInt(std::int32_t key, std::int32_t& value) const override;
    bool GetByte(std::int32_t key, std::uint8_t& value) const override;
    /// Filters are chosen by booleans.
    bool GetFilter(std::int32_t key, bool& value) const override;

    Status CopyTo(TInterfacePtr<IO::IDictionary>& out) const override;

private:
    using Value =
        std::variant<std::vector<std::uint8_t>, std::u16string, bool, std::int32_t, std::uint8_t>;

    Status Set(std::int32_t key, Value value);

    template <class T>
    bool Get(std::int32_t key, T& value) const;

    std::map<std::int32_t, Value> mValues;
};

}  // namespace VANTIX::HOST
