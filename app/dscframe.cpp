// SPDX-License-Identifier: MIT
#include "app/dscframe.h"

#include <array>
#include <charconv>
#include <cmath>

namespace VANTIX::APP {
namespace {

/// Longest text after a keyword: the line holds 255 characters (DSC 3.0, section 3).
constexpr std::size_t kTextLimit = 200;

/// A length in points, shortest form without exponent.
std::string Number(float value) {
    std::array<char, 64> buffer{};
    const float finite = std::isfinite(value) ? value : 0.0F;
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), finite,
                                   std::chars_format::fixed);
    return {buffer.data(), end.ptr};
}

/// "0 0 w h" in whole points, and the same exactly where it differs from that.
std::string BoundingBoxes(std::string_view prefix, float width, float height) {
    const std::string start = "%%" + std::string(prefix);
    return start + "BoundingBox: 0 0 " + Number(std::ceil(width)) + ' ' +
           Number(std::ceil(height)) + '\n' + start + "HiResBoundingBox: 0 0 " + Number(width) +
           ' ' + Number(height) + '\n';
}

std::string PageSize(float width, float height) {
    return "<< /PageSize [" + Number(width) + ' ' + Number(height) + "] >> setpagedevice";
}

/// Appends one byte as it stands between parentheses.
void AppendEscaped(std::string& text, unsigned char byte) {
    if (byte == '(' || byte == ')' || byte == '\\') {
        text += '\\';
        text += static_cast<char>(byte);
        return;
    }
    if (byte >= 0x20 && byte < 0x7F) {
        text += static_cast<char>(byte);
        return;
    }
    text += '\\';
    for (const unsigned shift : {6U, 3U, 0U}) {
        text += static_cast<char>('0' + ((byte >> shift) & 7U));
    }
}

/// Bytes of the UTF-8 character that starts at `index`; a stray byte is one of its own.
std::size_t CharacterLength(std::string_view text, std::size_t index) {
    std::size_t length = 1;
    while (length < 4 && index + length < text.size() &&
           (static_cast<unsigned char>(text[index + length]) & 0xC0U) == 0x80U) {
        ++length;
    }
    return length;
}

}  // namespace

std::string DscText(std::string_view text, std::size_t limit) {
    std::string result = "(";
    for (std::size_t index = 0; index < text.size();) {
        const std::size_t length = CharacterLength(text, index);
        std::string character;
        for (const char byte : text.substr(index, length)) {
            AppendEscaped(character, static_cast<unsigned char>(byte));
        }
        if (result.size() + character.size() + 1 > limit) {
            break;
        }
        result += character;
        index += length;
    }
    return result + ')';
}

void DscFrame::Write(std::string_view text) {
    mOut.Write(text.data(), text.size());
}

void DscFrame::WriteHeader(const DocumentSummary& summary) {
    Write("%!PS-Adobe-3.0\n%%Title: " + DscText(summary.title, kTextLimit) + "\n%%Creator: " +
          DscText(summary.creator, kTextLimit) + "\n%%Pages: " + std::to_string(summary.pages) +
          '\n' + BoundingBoxes("", summary.width, summary.height) +
          "%%LanguageLevel: " + std::to_string(summary.languageLevel) + "\n%%DocumentData: " +
          (summary.binary ? "Binary" : "Clean7Bit") + "\n%%PageOrder: Special\n%%EndComments\n");
    Write(
        "%%BeginProlog\n"
        "/setdistillerparams where {pop} {userdict /setdistillerparams /pop load put} ifelse\n"
        "/pdfmark where {pop} {userdict /pdfmark /cleartomark load put} ifelse\n"
        "%%EndProlog\n");
}

void DscFrame::BeginSetup(float width, float height) {
    mWidth = width;
    mHeight = height;
    Write("%%BeginSetup\n" + PageSize(width, height) + '\n');
}

void DscFrame::EndSetup() {
    Write("%%EndSetup\n");
}

void DscFrame::BeginPage(std::string_view label, int ordinal, float width, float height) {
    Write("%%Page: " + DscText(label, kTextLimit) + ' ' + std::to_string(ordinal) + '\n' +
          BoundingBoxes("Page", width, height) + "%%BeginPageSetup\n");
    if (width != mWidth || height != mHeight) {
        mWidth = width;
        mHeight = height;
        Write("currentcolorspace [currentcolor]\n" + PageSize(width, height) +
              "\nexch setcolorspace aload pop setcolor\n");
    }
    Write("%%EndPageSetup\n");
}

void DscFrame::EndPage() {
    Write("gsave showpage grestore\n%%PageTrailer\n");
}

void DscFrame::WriteTrailer() {
    Write("%%Trailer\n");
}

}  // namespace VANTIX::APP
