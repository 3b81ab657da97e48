// SPDX-License-Identifier: MIT
#include "t1fontbuilder.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdarg>
#include <cstring>
#include <string>
#include <string_view>

#include "core/libsupport/vlogger/logmessage.h"
#include "postscriptdatastream/formattext.h"
#include "t2tot1charstringconverter.h"

namespace VANTIX::PS {
namespace {

constexpr const char* kModule = "src/t1fontbuilder";
/// Zeros between the encrypted part and "cleartomark".
constexpr std::size_t kEndZeros = 512;
constexpr std::array<std::uint8_t, kEndZeros> kZeros{};
/// Charstrings from this length on are converted again with whole coordinates.
constexpr std::int32_t kTooLarge = 66561;

constexpr const char* kPrivateStart =
    "dup /Private\n16 dict dup begin\n"
    "/RD {string currentfile exch readstring pop} executeonly def\n"
    "/ND {noaccess def} executeonly def\n"
    "/NP {noaccess put}executeonly def\n";

// Hint replacement by the interpreter, where it can (Adobe Type 1 Font Format, 8.3).
constexpr const char* kPrivateEnd =
    "/StemSnapH [ ] def\n"
    "/StemSnapV [ ] def\n"
    "/MinFeature {16 16} def\n"
    "/password 5839 def\n"
    "/lenIV 0 def\n"
    "% Copyright (c) 1987-1990 Adobe Systems Incorporated.\n"
    "% All Rights Reserved.\n"
    "/OtherSubrs [\n {} {} {} \n"
    "{\n"                                              // subr#
    "systemdict /internaldict known not\n"             // subr# bool
    "{pop 3}\n"                                        // 3
    "{1183615869 systemdict /internaldict get exec\n"  // subr# internal
    "dup /startlock known\n"                           // subr# internal bool
    "{/startlock get exec}\n"                          // subr#
    "{dup /strtlck known\n"                            // subr# internal bool
    "{/strtlck get exec}\n"                            // subr#
    "{pop 3}\n"                                        // subr# 3
    "ifelse}\n"
    "ifelse}\n"
    "ifelse\n"
    "} executeonly\n"
    "] noaccess def \n"
    "put\n";

bool IsOneOf(std::uint8_t byte, std::string_view set) {
    return set.find(static_cast<char>(byte)) != std::string_view::npos;
}

/// How many bytes are left without those of `set` at the end.
std::size_t TrimmedSize(std::span<const std::uint8_t> bytes, std::string_view set) {
    const auto last = std::find_if_not(bytes.rbegin(), bytes.rend(),
                                       [set](std::uint8_t byte) { return IsOneOf(byte, set); });
    return static_cast<std::size_t>(bytes.rend() - last);
}

/// What the end of a Type 1 program lacks.
struct MissingEnd {
    bool mark = false;
    std::size_t zeros = 0;
};

MissingEnd FindMissingEnd(std::span<const std::uint8_t> program) {
    using namespace std::string_view_literals;
    constexpr auto kMark = "cleartomark"sv;
    const auto body = program.first(TrimmedSize(program, "\0\t\n\r "sv));
    if (body.size() >= kMark.size()) {
        const auto last = body.last(kMark.size());
        if (std::equal(kMark.begin(), kMark.end(), last.begin())) {
            return {};
        }
    }
    const auto zeros = program.first(TrimmedSize(program, "\t\n\r "sv));
    const std::size_t found = zeros.size() - TrimmedSize(zeros, "\0"sv);
    return {true, kEndZeros - std::min(found, kEndZeros)};
}

std::int32_t RoundedWidth(float width) {
    return std::isfinite(width) && std::abs(width) < 1e6F
               ? static_cast<std::int32_t>(std::lround(width))
               : 0;
}

}  // namespace

/// Called for each glyph name while /CharStrings is written.
class T1FontBuilder::TrueTypeToT1CharStringFunctor final : public GRAPHICS::IGlyphFunctor {
public:
    TrueTypeToT1CharStringFunctor(T1FontBuilder& builder, IPostScriptDataStream& out)
        : mBuilder(builder), mOut(out) {}

