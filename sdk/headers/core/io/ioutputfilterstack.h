// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include "core/io/idataprovider.h"

namespace VANTIX::IO {

/// Class of the host's filter stack, and its key on data streams.
inline constexpr GUID IID_IOUTPUTFILTERSTACK = "368A8438-5ECD-4F67-90B0-DD72EB677139"_guid;

/// Codes of the output filters.
namespace FILTER {
inline constexpr std::int32_t kCount = 1;         ///< hands bytes on unchanged; no decode filter
inline constexpr std::int32_t kRunLength = 3;     ///< /RunLengthDecode
inline constexpr std::int32_t kFlate = 4;         ///< /FlateDecode, Language Level 3 only
inline constexpr std::int32_t kAscii85 = 5;       ///< /ASCII85Decode
inline constexpr std::int32_t kLabBytes = 10;     ///< 8-bit Lab samples
inline constexpr std::int32_t kLabPacked12 = 11;  ///< Lab samples packed to 12 bits
}  // namespace FILTER

/// Encoders over one data provider. Data pass from the newest filter to the oldest and then to the
/// provider; a reader undoes them from index 0 up.
class IOutputFilterStack : public IObject {
public:
    /// Sets the sink and takes a reference.
    virtual Status Attach(IDataProvider* provider) = 0;
    virtual Status PushFilter(std::int32_t code) = 0;
    /// Removes the newest filter.
    virtual Status PopFilter() = 0;
    virtual std::int32_t GetFilterCount() const = 0;
    /// Code of filter `index`, oldest first.
    virtual std::int32_t GetFilter(std::int32_t index) const = 0;
    /// Decode filter name with its slash, or an empty text where nothing has to be undone.
    virtual const char* GetFilterName(std::int32_t index) const = 0;
    /// Straight to the provider.
    virtual Status Write(const void* data, std::int32_t length) = 0;
    /// Through all filters.
    virtual Status WriteFilteredData(const void* data, std::int32_t length) = 0;
    /// Flushes the filters and writes their end marks; writes nothing when no data came since the
    /// last end.
    virtual Status EndFilteredData() = 0;
};

}  // namespace VANTIX::IO
