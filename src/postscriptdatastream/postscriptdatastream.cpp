// SPDX-License-Identifier: MIT
#include "postscriptdatastream/postscriptdatastream.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>
#include <type_traits>

#include "core/libsupport/vlogger/logmessage.h"
#include "postscriptdatastream/realtext.h"
#include "postscriptdatastream/tokenwriter.h"

namespace VANTIX::PS {
namespace {

constexpr const char* kModule = "src/postscriptdatastream";
/// Bytes on one line of separated hex data.
constexpr std::uint32_t kBytesPerLine = 40;
/// Characters that hold any scalar with its blank and newline.
constexpr std::size_t kLongestScalar = 32;

const char* HexDigits(std::uint64_t flags) {
    return (flags & FORMAT::kUpperCase) != 0 ? "0123456789ABCDEF" : "0123456789abcdef";
}

/// Hexadecimal digits of `value`: all of them for 8 and 16 bits, else without leading zeros.
template <class T>
char* WriteHex(char* out, T value, const char* digits) {
    int count = static_cast<int>(sizeof(T)) * 2;
    if constexpr (sizeof(T) > 2) {
        while (count > 1 && (value >> static_cast<unsigned>((count - 1) * 4)) == 0) {
            --count;
        }
    }
    for (int i = count - 1; i >= 0; --i) {
        *out++ = digits[(value >> static_cast<unsigned>(i * 4)) & 0xFU];
    }
    return out;
}

/// Signed integers are always decimal; unsigned ones follow the radix.
template <class T>
char* WriteInteger(char* out, T value, std::uint64_t flags) {
    if constexpr (std::is_unsigned_v<T>) {
        if ((flags & FORMAT::kHex) != 0) {
            return WriteHex(out, value, HexDigits(flags));
        }
    }
    return std::to_chars(out, out + kLongestScalar, +value).ptr;
}

char* WriteReal(char* out, double value) {
    bool clamped = false;
    char* const end = WriteStreamReal(out, value, clamped);
    if (clamped) {
        LogError(kModule) << "A real outside of 64 bits was clamped: " << value;
    }
    return end;
}

template <class T>
void PutScalar(TokenWriter& token, T value, std::uint64_t flags) {
    char* out = token.Room(kLongestScalar);
    if constexpr (std::is_floating_point_v<T>) {
        out = WriteReal(out, value);
    } else {
        out = WriteInteger(out, value, flags);
    }
    const bool separated = (flags & FORMAT::kSeparated) != 0;
    if constexpr (std::is_same_v<T, std::uint8_t>) {
        // In decimal the blank takes the newline's place.
        const bool hex = (flags & FORMAT::kHex) != 0;
        if ((flags & FORMAT::kByteLines) != 0 && (hex || !separated)) {
            *out++ = '\n';
        }
    }
    if (separated) {
        *out++ = ' ';
    }
    token.Advance(out);
}

/// Bytes as pairs of digits; `counter` breaks the lines of separated data.
void PutHexBytes(TokenWriter& token, std::string_view bytes, std::uint64_t flags,
                 std::uint32_t& counter) {
    const char* const digits = HexDigits(flags);
    const bool separated = (flags & FORMAT::kSeparated) != 0;
    for (const char c : bytes) {
        char* out = WriteHex(token.Room(3), static_cast<std::uint8_t>(c), digits);
        if (separated && ++counter % kBytesPerLine == 0) {
            *out++ = '\n';
        }
        token.Advance(out);
    }
}

/// Of a run of line ends only the last one stays.
void PutHexString(TokenWriter& token, std::string_view text, std::uint64_t flags,
                  std::uint32_t& counter) {
    const auto isLineEnd = [](char c) { return c == '\r' || c == '\n'; };
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool followed = i + 1 < text.size() && isLineEnd(text[i + 1]);
        if (!isLineEnd(text[i]) || !followed) {
            PutHexBytes(token, text.substr(i, 1), flags, counter);
        }
    }
}

void PutEscapedString(TokenWriter& token, std::string_view text) {
    constexpr std::string_view kEscaped = "\b\t\n\f\r()\\";
    for (const char c : text) {
        if (kEscaped.find(static_cast<char>(c & 0x7F)) != std::string_view::npos) {
            token.Put('\\');
        }
        token.Put(c);
    }
}

/// Each line of the text becomes a comment line; a line end at the very end stays as it is.
void PutCommentLines(TokenWriter& token, std::string_view text) {
    const auto isLineEnd = [](char c) { return c == '\r' || c == '\n'; };
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool last = i + 1 == text.size();
        if (!isLineEnd(text[i]) || last) {
            token.Put(text[i]);
        } else if (!isLineEnd(text[i + 1])) {
            token.Put("\n% ");
        }
    }
}

