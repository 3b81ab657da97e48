// SPDX-License-Identifier: MIT
#include "postscriptconnectionspace/textbuffer.h"

#include <cstdarg>
#include <cstring>

#include "core/libsupport/vlogger/logmessage.h"
#include "postscriptdatastream/formattext.h"

namespace VANTIX::PS {

void TextBuffer::Format(const char* format, ...) {
    // Room for the longest fixed text, so that most pieces are formatted once.
    char piece[1536];
    std::va_list arguments;
    va_start(arguments, format);
    std::va_list again;
    va_copy(again, arguments);
    const std::size_t length = FormatTextList(piece, sizeof piece, format, arguments);
    if (length < sizeof piece) {
        mText.append(piece, length);
    } else {
        const std::size_t before = mText.size();
        mText.resize(before + length + 1);
        FormatTextList(mText.data() + before, length + 1, format, again);
        mText.resize(before + length);
    }
    va_end(again);
    va_end(arguments);
}

void TextBuffer::AppendString(std::string_view bytes) {
    mText += '(';
    for (const char c : bytes) {
        if (c == '\n' || c == '\r') {
            mText += c == '\n' ? "\\n" : "\\r";
            continue;
        }
        if (c == '(' || c == ')' || c == '\\') {
            mText += '\\';
        }
        mText += c;
    }
    mText += ')';
}

std::int32_t TextBuffer::CopyTo(char* buffer, std::int32_t size) const {
    if (buffer == nullptr || size <= 0) {
        return 0;
    }
    if (mText.size() >= static_cast<std::size_t>(size)) {
        LogError("src/postscriptconnectionspace")
            << "Input buffer size " << size << " is smaller than the size (" << mText.size()
            << ") of the color space.";
        *buffer = 0;
        return 0;
    }
    std::memcpy(buffer, mText.c_str(), mText.size() + 1);
    return static_cast<std::int32_t>(mText.size());
}

}  // namespace VANTIX::PS
