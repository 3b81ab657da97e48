// SPDX-License-Identifier: MIT
#include "host/fonts/type1reader.h"

#include <algorithm>
#include <cmath>

#include "host/fonts/eexec.h"
#include "host/fonts/glyphnames.h"
#include "host/fonts/postscriptscanner.h"

namespace VANTIX::HOST {
namespace {

using Kind = PostScriptToken::Kind;

constexpr std::size_t kLeadBytes = 4;
constexpr std::size_t kMostSubroutines = 65536;
constexpr std::size_t kMostGlyphs = 65536;
constexpr std::size_t kMostCharString = 65536;

/// The bytes of a PFB file without the headers of its segments; others as they are.
std::string WithoutSegments(const std::vector<std::uint8_t>& bytes) {
    constexpr std::uint8_t kMarker = 0x80;
    constexpr std::size_t kHeader = 6;
    std::string joined;
    std::size_t position = 0;
    while (position + kHeader <= bytes.size() && bytes[position] == kMarker &&
           (bytes[position + 1] == 1 || bytes[position + 1] == 2)) {
        std::size_t length = 0;
        for (std::size_t byte = kHeader; byte > 2; --byte) {
            length = length << 8U | bytes[position + byte - 1];
        }
        position += kHeader;
        length = std::min(length, bytes.size() - position);
        joined.append(bytes.begin() + static_cast<std::ptrdiff_t>(position),
                      bytes.begin() + static_cast<std::ptrdiff_t>(position + length));
        position += length;
    }
    return position == 0 ? std::string(bytes.begin(), bytes.end()) : joined;
}

/// Takes the zeros and the "cleartomark" from the end of the encrypted part. Binary data that ends
/// in such bytes loses none that the program needs: it ends behind "closefile".
std::string_view WithoutTrailer(std::string_view encrypted) {
    constexpr std::size_t kZeros = 512;
    const std::size_t mark = encrypted.rfind("cleartomark");
    if (mark == std::string_view::npos) {
        return encrypted;
    }
    std::size_t end = mark;
    for (std::size_t zeros = 0; end > 0 && zeros <= kZeros; --end) {
        const char last = encrypted[end - 1];
        if (last == '0') {
            ++zeros;
        } else if (last != '\r' && last != '\n' && last != ' ') {
            break;
        }
    }
    return encrypted.substr(0, end);
}

/// Reads up to six numbers of an array or procedure. False unless there are as many as `numbers`.
template <std::size_t Count>
bool ReadNumbers(PostScriptScanner& scanner, std::array<float, Count>& numbers) {
    const PostScriptToken open = scanner.Next();
    if (!open.Is("[") && !open.Is("{")) {
        return false;
    }
    std::array<float, Count> read{};
    for (float& number : read) {
        const PostScriptToken token = scanner.Next();
        number = static_cast<float>(token.number);
        if (token.kind != Kind::kNumber || !std::isfinite(number)) {
            return false;
        }
    }
    numbers = read;
    return true;
}

/// The names of "[/a /b ...]", the bracket just read.
void ReadNameArray(PostScriptScanner& scanner, std::array<std::string, kSimpleCodes>& names) {
    for (std::string& name : names) {
        const PostScriptToken token = scanner.Next();
        if (token.kind != Kind::kLiteral) {
            return;
        }
        name = SanitiseGlyphName(token.text);
    }
}

/// The entries of "256 array ... dup 65 /A put ... def".
void ReadPutEntries(PostScriptScanner& scanner, std::array<std::string, kSimpleCodes>& names) {
    PostScriptToken last;
    for (PostScriptToken token = scanner.Next(); token.kind != Kind::kEnd; token = scanner.Next()) {
        if (token.Is("def") || token.Is("readonly") || token.Is("eexec")) {
            return;
        }
        if (token.Is("{")) {
            scanner.SkipProcedure();
        }
        if (token.kind == Kind::kLiteral && last.IsInteger() && last.number >= 0 &&
            last.number < kSimpleCodes) {
            names.at(static_cast<std::size_t>(last.number)) = SanitiseGlyphName(token.text);
        }
        last = token;
    }
}

void ReadEncoding(PostScriptScanner& scanner, std::array<std::string, kSimpleCodes>& names) {
    const PostScriptToken token = scanner.Next();
    names = {};
    if (token.Is("StandardEncoding")) {
        const auto& standard = NamesOf(BaseEncoding::kStandard);
        std::copy(standard.begin(), standard.end(), names.begin());
    } else if (token.Is("[")) {
        ReadNameArray(scanner, names);
    } else if (token.kind == Kind::kNumber) {
        ReadPutEntries(scanner, names);
    }
    std::replace(names.begin(), names.end(), std::string(".notdef"), std::string());
}

/// Reads /CharStrings and /Subrs of the decrypted text, whatever else stands there.
class PrivateReader {
public:
    PrivateReader(std::string_view plain, Type1Private& result)
        : mPlain(plain), mScanner(plain), mResult(result) {}

