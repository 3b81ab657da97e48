// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "core/object/iobject.h"
#include "core/object/tinterfaceptr.h"
#include "core/types.h"

namespace VANTIX::IO {

/// Three roles: class of a persistent dictionary, key of filter information, and key of the
/// property object of a colour space.
inline constexpr GUID IID_IDICTIONARY = "73E90CD5-BBC6-4326-8241-9BB4250B1B05"_guid;
/// Key of the connection space's private copy of the policy dictionary.
inline constexpr GUID IID_IPOSTSCRIPTPOLICYDICT = "D440755C-7BF5-4E48-A821-C35FB1F4CD5F"_guid;
/// Class of the property object.
inline constexpr GUID CLSID_KEYEDPROPERTIES = "A3C9F1B2-58E4-4D7A-8E61-0D2B7C4F9E55"_guid;

class IArray;

/// Values under small integer keys. A getter leaves its argument untouched and answers false when
/// the key is absent or of another kind.
class IDictionary : public IObject {
public:
    virtual Status SetBinary(std::int32_t key, const void* data, std::int32_t length) = 0;
    /// `text` ends with a zero, which is stored too.
    virtual Status SetWideString(std::int32_t key, const char16_t* text) = 0;
    virtual Status SetBool(std::int32_t key, bool value) = 0;
    virtual Status SetInt(std::int32_t key, std::int32_t value) = 0;
    virtual Status SetByte(std::int32_t key, std::uint8_t value) = 0;

    virtual bool GetBinary(std::int32_t key, std::vector<std::uint8_t>& data) const = 0;
    /// Receives the text with its terminating zero.
    virtual bool GetWideString(std::int32_t key, std::u16string& text) const = 0;
    virtual bool GetBool(std::int32_t key, bool& value) const = 0;
    virtual bool GetInt(std::int32_t key, std::int32_t& value) const = 0;
    virtual bool GetByte(std::int32_t key, std::uint8_t& value) const = 0;
    /// Whether the output filter with this code is asked for.
    virtual bool GetFilter(std::int32_t key, bool& value) const = 0;

    /// A deep, independent copy.
    virtual Status CopyTo(TInterfacePtr<IDictionary>& out) const = 0;
};

/// Byte strings under four-character keys; hangs on a colour space under `IID_IDICTIONARY`.
class IKeyedProperties : public IObject {
public:
    /// Lends the value under `key`; false when there is none.
    virtual bool Get(FourCC key, const char*& value, std::size_t& length) const = 0;
    virtual Status Set(FourCC key, const void* value, std::int32_t length) = 0;
};

}  // namespace VANTIX::IO