std::string_view AsText(const char* text) {
    return text == nullptr ? std::string_view{} : std::string_view{text};
}

std::string_view AsText(const char* text, std::size_t length) {
    return text == nullptr ? std::string_view{} : std::string_view{text, length};
}

}  // namespace

IPostScriptDataStream* CreatePostscriptDataStream(IO::IDataProvider* provider) {
    auto stream = MakeObject<PostscriptDataStream>();
    return stream->SetDataProvider(provider) == STATUS::kOk ? stream.Detach() : nullptr;
}

Status PostscriptDataStream::SetDataProvider(IO::IDataProvider* provider) {
    mProvider = TInterfacePtr<IO::IDataProvider>(provider);
    return provider == nullptr ? STATUS::kNoProvider : STATUS::kOk;
}

void PostscriptDataStream::GetDataProvider(TInterfacePtr<IO::IDataProvider>& out) {
    out = mProvider;
}

IO::IPacketDataProvider* PostscriptDataStream::GetPacketDataProvider() {
    return FindInterface<IO::IPacketDataProvider>(mProvider.Get(), IO::IID_IPACKETDATAPROVIDER);
}

template <class T>
IPostScriptDataStream& PostscriptDataStream::WriteScalar(T value) {
    TokenWriter token(mProvider.Get());
    PutScalar(token, value, mFlags);
    return *this;
}

IPostScriptDataStream& PostscriptDataStream::operator<<(bool value) {
    TokenWriter token(mProvider.Get());
    token.Put(value ? "true" : "false");
    if ((mFlags & FORMAT::kSeparated) != 0) {
        token.Put(' ');
    }
    return *this;
}

IPostScriptDataStream& PostscriptDataStream::operator<<(double value) {
    return WriteScalar(value);
}

IPostScriptDataStream& PostscriptDataStream::operator<<(float value) {
    return WriteScalar(value);
}

IPostScriptDataStream& PostscriptDataStream::operator<<(std::uint64_t value) {
    return WriteScalar(value);
}

IPostScriptDataStream& PostscriptDataStream::operator<<(std::int64_t value) {
    return WriteScalar(value);
}

IPostScriptDataStream& PostscriptDataStream::operator<<(std::uint32_t value) {
    return WriteScalar(value);
}

IPostScriptDataStream& PostscriptDataStream::operator<<(std::int32_t value) {
    return WriteScalar(value);
}

IPostScriptDataStream& PostscriptDataStream::operator<<(std::uint16_t value) {
    return WriteScalar(value);
}

IPostScriptDataStream& PostscriptDataStream::operator<<(std::int16_t value) {
    return WriteScalar(value);
}

IPostScriptDataStream& PostscriptDataStream::operator<<(std::uint8_t value) {
    return WriteScalar(value);
}

IPostScriptDataStream& PostscriptDataStream::operator<<(std::int8_t value) {
    return WriteScalar(value);
}

IPostScriptDataStream& PostscriptDataStream::operator<<(const GUID& value) {
    TokenWriter token(mProvider.Get());
    PutScalar(token, value.Data1, mFlags);
    PutScalar(token, value.Data2, mFlags);
    PutScalar(token, value.Data3, mFlags);
    for (const std::uint8_t byte : value.Data4) {
        PutScalar(token, byte, mFlags);
    }
    return *this;
}

IPostScriptDataStream& PostscriptDataStream::operator<<(const CoreString& value) {
    TokenWriter token(mProvider.Get());
    for (std::size_t i = 0; i < value.size(); ++i) {
        PutScalar(token, static_cast<std::uint16_t>(value.c_str()[i]), mFlags);
    }
    return *this;
}

IPostScriptDataStream& PostscriptDataStream::operator<<(const char* text) {
    TokenWriter token(mProvider.Get());
    token.Put(AsText(text));
    return *this;
}

