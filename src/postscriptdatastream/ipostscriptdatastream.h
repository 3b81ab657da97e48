// SPDX-License-Identifier: MIT
#pragma once

#include "core/io/idataproviderstream.h"

namespace VANTIX::IO {
class IDictionary;
class IArray;
}  // namespace VANTIX::IO

namespace VANTIX::PS {

/// A writer that turns numbers, text and bytes into PostScript tokens on a data provider. It never
/// buffers; the results of the provider are not examined. Every operation answers the stream
/// itself.
class IPostScriptDataStream : public IO::IDataProviderStream {
public:
    virtual IPostScriptDataStream& operator<<(const GUID& value) = 0;
    virtual IPostScriptDataStream& operator<<(const IObject& value) = 0;
    virtual IPostScriptDataStream& operator<<(bool value) = 0;
    virtual IPostScriptDataStream& operator<<(double value) = 0;
    virtual IPostScriptDataStream& operator<<(float value) = 0;
    virtual IPostScriptDataStream& operator<<(std::uint64_t value) = 0;
    virtual IPostScriptDataStream& operator<<(std::int64_t value) = 0;
    virtual IPostScriptDataStream& operator<<(std::uint32_t value) = 0;
    virtual IPostScriptDataStream& operator<<(std::int32_t value) = 0;
    virtual IPostScriptDataStream& operator<<(std::uint16_t value) = 0;
    virtual IPostScriptDataStream& operator<<(std::int16_t value) = 0;
    virtual IPostScriptDataStream& operator<<(const CoreString& value) = 0;
    virtual IPostScriptDataStream& operator<<(std::uint8_t value) = 0;
    virtual IPostScriptDataStream& operator<<(std::int8_t value) = 0;
    /// Raw bytes, or hexadecimal digits in hex mode (lines of 80 digits when separated).
    virtual IPostScriptDataStream& WriteBytes(const std::uint8_t* data, std::int32_t length) = 0;
    /// Reads from the provider: `*length` bytes at most, `*length` becomes the count read.
    virtual IPostScriptDataStream& ReadBytes(void* buffer, std::int32_t* length) = 0;
    virtual IPostScriptDataStream& operator<<(const IO::IDictionary& value) = 0;
    virtual IPostScriptDataStream& operator<<(const IO::IArray& value) = 0;
    /// Copies what `source` holds from its current position to its end.
    virtual IPostScriptDataStream& WriteDataProvider(IO::IDataProvider& source) = 0;
    /// Copies all that was written to `source`.
    virtual IPostScriptDataStream& WriteDataStream(IPostScriptDataStream& source) = 0;
    /// Zero-terminated text, unchanged.
    virtual IPostScriptDataStream& operator<<(const char* text) = 0;

    virtual IPostScriptDataStream& ClearSeparatedAndResetCounter() = 0;
    virtual IPostScriptDataStream& SetSeparatedAndResetCounter() = 0;
    virtual IPostScriptDataStream& ClearSeparatedAndByteLines() = 0;
    virtual IPostScriptDataStream& ClearByteLines() = 0;
    virtual IPostScriptDataStream& SetByteLines() = 0;
    virtual IPostScriptDataStream& ClearSeparated() = 0;
    virtual IPostScriptDataStream& SetSeparated() = 0;
    virtual IPostScriptDataStream& SetLowerCase() = 0;
    virtual IPostScriptDataStream& SetUpperCase() = 0;
    virtual IPostScriptDataStream& SetDecimalMode() = 0;
    virtual IPostScriptDataStream& SetMode2() = 0;
    virtual IPostScriptDataStream& SetHexMode() = 0;

    /// A string literal: "(…)" with escapes, or "<…>" in hex mode.
    virtual IPostScriptDataStream& WriteString(const char* text) = 0;
    virtual IPostScriptDataStream& WriteComment(const char* text, std::uint32_t length,
                                                bool multiline) = 0;
    /// "/" and the name's bytes.
    virtual IPostScriptDataStream& WriteName(const char* name, std::uint32_t length) = 0;
    /// The provider (borrowed) if it is a packet data provider, else null.
    virtual IO::IPacketDataProvider* GetPacketDataProvider() = 0;
};

/// A stream in its initial state (decimal, not separated) on `provider`; a new reference, or null.
IPostScriptDataStream* CreatePostscriptDataStream(IO::IDataProvider* provider);

}  // namespace VANTIX::PS
