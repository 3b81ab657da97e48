// SPDX-License-Identifier: MIT
#include "basecidfontbuilder.h"

#include <algorithm>
#include <array>
#include <iterator>

#include "core/libsupport/vlogger/logmessage.h"
#include "postscriptdatastream/formattext.h"

namespace VANTIX::PS {
namespace {

constexpr const char* kModule = "src/basecidfontbuilder";

/// Writes one entry of /GlyphNames2Unicode for each call.
class CIDToUnicodeFunctor final : public GRAPHICS::ICIDToUnicodeFunctor {
public:
    explicit CIDToUnicodeFunctor(IPostScriptDataStream& stream) : mStream(stream) {}

    bool operator()(std::uint16_t cid, std::uint16_t character) override {
        std::array<char, 32> text;
        FormatText(text.data(), text.size(), "%d <%04X> def\n", cid, character);
        mStream << text.data();
        return true;
    }

private:
    IPostScriptDataStream& mStream;
};

/// The two types of a CIDFont dictionary.
struct CIDFontTypes {
    TPSFontType type;
    const char* entries;
};

constexpr CIDFontTypes kTypes[] = {
    {TPSFontType::kCIDFontType0, "/CIDFontType 0 def\n/FontType 9 def\n"},
    {TPSFontType::kCIDFontType1, "/CIDFontType 1 def\n/FontType 10 def\n"},
    {TPSFontType::kCIDFontType2, "/CIDFontType 2 def\n/FontType 42 def\n"},
    {static_cast<TPSFontType>(7), "/CIDFontType 4 def\n/FontType 32 def\n"},
};

template <class Source>
CIDFontIdentity IdentityOf(const Source* source) {
    if (source == nullptr) {
        return {};
    }
    return {source->GetRegistry(), source->GetOrdering(), source->GetSupplement(),
            source->GetCIDFontVersion()};
}

}  // namespace

bool BaseCIDVerticalMetricFunctor::operator()(std::uint16_t cid, const float values[4]) {
    std::array<char, 128> text;
    FormatText(text.data(), text.size(), "%d [%g %g %g %g] def\n", cid,
               static_cast<double>(values[0]), static_cast<double>(values[1]),
               static_cast<double>(values[2]), static_cast<double>(values[3]));
    mStream << text.data();
    return true;
}

bool BaseCIDFontBuilder::Init(GRAPHICS::IFontPackageHandler* handler, const char* name,
                              IO::IPacketDataProvider& packet) {
    if (!Begin(handler, name, packet,
               {kModule, "Initializing CIDFontBuilder with NULL canonical font?",
                "Failed to create font stream for CIDFontBuilder!"})) {
        return false;
    }
    const auto* info =
        FindInterface<GRAPHICS::ICompositeFontInfo>(handler, GRAPHICS::IID_ICOMPOSITEFONTINFO);
    mIsVertical = info != nullptr && info->IsVertical();
    return true;
}

bool BaseCIDFontBuilder::DefineFont(GRAPHICS::IFontPackageHandler* /*handler*/,
                                    const char* /*name*/) {
    LogError(kModule) << "Re-defining CID fonts not implemented yet, are you encountered with "
                         "desendent fonts?";
    return false;
}

const GRAPHICS::ICIDKeyedCFFAncillary* BaseCIDFontBuilder::CFFSource() const {
    return FindInterface<GRAPHICS::ICIDKeyedCFFAncillary>(Handler(),
                                                          GRAPHICS::IID_ICIDKEYEDCFFANCILLARY);
}

const GRAPHICS::ICIDKeyedT42Ancillary* BaseCIDFontBuilder::TrueTypeSource() const {
    return FindInterface<GRAPHICS::ICIDKeyedT42Ancillary>(Handler(),
                                                          GRAPHICS::IID_ICIDKEYEDT42ANCILLARY);
}

CIDFontIdentity BaseCIDFontBuilder::GetIdentity() const {
    switch (Handler()->GetFontType()) {
        case GRAPHICS::TFontType::kCIDKeyedCFF:
            return IdentityOf(CFFSource());
        case GRAPHICS::TFontType::kCIDKeyedTrueType:
            return IdentityOf(TrueTypeSource());
        default:
            return {};
    }
}

void BaseCIDFontBuilder::WriteBeginResource() {
    Print("%%%%BeginResource: font %s-%s\n", GetFontName(), CMapName());
}

bool BaseCIDFontBuilder::WriteCIDFontBody() {
    if (!WriteEnteriesCommonToAllCIDFonts()) {
        return false;
    }
    WriteAdditionalFontDictEntries();
    if (mIsVertical) {
        WriteVerticalMetrics();
    }
    return true;
}

bool BaseCIDFontBuilder::WriteEnteriesCommonToAllCIDFonts() {
    const auto* found = std::find_if(std::begin(kTypes), std::end(kTypes),
                                     [this](const auto& each) { return each.type == mType; });
    if (found == std::end(kTypes)) {
        LogError(kModule) << "Encountered new PS Font type " << static_cast<std::int32_t>(mType)
                          << " to handle";
        return false;
    }
    Stream() << "25 dict begin\n" << found->entries;
    if (const float* matrix = GetFontMatrix(); matrix != nullptr) {
        WriteMatrix(matrix);
    }
    Stream() << "/CIDFontName ";
    WriteNameString(GetFontName());
    Stream() << " cvn def\n"
             << "/CIDSystemInfo 3 dict dup begin\n";
    WriteCIDSystemInfoDictEnteries();
    Stream() << "end def\n";
    WriteFontBBox();
    WriteFontInfo();
    Stream() << "/WMode " << (mIsVertical ? 1 : 0) << "def\n";
    return true;
}

void BaseCIDFontBuilder::WriteMatrix(const float* matrix) {
    // The order of the elements is a c b d e f.
    Print("/FontMatrix [%g %g %g %g %g %g] def\n", static_cast<double>(matrix[0]),
          static_cast<double>(matrix[2]), static_cast<double>(matrix[1]),
          static_cast<double>(matrix[3]), static_cast<double>(matrix[4]),
          static_cast<double>(matrix[5]));
}

const float* BaseCIDFontBuilder::GetFontMatrix() const {
    return Handler()->GetFontMatrix();
}

void BaseCIDFontBuilder::WriteCIDSystemInfoDictEnteries() {
    const CIDFontIdentity identity = GetIdentity();
    Stream() << "/Registry ";
    Stream().WriteString(identity.registry) << " def\n/Ordering ";
    Stream().WriteString(identity.ordering) << " def\n/Supplement ";
    Stream() << identity.supplement << "def\n";
}

void BaseCIDFontBuilder::WriteBBox(float scale) {
    const GRAPHICS::FontBox box = Handler()->GetFontBBox();
    Print("/FontBBox [%g %g %g %g] readonly def\n", static_cast<double>(box.x * scale),
          static_cast<double>(box.y * scale), static_cast<double>((box.x + box.width) * scale),
          static_cast<double>((box.y + box.height) * scale));
}

std::int32_t BaseCIDFontBuilder::GlyphRoom() const {
    constexpr std::int32_t kMostEntries = 65535;
    return std::clamp(Handler()->GetGlyphCount(), 0, kMostEntries);
}

void BaseCIDFontBuilder::WriteFontInfo() {
    BeginFontInfo();
    Stream() << "/FSType 8 def\n";
    if (const auto* font = TrueTypeSource(); font != nullptr) {
        Print("/GlyphNames2Unicode %d dict dup begin\n", std::max(font->GetUnicodeCount(), 0));
        CIDToUnicodeFunctor functor(Stream());
        font->EnumerateUnicode(functor);
        Stream() << "end def\n";
    }
    Stream() << "end readonly def\n";
}

void BaseCIDFontBuilder::WriteVerticalMetrics() {
    Print("/Metrics2 %d dict dup begin\n", GlyphRoom());
    BaseCIDVerticalMetricFunctor functor(Stream());
    if (const auto* trueType = TrueTypeSource(); trueType != nullptr) {
        trueType->EnumerateVerticalMetrics(functor);
    } else if (const auto* cff = CFFSource(); cff != nullptr) {
        cff->EnumerateVerticalMetrics(functor);
    }
    Stream() << "end readonly def\n";
}

void BaseCIDFontBuilder::WriteCompositeFont() {
    // The escaped name has no character that a string would escape but the backslash.
    Stream().WriteString((std::string(GetFontName()) + "-" + CMapName()).c_str())
        << " cvn /" << CMapName() << " [";
    Stream().WriteString(GetFontName()) << " cvn] composefont pop\n";
}

}  // namespace VANTIX::PS
