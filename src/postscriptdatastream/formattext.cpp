// SPDX-License-Identifier: MIT
#include "postscriptdatastream/formattext.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "core/libsupport/vlogger/logmessage.h"
#include "postscriptdatastream/realtext.h"

namespace VANTIX::PS {
namespace {

/// The caller's buffer: keeps what fits and counts what the whole text needs.
class BoundedText {
public:
    BoundedText(char* buffer, std::size_t size)
        : mBuffer(buffer), mRoom(buffer == nullptr || size == 0 ? 0 : size - 1) {}

    void Put(const char* text, std::size_t count) {
        if (mLength < mRoom) {
            std::memcpy(mBuffer + mLength, text, std::min(count, mRoom - mLength));
        }
        mLength += count;
    }

    void Fill(char c, std::size_t count) {
        if (mLength < mRoom) {
            std::memset(mBuffer + mLength, c, std::min(count, mRoom - mLength));
        }
        mLength += count;
    }

    [[nodiscard]] std::size_t Length() const { return mLength; }

    void Terminate(std::size_t size) {
        if (mBuffer != nullptr && size != 0) {
            mBuffer[std::min(mLength, mRoom)] = '\0';
        }
    }

private:
    char* mBuffer;
    std::size_t mRoom;
    std::size_t mLength = 0;
};

/// One conversion of the format: "%", a "0" flag, a width, a precision, a length, a letter.
struct Conversion {
    bool zeroFill = false;
    std::size_t width = 0;
    int precision = -1;
    /// Bytes of the integer argument.
    std::size_t bytes = sizeof(int);
    char letter = '\0';
};

/// The bound keeps a mistaken format from growing the text without end.
const char* ReadNumber(const char* format, int& number) {
    constexpr int kMaxNumber = 4096;
    number = 0;
    for (; *format >= '0' && *format <= '9'; ++format) {
        number = std::min(number * 10 + (*format - '0'), kMaxNumber);
    }
    return format;
}

/// Reads the conversion behind a "%"; answers what follows it.
const char* ReadConversion(const char* format, Conversion& conversion) {
    if (*format == '0') {
        conversion.zeroFill = true;
        ++format;
    }
    int width = 0;
    format = ReadNumber(format, width);
    conversion.width = static_cast<std::size_t>(width);
    if (*format == '.') {
        format = ReadNumber(format + 1, conversion.precision);
    }
    if (format[0] == 'h') {
        conversion.bytes = format[1] == 'h' ? 1 : 2;
        format += format[1] == 'h' ? 2 : 1;
    } else if (format[0] == 'l') {
        conversion.bytes = 8;
        format += format[1] == 'l' ? 2 : 1;
    }
    conversion.letter = *format;
    return *format == '\0' ? format : format + 1;
}

/// Writes a number's text, filled on the left; zeros go behind the sign.
void PutNumber(BoundedText& out, const Conversion& conversion, const char* text, const char* end) {
    const auto count = static_cast<std::size_t>(end - text);
    const std::size_t fill = conversion.width > count ? conversion.width - count : 0;
    const std::size_t sign = conversion.zeroFill && *text == '-' ? 1 : 0;
    out.Put(text, sign);
    out.Fill(conversion.zeroFill ? '0' : ' ', fill);
    out.Put(text + sign, count - sign);
}

void PutSigned(BoundedText& out, const Conversion& conversion, std::int64_t value) {
    std::array<char, 24> text;
    PutNumber(out, conversion, text.data(), std::to_chars(text.begin(), text.end(), value).ptr);
}

void PutUnsigned(BoundedText& out, const Conversion& conversion, std::uint64_t value) {
    std::array<char, 24> text;
    const int base = conversion.letter == 'u' ? 10 : 16;
    char* const end = std::to_chars(text.begin(), text.end(), value, base).ptr;
    if (conversion.letter == 'X') {
        std::transform(text.begin(), end, text.begin(),
                       [](char c) { return c >= 'a' ? static_cast<char>(c - 'a' + 'A') : c; });
    }
    PutNumber(out, conversion, text.data(), end);
}

void PutReal(BoundedText& out, const Conversion& conversion, double value) {
    if (!std::isfinite(value)) {
        LogError("src/postscriptdatastream") << "A real that is no finite number was written as 0";
        value = 0;
    }
    std::array<char, kRealTextBytes> text;
    const int precision = conversion.precision < 0 ? 6 : conversion.precision;
    char* const end = conversion.letter == 'f' ? WriteFixedReal(text.data(), value, precision)
                                               : WriteGeneralReal(text.data(), value, precision);
    PutNumber(out, conversion, text.data(), end);
}

void PutString(BoundedText& out, const Conversion& conversion, const char* text) {
    std::string_view string = text == nullptr ? "" : text;
    if (conversion.precision >= 0) {
        string = string.substr(0, static_cast<std::size_t>(conversion.precision));
    }
    out.Fill(' ', conversion.width > string.size() ? conversion.width - string.size() : 0);
    out.Put(string.data(), string.size());
}

/// An argument list that functions can take from in turn.
struct Arguments {
    std::va_list list;
};

std::int64_t TakeSigned(Arguments& arguments, std::size_t bytes) {
    if (bytes == 8) {
        return va_arg(arguments.list, std::int64_t);
    }
    const int value = va_arg(arguments.list, int);
    if (bytes == 4) {
        return value;
    }
    return bytes == 2 ? static_cast<std::int16_t>(value) : static_cast<std::int8_t>(value);
}

std::uint64_t TakeUnsigned(Arguments& arguments, std::size_t bytes) {
    if (bytes == 8) {
        return va_arg(arguments.list, std::uint64_t);
    }
    const unsigned value = va_arg(arguments.list, unsigned);
    if (bytes == 4) {
        return value;
    }
    return bytes == 2 ? static_cast<std::uint16_t>(value) : static_cast<std::uint8_t>(value);
}

/// False for a letter that is not understood: the argument's kind is then unknown.
bool PutConversion(BoundedText& out, const Conversion& conversion, Arguments& arguments) {
    switch (conversion.letter) {
        case '%':
            out.Put("%", 1);
            return true;
        case 's':
            PutString(out, conversion, va_arg(arguments.list, const char*));
            return true;
        case 'c':
            out.Fill(static_cast<char>(va_arg(arguments.list, int)), 1);
            return true;
        case 'd':
        case 'i':
            PutSigned(out, conversion, TakeSigned(arguments, conversion.bytes));
            return true;
        case 'u':
        case 'x':
        case 'X':
            PutUnsigned(out, conversion, TakeUnsigned(arguments, conversion.bytes));
            return true;
        case 'f':
        case 'g':
            PutReal(out, conversion, va_arg(arguments.list, double));
            return true;
        default:
            return false;
    }
}

}  // namespace

std::size_t FormatTextList(char* buffer, std::size_t size, const char* format,
                           std::va_list arguments) {
    BoundedText out(buffer, size);
    Arguments list;
    va_copy(list.list, arguments);
    while (*format != '\0') {
        const std::size_t plain = std::strcspn(format, "%");
        out.Put(format, plain);
        format += plain;
        if (*format == '\0') {
            break;
        }
        Conversion conversion;
        format = ReadConversion(format + 1, conversion);
        if (!PutConversion(out, conversion, list)) {
            LogError("src/postscriptdatastream") << "Unknown conversion in a format";
            break;
        }
    }
    va_end(list.list);
    out.Terminate(size);
    return out.Length();
}

std::size_t FormatText(char* buffer, std::size_t size, const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    const std::size_t length = FormatTextList(buffer, size, format, arguments);
    va_end(arguments);
    return length;
}

}  // namespace VANTIX::PS