    bool operator()(const char* name, std::int32_t nameLength, std::uint16_t index,
                    const GRAPHICS::IGlyphRecording* recording) override;

    [[nodiscard]] std::int32_t LongestLength() const { return mLongest; }

private:
    T1FontBuilder& mBuilder;
    IPostScriptDataStream& mOut;
    std::int32_t mLongest = 0;
};

bool T1FontBuilder::TrueTypeToT1CharStringFunctor::operator()(
    const char* name, std::int32_t /*nameLength*/, std::uint16_t /*index*/,
    const GRAPHICS::IGlyphRecording* recording) {
    if (name == nullptr) {
        LogError(kModule) << "Wanna add NULL glyph name in T1 font char string?";
        return true;
    }
    if (recording == nullptr) {
        LogError(kModule) << "Unable to get Glyph recorder for glyph " << name;
        return true;
    }
    T1CharStringConnectionspace space(recording->GetAdvanceWidth(), mBuilder.mScale);
    const bool whole = space.Record(*recording);
    const auto charString = space.GetCharString();
    if (!whole || charString.empty() || !IsPlainName(name)) {
        LogNotice(kModule) << "CharString entry not added for glyph " << name
                           << ", seems to be a ZERO contour/points glyph?";
        return true;
    }
    mLongest = std::max(mLongest, mBuilder.WriteCharString(mOut, name, charString));
    return true;
}

/// Called for each charstring of a CFF font while /CharStrings is written.
class T1FontBuilder::T2ToT1CharStringFunctor final : public GRAPHICS::ICharStringFunctor {
public:
    T2ToT1CharStringFunctor(T1FontBuilder& builder, IPostScriptDataStream& out,
                            const GRAPHICS::ICFFAncillary& font)
        : mBuilder(builder), mOut(out), mFont(font) {}

    bool operator()(const char* name, const GRAPHICS::CharString& charString) override {
        if (name != nullptr && IsPlainName(name)) {
            const auto converted = mConverter.ConvertGlyph(charString, 0, &mFont);
            mLongest = converted.empty()
                           ? mLongest
                           : std::max(mLongest, mBuilder.WriteCharString(mOut, name, converted));
        }
        return true;
    }