IPostScriptDataStream& PostscriptDataStream::WriteBytes(const std::uint8_t* data,
                                                        std::int32_t length) {
    if (data == nullptr || length <= 0) {
        return *this;
    }
    if ((mFlags & FORMAT::kHex) == 0) {
        if (mProvider) {
            mProvider->Write(data, static_cast<std::size_t>(length));
        }
        return *this;
    }
    TokenWriter token(mProvider.Get());
    // The writer reads characters; a byte pointer may be read as such.
    const char* text = static_cast<const char*>(static_cast<const void*>(data));
    PutHexBytes(token, AsText(text, static_cast<std::size_t>(length)), mFlags, mByteCounter);
    return *this;
}

IPostScriptDataStream& PostscriptDataStream::WriteString(const char* text) {
    TokenWriter token(mProvider.Get());
    if ((mFlags & FORMAT::kHex) != 0) {
        token.Put('<');
        PutHexString(token, AsText(text), mFlags, mByteCounter);
        token.Put('>');
    } else {
        token.Put('(');
        PutEscapedString(token, AsText(text));
        token.Put(')');
    }
    return *this;
}

IPostScriptDataStream& PostscriptDataStream::WriteComment(const char* text, std::uint32_t length,
                                                          bool multiline) {
    TokenWriter token(mProvider.Get());
    token.Put("% ");
    if (multiline) {
        PutCommentLines(token, AsText(text, length));
    } else {
        token.Put(AsText(text, length));
    }
    return *this;
}

IPostScriptDataStream& PostscriptDataStream::WriteName(const char* name, std::uint32_t length) {
    TokenWriter token(mProvider.Get());
    token.Put('/');
    if ((mFlags & FORMAT::kHex) != 0) {
        PutHexBytes(token, AsText(name, length), mFlags, mByteCounter);
    } else {
        token.Put(AsText(name, length));
    }
    return *this;
}

IPostScriptDataStream& PostscriptDataStream::ReadBytes(void* buffer, std::int32_t* length) {
    if (mProvider) {
        mProvider->Read(buffer, length);
    } else {
        *length = 0;
    }
    return *this;
}

IPostScriptDataStream& PostscriptDataStream::WriteDataProvider(IO::IDataProvider& source) {
    if (!mProvider || mProvider.Get() == &source) {
        return *this;
    }
    constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();
    const std::int32_t size = source.GetSize();
    // A size at the limit may stand for a larger one: then only the end of the data ends the copy.
    std::int64_t remaining = size == kMost ? std::numeric_limits<std::int64_t>::max() : size;
    std::array<char, 16384> buffer;
    while (remaining > 0) {
        auto count = static_cast<std::int32_t>(
            std::min<std::int64_t>(remaining, static_cast<std::int64_t>(buffer.size())));
        if (source.Read(buffer.data(), &count) != STATUS::kOk || count <= 0) {
            break;
        }
        mProvider->Write(buffer.data(), static_cast<std::size_t>(count));
        remaining -= count;
    }
    return *this;
}

IPostScriptDataStream& PostscriptDataStream::WriteDataStream(IPostScriptDataStream& source) {
    TInterfacePtr<IO::IDataProvider> provider;
    source.GetDataProvider(provider);
    if (!provider) {
        return *this;
    }
    provider->Flush();
    provider->SetPosition(0, IO::Offset::kBegin);
    return WriteDataProvider(*provider);
}

IPostScriptDataStream& PostscriptDataStream::ChangeFlags(std::uint64_t set, std::uint64_t clear) {
    mFlags = (mFlags & ~clear) | set;
    return *this;
}

IPostScriptDataStream& PostscriptDataStream::SetRadix(std::uint64_t radix) {
    if ((mFlags & radix) == 0) {
        mByteCounter = 0;
    }
    return ChangeFlags(radix, FORMAT::kHex | FORMAT::kMode2 | FORMAT::kDecimal);
}

IPostScriptDataStream& PostscriptDataStream::SetHexMode() {
    return SetRadix(FORMAT::kHex);
}

IPostScriptDataStream& PostscriptDataStream::SetMode2() {
    return SetRadix(FORMAT::kMode2);
}

IPostScriptDataStream& PostscriptDataStream::SetDecimalMode() {
    mByteCounter = 0;
    return SetRadix(FORMAT::kDecimal);
}

