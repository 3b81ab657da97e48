// SPDX-License-Identifier: MIT
#include "basefontbuilder.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdarg>

#include "core/libsupport/vlogger/logmessage.h"
#include "platform/randomsource.h"
#include "postscriptdatastream/formattext.h"
#include "sfntbuilder_bytes.h"

namespace VANTIX::PS {
namespace {

constexpr const char* kModule = "src/basefontbuilder";
constexpr std::size_t kLongestFontName = 255;
constexpr std::size_t kLongestName = 127;
constexpr std::string_view kDelimiters = "%()/<>[]{}";
/// Bytes that are read of the tables 'head' (the version and the revision) and 'post' (the use of
/// memory).
constexpr std::size_t kHeadBytes = 8;
constexpr std::size_t kPostBytes = 24;

bool IsDelimiter(char c) {
    return kDelimiters.find(c) != std::string_view::npos;
}

class HeaderTableFinder final : public GRAPHICS::ITableFunctor {
public:
    bool operator()(FourCC tag, const std::uint8_t* data, std::uint32_t size) override {
        if (tag == "head"_cc && size >= kHeadBytes) {
            tables.head = {data, size};
        } else if (tag == "post"_cc && size >= kPostBytes) {
            tables.post = {data, size};
        }
        return tables.head.empty() || tables.post.empty();
    }