    [[nodiscard]] std::int32_t LongestLength() const { return mLongest; }

private:
    T1FontBuilder& mBuilder;
    IPostScriptDataStream& mOut;
    const GRAPHICS::ICFFAncillary& mFont;
    T2ToT1CharStringConverter mConverter;
    std::int32_t mLongest = 0;
};

std::int32_t T1FontBuilder::WriteCharString(IPostScriptDataStream& out, const char* name,
                                            std::span<const std::uint8_t> charString) {
    const auto length = static_cast<std::int32_t>(charString.size());
    PrintEncrypted(out, "/%s %d RD ", name, length);
    WriteEncrypted(out, charString);
    PrintEncrypted(out, " ND\n");
    return length;
}

bool T1FontBuilder::BuildFont() {
    if (GetStream() == nullptr) {
        return false;
    }
    if (Handler()->GetFontType() == GRAPHICS::TFontType::kType1) {
        return BuildFromProgram();
    }
    WriteBeginResource();
    WriteFontComments();
    const bool written = WriteFontDictionary();
    Stream() << "%%EndResource\n";
    return written;
}

bool T1FontBuilder::BuildFromProgram() {
    const auto* data = FindInterface<GRAPHICS::IFontData>(Handler(), GRAPHICS::IID_IFONTDATA);
    const bool filled = data != nullptr && data->GetData() != nullptr && data->GetSize() > 0;
    if (!filled && Handler()->IsEmbedded()) {
        if (data == nullptr) {
            LogError(kModule) << "IID_IFONTDATA not found for an embedded type 1 font "
                              << Handler()->GetName();
        } else {
            LogError(kModule) << "Data is not avaliable in FontData for an embedded font!";
        }
        return false;
    }
    if (filled) {
        CopyProgram({data->GetData(), static_cast<std::size_t>(data->GetSize())});
    }
    return DefineFont(Handler(), GetFontName());
}

void T1FontBuilder::CopyProgram(std::span<const std::uint8_t> program) {
    WriteBeginResource();
    const MissingEnd missing = FindMissingEnd(program);
    Stream().WriteBytes(program.data(), static_cast<std::int32_t>(program.size()));
    if (missing.zeros != 0) {
        LogNotice(kModule) << "Bad type 1 font : trailing 512 zeroes were missing! Repairing it "
                              "for output";
        Stream().WriteBytes(kZeros.data(), static_cast<std::int32_t>(missing.zeros));
    }
    if (missing.mark) {
        LogNotice(kModule) << "Bad type 1 font : trailing cleartomark is missing! Repairing it "
                              "for output";
        Stream() << "\ncleartomark\n";
    }
    Stream() << "%%EndResource\n";
}

const GRAPHICS::IT42Ancillary* T1FontBuilder::TrueTypeSource() const {
    return Handler()->GetFontType() == GRAPHICS::TFontType::kTrueType
               ? FindInterface<GRAPHICS::IT42Ancillary>(Handler(), GRAPHICS::IID_IT42ANCILLARY)
               : nullptr;
}

const GRAPHICS::ICFFAncillary* T1FontBuilder::CFFSource() const {
    return Handler()->GetFontType() == GRAPHICS::TFontType::kCFF
               ? FindInterface<GRAPHICS::ICFFAncillary>(Handler(), GRAPHICS::IID_ICFFANCILLARY)
               : nullptr;
}

void T1FontBuilder::WriteFontComments() {
    const auto* font = TrueTypeSource();
    const HeaderTables tables = font == nullptr ? HeaderTables{} : FindHeaderTables(*font);
    const char* version = Handler()->GetVersionString();
    if (!tables.head.empty()) {
        // Two words of version and revision, least significant byte first.
        const auto word = [&](std::size_t at) {
            return tables.head[at] | (tables.head[at + 1] << 8);
        };
        Print("%%!FontType1-1.1: %s %d.%d\n", GetFontName(), word(2), word(6));
    } else {
        Stream() << "%!FontType1-1.1: " << GetFontName();
        if (*version != '\0') {
            Stream() << " " << OneLine(version).c_str();
        }
        Stream() << "\n";
    }
    // The time ends in a newline.
    Stream() << "%%CreationDate: " << CreationTime().c_str() << (font == nullptr ? "\n" : "");
    WriteMemoryUse(tables.post);
    const char* notice = Handler()->GetNoticeString();
    if (*notice != '\0') {
        Stream().WriteComment(notice, static_cast<std::uint32_t>(std::strlen(notice)), true)
            << "\n";
    }
    Stream() << "%%EndComments\n";
}

bool T1FontBuilder::WriteFontBBox() {
    return true;
}

bool T1FontBuilder::WriteFontMatrix() {
    return true;
}

bool T1FontBuilder::WriteTypeSpecificEntries() {
    Stream() << "/PaintType 0 def\n"
             << "/StrokeWidth 0 def\n";
    TInterfacePtr<IO::IDataProvider> packet;
    Stream().GetDataProvider(packet);
    const std::int32_t start = packet->GetPosition();
    mEexec = Type1Cipher(Type1Cipher::kEexecKey);
    const Type1Cipher key = mEexec;
    WriteScaledEntries();
    if (!WriteCharStringsOnTrial()) {
        // What is written now is longer than what it replaces: the same, charstrings and the end.
        mEexec = key;
        mScale = kFallbackScale;
        packet->SetPosition(start, IO::Offset::kBegin);
        Stream().SetDecimalMode();
        WriteScaledEntries();
        WriteCharStringDictionary(Stream());
        mScale = kScale;
    }
    WriteEndOfProgram();
    return true;
}

void T1FontBuilder::WriteScaledEntries() {
    WriteScaledMatrix();
    WriteScaledBBox();
    Stream() << "end\nsystemdict begin\n"
             << "currentfile eexec\n";
    Stream().SetUpperCase().SetHexMode();
    PrintEncrypted(Stream(), "RAND");
    WritePrivateDictionary();
}

void T1FontBuilder::WriteScaledMatrix() {
    if (Handler()->GetFontType() != GRAPHICS::TFontType::kTrueType) {
        WriteHandlerMatrix();
        return;
    }
    const float unit = 1 / mScale;
    Stream() << "/FontMatrix [" << unit << "0 0 " << unit << "0 0] def\n";
}

void T1FontBuilder::WriteScaledBBox() {
    const GRAPHICS::FontBox box = Handler()->GetFontBBox();
    if (Handler()->GetFontType() != GRAPHICS::TFontType::kTrueType) {
        Print("/FontBBox [%g %g %g %g] readonly def\n", static_cast<double>(box.x),
              static_cast<double>(box.y), static_cast<double>(box.x + box.width),
              static_cast<double>(box.y + box.height));
        return;
    }
    const auto* font = TrueTypeSource();
    const std::int32_t unitsPerEm = font == nullptr ? 0 : font->GetUnitsPerEm();
    if (unitsPerEm <= 0) {
        BaseFontBuilder::WriteFontBBox();
        return;
    }
    const float f = mScale / static_cast<float>(unitsPerEm);
    Stream() << "/FontBBox [ " << box.x * f << box.y * f << (box.x + box.width) * f
             << (box.y + box.height) * f << "] readonly def\n";
}

void T1FontBuilder::WritePrivateDictionary() {
    IPostScriptDataStream& out = Stream();
    const GRAPHICS::IFontPackageHandler& font = *Handler();
    PrintEncrypted(out, "%s", kPrivateStart);
    PrintEncrypted(out, "/ForceBold %s", font.IsBold() ? "true def\n" : "false def\n");
    PrintEncrypted(out, "/BlueValues [ ] def\n/OtherBlues [ ] def\n");
    const std::int32_t horizontal = RoundedWidth(font.GetHorizontalStemWidth());
    const std::int32_t vertical = RoundedWidth(font.GetVerticalStemWidth());
    if (horizontal != 0) {
        PrintEncrypted(out, "/StdHW [ %d ] def\n", horizontal);
    }
    if (vertical != 0) {
        PrintEncrypted(out, "/StdVW [ %d ] def\n", vertical);
    }
    PrintEncrypted(out, "%s", kPrivateEnd);
}

bool T1FontBuilder::WriteCharStringsOnTrial() {
    const auto memory = CreateObject<IO::IDataProvider>(&mFactory, IO::IID_IDATAPROVIDER);
    const auto trial = TInterfacePtr<IPostScriptDataStream>::Adopt(
        memory ? CreatePostscriptDataStream(memory.Get()) : nullptr);
    if (!trial) {
        return false;
    }
    trial->SetSeparated().SetUpperCase().SetHexMode();
    if (WriteCharStringDictionary(*trial) >= kTooLarge) {
        return false;
    }
    Stream().WriteDataStream(*trial);
    return true;
}

std::int32_t T1FontBuilder::WriteCharStringDictionary(IPostScriptDataStream& out) {
    PrintEncrypted(out, "dup /CharStrings\n%d dict dup begin\n",
                   std::max(Handler()->GetGlyphCount(), 0));
    std::int32_t longest = 0;
    if (const auto* trueType = TrueTypeSource(); trueType != nullptr) {
        TrueTypeToT1CharStringFunctor functor(*this, out);
        trueType->EnumerateGlyphs(functor);
        longest = functor.LongestLength();
    } else if (const auto* cff = CFFSource(); cff != nullptr) {
        T2ToT1CharStringFunctor functor(*this, out, *cff);
        cff->EnumerateCharStrings(functor);
        longest = functor.LongestLength();
    } else {
        LogError(kModule) << "New source font type "
                          << static_cast<std::int32_t>(Handler()->GetFontType())
                          << " getting converted to Type1 font?";
        return 0;
    }
    PrintEncrypted(out, "end put\n");
    return longest;
}

void T1FontBuilder::WriteEndOfProgram() {
    PrintEncrypted(Stream(), "end\ndup /FontName get exch definefont pop\nend\n");
    PrintEncrypted(Stream(), "\nmark currentfile closefile\n");
    Stream().WriteBytes(kZeros.data(), static_cast<std::int32_t>(kZeros.size()));
    Stream().SetDecimalMode();
    Stream() << "\ncleartomark\n";
}

void T1FontBuilder::PrintEncrypted(IPostScriptDataStream& out, const char* format, ...) {
    std::array<char, kMostText> text;
    std::va_list arguments;
    va_start(arguments, format);
    const std::size_t size = FormatTextList(text.data(), text.size(), format, arguments);
    va_end(arguments);
    std::array<std::uint8_t, kMostText> bytes;
    const std::size_t count = std::min(size, text.size() - 1);
    std::copy_n(text.begin(), count, bytes.begin());
    WriteEncrypted(out, {bytes.data(), count});
}

void T1FontBuilder::WriteEncrypted(IPostScriptDataStream& out,
                                   std::span<const std::uint8_t> bytes) {
    std::array<std::uint8_t, kMostText> block;
    while (!bytes.empty()) {
        const std::size_t count = std::min(bytes.size(), block.size());
        std::copy_n(bytes.begin(), count, block.begin());
        mEexec.Encrypt({block.data(), count});
        out.WriteBytes(block.data(), static_cast<std::int32_t>(count));
        bytes = bytes.subspan(count);
    }
}

bool T1FontBuilder::SetEncodingDifferences(GRAPHICS::IFontPackageHandler* handler) {
    using GRAPHICS::TFontType;
    BaseFontEncodingFunctor functor(Stream());
    const auto enumerate = [&](const auto* font) {
        if (font != nullptr) {
            font->EnumerateEncoding(functor);
        }
        return font != nullptr;
    };
    switch (handler->GetFontType()) {
        case TFontType::kType1:
            return enumerate(
                FindInterface<GRAPHICS::IType1Ancillary>(handler, GRAPHICS::IID_ITYPE1ANCILLARY));
        case TFontType::kCFF:
            return enumerate(
                FindInterface<GRAPHICS::ICFFAncillary>(handler, GRAPHICS::IID_ICFFANCILLARY));
        case TFontType::kTrueType:
            return enumerate(
                FindInterface<GRAPHICS::IT42Ancillary>(handler, GRAPHICS::IID_IT42ANCILLARY));
        default:
            LogError(kModule) << "New source font type "
                              << static_cast<std::int32_t>(handler->GetFontType())
                              << " getting converted to Type1 font?";
            return false;
    }
}

bool T1FontBuilder::DefineFont(GRAPHICS::IFontPackageHandler* handler, const char* name) {
    if (GetStream() == nullptr || handler == nullptr || name == nullptr) {
        return false;
    }
    switch (handler->GetFontType()) {
        case GRAPHICS::TFontType::kType1:
            BeginRedefinition(handler->GetName(), name);
            Stream() << "/Encoding ";
            WriteNameString(handler->GetName());
            Stream() << " cvn findfont dup 2 index known {1 index get aload pop 256 array astore} "
                        "{pop 256 array 0 1 255 {1 index exch /.notdef put} for} ifelse\n";
            SetEncodingDifferences(handler);
            Stream() << "readonly def\n";
            break;
        case GRAPHICS::TFontType::kCFF:
        case GRAPHICS::TFontType::kTrueType:
            BeginRedefinition(GetFontName(), name);
            WriteEncoding(*handler);
            break;
        case GRAPHICS::TFontType::kCIDKeyedTrueType:
            LogError(kModule)
                << "We don't support downloading CIDKeyed true type as PostScript Type 1";
            return false;
        default:
            LogError(kModule) << "Un-handled font type "
                              << static_cast<std::int32_t>(handler->GetFontType())
                              << " to redefine in T1FontBuilder";
            return false;
    }
    EndRedefinition(name);
    return true;
}

}  // namespace VANTIX::PS