IPostScriptDataStream& PostscriptDataStream::SetUpperCase() {
    return ChangeFlags(FORMAT::kUpperCase, 0);
}

IPostScriptDataStream& PostscriptDataStream::SetLowerCase() {
    return ChangeFlags(0, FORMAT::kUpperCase);
}

IPostScriptDataStream& PostscriptDataStream::SetSeparated() {
    return ChangeFlags(FORMAT::kSeparated, 0);
}

IPostScriptDataStream& PostscriptDataStream::ClearSeparated() {
    return ChangeFlags(0, FORMAT::kSeparated);
}

IPostScriptDataStream& PostscriptDataStream::SetByteLines() {
    return ChangeFlags(FORMAT::kByteLines, 0);
}

IPostScriptDataStream& PostscriptDataStream::ClearByteLines() {
    return ChangeFlags(0, FORMAT::kByteLines);
}

IPostScriptDataStream& PostscriptDataStream::ClearSeparatedAndByteLines() {
    return ChangeFlags(0, FORMAT::kSeparated | FORMAT::kByteLines);
}

IPostScriptDataStream& PostscriptDataStream::SetSeparatedAndResetCounter() {
    mByteCounter = 0;
    return ChangeFlags(FORMAT::kSeparated, 0);
}

IPostScriptDataStream& PostscriptDataStream::ClearSeparatedAndResetCounter() {
    mByteCounter = 0;
    return ChangeFlags(0, FORMAT::kSeparated);
}

IO::IDataProviderStream& PostscriptDataStream::operator>>(GUID& /*value*/) {
    LogError(kModule) << "Unimplemented";
    return *this;
}

IO::IDataProviderStream& PostscriptDataStream::Reserved1() {
    return *this;
}

IO::IDataProviderStream& PostscriptDataStream::operator>>(CoreString& /*value*/) {
    LogError(kModule) << "Unimplemented";
    return *this;
}

IO::IDataProviderStream& PostscriptDataStream::operator>>(double& /*value*/) {
    LogError(kModule) << "Unimplemented";
    return *this;
}

IO::IDataProviderStream& PostscriptDataStream::operator>>(float& /*value*/) {
    LogError(kModule) << "Unimplemented";
    return *this;
}

IO::IDataProviderStream& PostscriptDataStream::operator>>(bool& /*value*/) {
    LogError(kModule) << "Unimplemented";
    return *this;
}

IO::IDataProviderStream& PostscriptDataStream::operator>>(std::uint64_t& /*value*/) {
    LogError(kModule) << "Unimplemented";
    return *this;
}

IO::IDataProviderStream& PostscriptDataStream::operator>>(std::int64_t& /*value*/) {
    LogError(kModule) << "Unimplemented";
    return *this;
}

IO::IDataProviderStream& PostscriptDataStream::operator>>(std::uint32_t& /*value*/) {
    LogError(kModule) << "Unimplemented";
    return *this;
}

IO::IDataProviderStream& PostscriptDataStream::operator>>(std::int32_t& /*value*/) {
    LogError(kModule) << "Unimplemented";
    return *this;
}

IO::IDataProviderStream& PostscriptDataStream::operator>>(std::uint16_t& /*value*/) {
    LogError(kModule) << "Unimplemented";
    return *this;
}

IO::IDataProviderStream& PostscriptDataStream::operator>>(std::int16_t& /*value*/) {
    LogError(kModule) << "Unimplemented";
    return *this;
}

IO::IDataProviderStream& PostscriptDataStream::operator>>(std::uint8_t& /*value*/) {
    LogError(kModule) << "Unimplemented";
    return *this;
}

IO::IDataProviderStream& PostscriptDataStream::operator>>(std::int8_t& /*value*/) {
    LogError(kModule) << "Unimplemented";
    return *this;
}

IPostScriptDataStream& PostscriptDataStream::operator<<(const IObject& /*value*/) {
    LogError(kModule) << "Unimplemented";
    return *this;
}

IPostScriptDataStream& PostscriptDataStream::operator<<(const IO::IDictionary& /*value*/) {
    LogError(kModule) << "Unimplemented";
    return *this;
}

IPostScriptDataStream& PostscriptDataStream::operator<<(const IO::IArray& /*value*/) {
    LogError(kModule) << "Unimplemented";
    return *this;
}

}  // namespace VANTIX::PS