    bool Read() {
        for (mToken = mScanner.Next(); mToken.kind != Kind::kEnd;) {
            const PostScriptToken token = mToken;
            mToken = mScanner.Next();
            if (token.Is("closefile")) {
                mResult.isClosed = true;
                mResult.end = token.end;
                break;
            }
            if (!Take(token)) {
                return false;
            }
        }
        if (mResult.end == 0) {
            mResult.end = std::max(mDefined, mResult.glyphSection.end);
        }
        return !mResult.glyphs.empty();
    }

private:
    bool Take(const PostScriptToken& token) {
        if (token.Is("{")) {
            // Scanned anew: the token ahead is inside.
            mScanner.MoveTo(token.end);
            mScanner.SkipProcedure();
            mToken = mScanner.Next();
        } else if (token.Is("definefont") && !mResult.glyphs.empty()) {
            mResult.isDefined = true;
            mDefined = token.end;
        } else if (token.kind == Kind::kLiteral && mToken.IsInteger()) {
            if (token.text == "lenIV") {
                mResult.lenIV = static_cast<std::int32_t>(std::clamp(mToken.number, -1.0, 64.0));
            } else if (token.text == "Subrs") {
                return ReadSubroutines();
            } else if (token.text == "CharStrings") {
                return ReadGlyphs();
            }
        }
        return true;
    }

    /// With the number ahead that tells the size, and the data behind one space after the next
    /// token, whose name is the program's choice.
    bool ReadData(Type1Entry& entry) {
        const PostScriptToken size = mToken;
        const PostScriptToken read = mScanner.Next();
        if (!size.IsInteger() || size.number < 0 || size.number >= kMostCharString ||
            read.kind != Kind::kName) {
            return false;
        }
        const auto length = static_cast<std::size_t>(size.number);
        const std::size_t first = read.end + 1;
        if (first > mPlain.size() || length > mPlain.size() - first) {
            return false;
        }
        entry.length = {size.begin, size.end};
        entry.data = {first, first + length};
        mScanner.MoveTo(entry.data.end);
        mToken = mScanner.Next();
        return true;
    }

    /// "/Subrs n array dup i length RD ... NP ... ND"
    bool ReadSubroutines() {
        if (!mResult.subroutines.empty()) {
            return false;  // one set for each resolution
        }
        mToken = mScanner.Next();
        if (!mToken.Is("array")) {
            return true;
        }
        mToken = mScanner.Next();
        while (mToken.Is("dup")) {
            Type1Entry entry;
            entry.whole.begin = mToken.begin;
            const PostScriptToken number = mScanner.Next();
            mToken = mScanner.Next();
            if (!number.IsInteger() || number.number < 0 || number.number >= kMostSubroutines ||
                !ReadData(entry)) {
                return false;
            }
            entry.number = static_cast<std::size_t>(number.number);
            // "NP", "|" or "noaccess put"
            while (mToken.kind == Kind::kName && !mToken.Is("dup") && !mToken.Is("ND") &&
                   !mToken.Is("|-") && !mToken.Is("def")) {
                mToken = mScanner.Next();
            }
            entry.whole.end = mToken.begin;
            mResult.subroutines.push_back(entry);
        }
        return true;
    }

    /// "/CharStrings n dict dup begin /a length RD ... ND ... end"
    bool ReadGlyphs() {
        if (!mResult.glyphs.empty()) {
            return false;
        }
        mResult.glyphCount = {mToken.begin, mToken.end};
        while (!mToken.Is("begin") && mToken.kind != Kind::kLiteral && mToken.kind != Kind::kEnd) {
            mToken = mScanner.Next();
        }
        if (mToken.Is("begin")) {
            mToken = mScanner.Next();
        }
        mResult.glyphSection = {mToken.begin, mToken.begin};
        while (mToken.kind == Kind::kLiteral && mResult.glyphs.size() < kMostGlyphs) {
            Type1Entry entry;
            entry.whole.begin = mToken.begin;
            entry.named = {mToken.begin + 1, mToken.end};
            entry.name = SanitiseGlyphName(mToken.text);
            mToken = mScanner.Next();
            if (!ReadData(entry)) {
                mToken = {};  // cut short
                return true;
            }
            while (mToken.kind == Kind::kName && !mToken.Is("end")) {
                mToken = mScanner.Next();
            }
            entry.whole.end = mToken.begin;
            mResult.glyphSection.end = mToken.begin;
            mResult.glyphs.push_back(std::move(entry));
        }
        return mToken.Is("end") || mToken.kind == Kind::kEnd;
    }

