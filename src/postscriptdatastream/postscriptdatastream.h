// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include "core/object/tobject.h"
#include "postscriptdatastream/ipostscriptdatastream.h"

namespace VANTIX::PS {

/// How a data stream writes its tokens, as bits.
namespace FORMAT {
inline constexpr std::uint64_t kHex = 0x01;        ///< unsigned integers, bytes and strings in hex
inline constexpr std::uint64_t kMode2 = 0x02;      ///< as decimal
inline constexpr std::uint64_t kDecimal = 0x04;    ///< numbers in decimal, bytes raw
inline constexpr std::uint64_t kUpperCase = 0x08;  ///< hexadecimal digits A to F
inline constexpr std::uint64_t kSeparated = 0x10;  ///< a blank behind scalars, lines of hex data
inline constexpr std::uint64_t kByteLines = 0x20;  ///< a newline behind each unsigned byte
}  // namespace FORMAT

/// The formatting writer on one data provider, of which it holds a reference. It keeps no text:
/// each token has reached the provider when its operation returns.
class PostscriptDataStream : public TObject<IPostScriptDataStream> {
public:
    /// Refuses a null provider with `kNoProvider`.
    Status SetDataProvider(IO::IDataProvider* provider) override;
    void GetDataProvider(TInterfacePtr<IO::IDataProvider>& out) override;

    /// There is no read side: the operators log "Unimplemented" and leave their argument untouched.
    IO::IDataProviderStream& operator>>(GUID& value) override;
    IO::IDataProviderStream& Reserved1() override;
    IO::IDataProviderStream& operator>>(CoreString& value) override;
    IO::IDataProviderStream& operator>>(double& value) override;
    IO::IDataProviderStream& operator>>(float& value) override;
    IO::IDataProviderStream& operator>>(bool& value) override;
    IO::IDataProviderStream& operator>>(std::uint64_t& value) override;
    IO::IDataProviderStream& operator>>(std::int64_t& value) override;
    IO::IDataProviderStream& operator>>(std::uint32_t& value) override;
    IO::IDataProviderStream& operator>>(std::int32_t& value) override;
    IO::IDataProviderStream& operator>>(std::uint16_t& value) override;
    IO::IDataProviderStream& operator>>(std::int16_t& value) override;
    IO::IDataProviderStream& operator>>(std::uint8_t& value) override;
    IO::IDataProviderStream& operator>>(std::int8_t& value) override;

    IPostScriptDataStream& operator<<(const GUID& value) override;
    IPostScriptDataStream& operator<<(const IObject& value) override;
    IPostScriptDataStream& operator<<(bool value) override;
    IPostScriptDataStream& operator<<(double value) override;
    IPostScriptDataStream& operator<<(float value) override;
    IPostScriptDataStream& operator<<(std::uint64_t value) override;
    IPostScriptDataStream& operator<<(std::int64_t value) override;
    IPostScriptDataStream& operator<<(std::uint32_t value) override;
    IPostScriptDataStream& operator<<(std::int32_t value) override;
    IPostScriptDataStream& operator<<(std::uint16_t value) override;
    IPostScriptDataStream& operator<<(std::int16_t value) override;
    IPostScriptDataStream& operator<<(const CoreString& value) override;
    IPostScriptDataStream& operator<<(std::uint8_t value) override;
    IPostScriptDataStream& operator<<(std::int8_t value) override;
    IPostScriptDataStream& WriteBytes(const std::uint8_t* data, std::int32_t length) override;
    IPostScriptDataStream& ReadBytes(void* buffer, std::int32_t* length) override;
    IPostScriptDataStream& operator<<(const IO::IDictionary& value) override;
    IPostScriptDataStream& operator<<(const IO::IArray& value) override;
    IPostScriptDataStream& WriteDataProvider(IO::IDataProvider& source) override;
    IPostScriptDataStream& WriteDataStream(IPostScriptDataStream& source) override;
    IPostScriptDataStream& operator<<(const char* text) override;

    IPostScriptDataStream& ClearSeparatedAndResetCounter() override;
    IPostScriptDataStream& SetSeparatedAndResetCounter() override;
    IPostScriptDataStream& ClearSeparatedAndByteLines() override;
    IPostScriptDataStream& ClearByteLines() override;
    IPostScriptDataStream& SetByteLines() override;
    IPostScriptDataStream& ClearSeparated() override;
    IPostScriptDataStream& SetSeparated() override;
    IPostScriptDataStream& SetLowerCase() override;
    IPostScriptDataStream& SetUpperCase() override;
    IPostScriptDataStream& SetDecimalMode() override;
    IPostScriptDataStream& SetMode2() override;
    IPostScriptDataStream& SetHexMode() override;

    IPostScriptDataStream& WriteString(const char* text) override;
    IPostScriptDataStream& WriteComment(const char* text, std::uint32_t length,
                                        bool multiline) override;
    IPostScriptDataStream& WriteName(const char* name, std::uint32_t length) override;
    IO::IPacketDataProvider* GetPacketDataProvider() override;

private:
    template <class T>
    IPostScriptDataStream& WriteScalar(T value);
    IPostScriptDataStream& ChangeFlags(std::uint64_t set, std::uint64_t clear);
    IPostScriptDataStream& SetRadix(std::uint64_t radix);

    std::uint64_t mFlags = FORMAT::kDecimal;
    /// Bytes that the hex block writer wrote since the last reset: where its lines break.
    std::uint32_t mByteCounter = 0;
    TInterfacePtr<IO::IDataProvider> mProvider;
};

}  // namespace VANTIX::PS