    HeaderTables tables;
};

}  // namespace

std::string EscapeFontName(std::string_view name) {
    std::string escaped;
    for (const char c : name.substr(0, kLongestFontName)) {
        const int bits = c & 0x7F;
        if (bits < 0x20 || bits == 0x7F || IsDelimiter(c)) {
            std::array<char, 4> code;
            FormatText(code.data(), code.size(), "#%02hhX", static_cast<unsigned char>(c));
            escaped += code.data();
        } else {
            escaped += c;
        }
    }
    return escaped.substr(0, kLongestFontName);
}

bool IsPlainName(std::string_view name) {
    return !name.empty() && name.size() <= kLongestName &&
           std::all_of(name.begin(), name.end(), [](char c) {
               return static_cast<unsigned char>(c) > ' ' && c != 0x7F && !IsDelimiter(c);
           });
}

std::string OneLine(std::string_view text) {
    std::string line(text);
    std::replace_if(
        line.begin(), line.end(), [](char c) { return c == '\n' || c == '\r' || c == '\f'; }, ' ');
    return line;
}

std::string CreationTime() {
    using std::chrono::sys_days;
    constexpr std::array<const char*, 7> kDays = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
    constexpr std::array<const char*, 12> kMonths = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                     "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    constexpr std::int64_t kEndOfYear9999 = 253402300799;
    constexpr std::int64_t kDay = 86400;
    const std::int64_t now = std::clamp<std::int64_t>(PLATFORM::Now(), 0, kEndOfYear9999);
    const sys_days day{std::chrono::days{static_cast<int>(now / kDay)}};
    const std::chrono::year_month_day date{day};
    const auto monthDay = static_cast<unsigned>(date.day());
    const auto second = static_cast<unsigned>(now % kDay);
    std::array<char, 32> text;
    FormatText(text.data(), text.size(), "%s %s %s%u %02u:%02u:%02u %d\n",
               kDays[std::chrono::weekday{day}.c_encoding()],
               kMonths[static_cast<unsigned>(date.month()) - 1], monthDay < 10 ? " " : "", monthDay,
               second / 3600, second / 60 % 60, second % 60, static_cast<int>(date.year()));
    return text.data();
}

HeaderTables FindHeaderTables(const GRAPHICS::IT42Ancillary& font) {
    HeaderTableFinder finder;
    font.EnumerateTables(finder);
    return finder.tables;
}

bool BaseFontEncodingFunctor::operator()(std::int32_t code, const char* name) {
    if (name != nullptr && IsPlainName(name) && code >= 0 && code <= 255) {
        std::array<char, kLongestName + 32> text;
        FormatText(text.data(), text.size(), "dup %d /%s put\n", code, name);
        mStream << text.data();
    }
    return true;
}

bool FontResourceBuilder::Begin(GRAPHICS::IFontPackageHandler* handler, const char* name,
                                IO::IPacketDataProvider& packet, const Complaints& complaints) {
    if (handler == nullptr) {
        LogError(complaints.module) << complaints.noFont;
        return false;
    }
    mHandler = TInterfacePtr<GRAPHICS::IFontPackageHandler>(handler);
    mStream = TInterfacePtr<IPostScriptDataStream>::Adopt(CreatePostscriptDataStream(&packet));
    if (!mStream) {
        LogError(complaints.module) << complaints.noStream;
        return false;
    }
    mName = EscapeFontName(name == nullptr ? handler->GetName() : name);
    mStream->SetSeparated();
    return true;
}

const char* FontResourceBuilder::GetFontName() const {
    return mName.c_str();
}

IPostScriptDataStream* FontResourceBuilder::GetStream() {
    return mStream.Get();
}

void FontResourceBuilder::Print(const char* format, ...) {
    std::array<char, kMostText> text;
    std::va_list arguments;
    va_start(arguments, format);
    FormatTextList(text.data(), text.size(), format, arguments);
    va_end(arguments);
    Stream() << text.data();
}

void FontResourceBuilder::WriteNameString(std::string_view name) {
    Stream().WriteString(EscapeFontName(name).c_str());
}

void FontResourceBuilder::BeginFontInfo() {
    const GRAPHICS::IFontPackageHandler& font = *mHandler;
    const auto writeString = [this](const char* key, const char* text, bool always) {
        if (always || *text != '\0') {
            Stream() << key;
            Stream().WriteString(text) << " readonly def\n";
        }
    };
    Stream() << "/FontInfo 9 dict dup begin\n";
    writeString("/FamilyName ", font.GetFamilyName(), true);
    writeString("/FullName ", font.GetFamilyName(), true);
    writeString("/Notice ", font.GetNoticeString(), false);
    Stream() << "/Weight (Regular) readonly def\n";
    writeString("/version ", font.GetVersionString(), false);
    Print(
        "/ItalicAngle %g def\n/isFixedPitch %s def\n/UnderlinePosition %g def\n"
        "/UnderlineThickness %g def\n",
        static_cast<double>(font.GetItalicAngle()), font.IsFixedPitch() ? "true" : "false",
        static_cast<double>(font.GetUnderlinePosition()),
        static_cast<double>(font.GetUnderlineThickness()));
}

bool FontResourceBuilder::BeginEncoding(const GRAPHICS::IFontPackageHandler& handler) {
    switch (handler.GetEncoding()) {
        case GRAPHICS::TEncoding::kStandard:
            Stream() << "/Encoding StandardEncoding ";
            return false;
        case GRAPHICS::TEncoding::kISOLatin1:
            Stream() << "/Encoding ISOLatin1Encoding ";
            return false;
        default:
            Stream() << "/Encoding 256 array\n"
                     << "0 1 255 {1 index exch /.notdef put} for\n";
            return true;
    }
}

void FontResourceBuilder::BeginRedefinition(const char* source, const char* name) {
    Stream() << "%%Re-defining font ";
    WriteNameString(source);
    Stream() << " as ";
    WriteNameString(name);
    Stream() << "\n";
    WriteNameString(source);
    Stream() << " cvn findfont dup length dict begin {1 index pop def} forall\n"
             << "/FontName ";
    WriteNameString(name);
    Stream() << " cvn def\n";
}

void FontResourceBuilder::EndRedefinition(const char* name) {
    Stream() << "currentdict end\n";
    WriteNameString(name);
    Stream() << " cvn exch definefont pop\n";
}

bool BaseFontBuilder::Init(GRAPHICS::IFontPackageHandler* handler, const char* name,
                           IO::IPacketDataProvider& packet) {
    return Begin(handler, name, packet,
                 {kModule, "Initializing FontBuilder with NULL canonical font?",
                  "Failed to create font stream for FontBuilder!"});
}

void BaseFontBuilder::WriteBeginResource() {
    Print("%%%%BeginResource: font %s\n", GetFontName());
}

bool BaseFontBuilder::WriteFontDictionary() {
    Stream() << "25 dict dup begin\n";
    switch (mType) {
        case FontDictionaryType::kType1:
            Stream() << "/FontType 1 def\n";
            break;
        case FontDictionaryType::kType42:
            Stream() << "/FontType 42 def\n";
            break;
        case FontDictionaryType::kType3:
            Stream() << "/FontType 3 def\n";
            break;
        default:
            LogError(kModule) << "Encountered new PS Font type " << static_cast<std::int32_t>(mType)
                              << " to handle";
            return false;
    }
    if (!WriteFontMatrix()) {
        return false;
    }
    Stream() << "/FontName ";
    WriteNameString(GetFontName());
    Stream() << " def\n";
    BeginFontInfo();
    Stream() << "end readonly def\n";
    WriteEncoding(*Handler());
    return WriteFontBBox() && WriteTypeSpecificEntries();
}

void BaseFontBuilder::WriteEncoding(GRAPHICS::IFontPackageHandler& handler) {
    if (BeginEncoding(handler)) {
        SetEncodingDifferences(&handler);
    }
    Stream() << "readonly def\n";
}

void BaseFontBuilder::WriteHandlerMatrix() {
    const float* matrix = Handler()->GetFontMatrix();
    if (matrix == nullptr) {
        Stream() << "/FontMatrix [1 0 0 1 0 0] def\n";
        return;
    }
    // The handler's order is a c b d e f.
    Stream() << "/FontMatrix [ ";
    for (const std::size_t index : {0U, 2U, 1U, 3U, 4U, 5U}) {
        Stream() << matrix[index];
    }
    Stream() << "] def\n";
}

bool BaseFontBuilder::WriteFontMatrix() {
    WriteHandlerMatrix();
    return true;
}

bool BaseFontBuilder::WriteFontBBox() {
    Stream() << "/FontBBox [0 0 0 0] readonly def\n";
    return true;
}

bool BaseFontBuilder::WriteTypeSpecificEntries() {
    return true;
}

void BaseFontBuilder::WriteMemoryUse(std::span<const std::uint8_t> post) {
    constexpr std::size_t kMinimum = 16;
    constexpr std::size_t kMaximum = 20;
    if (!post.empty()) {
        Stream() << "%%VMusage: " << ReadU32(&post[kMinimum]) << ReadU32(&post[kMaximum]) << "\n";
    }
}

}  // namespace VANTIX::PS