    std::string_view mPlain;
    PostScriptScanner mScanner;
    PostScriptToken mToken;  ///< the one ahead
    std::size_t mDefined = 0;
    Type1Private& mResult;
};

}  // namespace

bool SplitType1(const std::vector<std::uint8_t>& bytes, Type1Text& text, std::string& problem) {
    constexpr std::size_t kMostGarbage = 1024;
    const std::string joined = WithoutSegments(bytes);
    const std::size_t start = joined.find("%!");
    if (start > kMostGarbage) {  // or nowhere
        problem = "it does not start as a Type 1 font";
        return false;
    }
    const std::string_view whole = std::string_view(joined).substr(start);
    PostScriptScanner scanner(whole);
    PostScriptToken token = scanner.Next();
    while (token.kind != Kind::kEnd && !token.Is("eexec")) {
        token = scanner.Next();
    }
    if (token.kind == Kind::kEnd) {
        problem = "it has no encrypted part";
        return false;
    }
    text.clear = whole.substr(0, token.end);
    std::string_view encrypted = whole.substr(token.end);
    encrypted.remove_prefix(std::min(encrypted.find_first_not_of(" \t\r\n"), encrypted.size()));
    encrypted = WithoutTrailer(encrypted);
    text.encrypted = IsHexadecimal(encrypted) ? BytesOfDigits(encrypted) : std::string(encrypted);
    text.plain = DecryptType1(text.encrypted, kEexecKey, kLeadBytes);
    return true;
}

Type1Header ReadType1Header(std::string_view clear) {
    Type1Header header;
    PostScriptScanner scanner(clear);
    for (PostScriptToken token = scanner.Next(); token.kind != Kind::kEnd; token = scanner.Next()) {
        if (token.kind != Kind::kLiteral) {
            continue;
        }
        if (token.text == "FontName") {
            const PostScriptToken name = scanner.Next();
            if (name.kind == Kind::kLiteral) {
                header.name = name.text;
            }
        } else if (token.text == "Encoding") {
            ReadEncoding(scanner, header.encoding);
        } else if (token.text == "FontMatrix") {
            std::array<float, 6> matrix{};
            if (ReadNumbers(scanner, matrix) && matrix[0] * matrix[3] != matrix[1] * matrix[2]) {
                header.matrix = matrix;
            }
        } else if (token.text == "FontBBox") {
            std::array<float, 4> box{};
            if (ReadNumbers(scanner, box)) {
                header.box = {box[0], box[1], box[2] - box[0], box[3] - box[1]};
            }
        }
    }
    return header;
}

std::vector<TextRange> FindOwnName(std::string_view text, std::string_view name) {
    std::vector<TextRange> places;
    PostScriptScanner scanner(text);
    PostScriptToken last;
    for (PostScriptToken token = scanner.Next(); token.kind != Kind::kEnd;) {
        const PostScriptToken next = scanner.Next();
        const bool isNamed = last.kind == Kind::kLiteral && last.text == "FontName";
        if (token.kind == Kind::kLiteral && token.text == name &&
            (isNamed || next.Is("known") || next.Is("findfont") || next.Is("definefont"))) {
            places.push_back({token.begin + 1, token.end});
        }
        last = token;
        token = next;
    }
    return places;
}

TextRange FindDefinitionGuard(std::string_view clear) {
    PostScriptScanner scanner(clear);
    const PostScriptToken directory = scanner.Next();
    if (!directory.Is("FontDirectory") || scanner.Next().kind != Kind::kLiteral ||
        !scanner.Next().Is("known")) {
        return {};
    }
    for (int procedure = 0; procedure < 2; ++procedure) {
        if (!scanner.Next().Is("{")) {
            return {};
        }
        scanner.SkipProcedure();
    }
    const PostScriptToken last = scanner.Next();
    // The font's own dictionary comes next; else the program takes what this leaves on the stack.
    const bool isAlone = last.Is("ifelse") && scanner.Next().kind == Kind::kNumber;
    return isAlone ? TextRange{directory.begin, last.end} : TextRange{};
}

std::string Type1Private::Decrypted(std::string_view plain, const TextRange& data) const {
    const std::string_view charString = data.Of(plain);
    if (lenIV < 0) {
        return std::string(charString);
    }
    return DecryptType1(charString, kCharStringKey, static_cast<std::size_t>(lenIV));
}

std::string Type1Private::Encrypted(std::string_view charString) const {
    if (lenIV < 0) {
        return std::string(charString);
    }
    std::string lead(static_cast<std::size_t>(lenIV), '\0');
    return EncryptType1(lead.append(charString), kCharStringKey);
}

bool ReadType1Private(std::string_view plain, Type1Private& result) {
    return PrivateReader(plain, result).Read();
}

}  // namespace VANTIX::HOST
