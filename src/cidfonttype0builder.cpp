// SPDX-License-Identifier: MIT
#include "cidfonttype0builder.h"

#include <algorithm>
#include <iterator>

#include "core/libsupport/vlogger/logmessage.h"
#include "t2tot1charstringconverter.h"
#include "truetypetot1conversionutils.h"

namespace VANTIX::PS {
namespace {

using GRAPHICS::TFontType;

constexpr const char* kModule = "src/cidfonttype0builder";
/// Units of charstrings for each em.
constexpr float kScale = 1000;
/// Font DICTs of a CFF font (Technical Note 5176, section 19).
constexpr std::int32_t kMostFontDicts = 256;
/// Of a string (PostScript Language Reference, appendix B).
constexpr std::size_t kLongestString = 65535;

std::int32_t FontDictCount(const GRAPHICS::ICIDKeyedCFFAncillary& font) {
    return std::clamp(font.GetFontDictCount(), 0, kMostFontDicts);
}

void LogNewSource(TFontType type) {
    LogError(kModule) << "New font type " << static_cast<std::int32_t>(type)
                      << " to download  as CIDFontType0 in postscript?";
}

}  // namespace

/// Called for each glyph of a CID-keyed CFF font while /GlyphDirectory is written.
class CIDFontType0Builder::T2ToT1CharStringFunctor final : public GRAPHICS::ICIDCharStringFunctor {
public:
    T2ToT1CharStringFunctor(CIDFontType0Builder& builder,
                            const GRAPHICS::ICIDKeyedCFFAncillary& font)
        : mBuilder(builder), mFont(font), mFontDicts(FontDictCount(font)) {}

    bool operator()(std::uint16_t cid, std::uint16_t fontDict,
                    const GRAPHICS::CharString& charString) override {
        if (fontDict < mFontDicts) {
            mBuilder.WriteGlyph(cid, fontDict,
                                mConverter.ConvertGlyph(charString, fontDict, &mFont));
        }
        return true;
    }

private:
    CIDFontType0Builder& mBuilder;
    const GRAPHICS::ICIDKeyedCFFAncillary& mFont;
    std::int32_t mFontDicts;
    T2ToT1CharStringConverter mConverter;
};

/// Called for each glyph of a CID-keyed TrueType font while /GlyphDirectory is written.
class CIDFontType0Builder::TrueTypeToCIDType0CharStringFunctor final
    : public GRAPHICS::ICIDGlyphFunctor {
public:
    explicit TrueTypeToCIDType0CharStringFunctor(CIDFontType0Builder& builder)
        : mBuilder(builder) {}

    bool operator()(const GRAPHICS::IGlyphRecording* recording, std::uint16_t cid) override;

private:
    CIDFontType0Builder& mBuilder;
};

bool CIDFontType0Builder::TrueTypeToCIDType0CharStringFunctor::operator()(
    const GRAPHICS::IGlyphRecording* recording, std::uint16_t cid) {
    if (recording == nullptr) {
        LogError(kModule) << "Unable to get Glyph recorder.";
        return true;
    }
    T1CharStringConnectionspace space(recording->GetAdvanceWidth(), kScale);
    const bool isWhole = space.Record(*recording);
    const auto charString = space.GetCharString();
    if (!isWhole || charString.empty()) {
        LogError(kModule) << "No T1 Charstring, seems GlyphRecording to Type 1 Charstring "
                             "conversion failed.";
        return true;
    }
    mBuilder.WriteGlyph(cid, 0, charString);
    return true;
}

bool CIDFontType0Builder::BuildFont() {
    if (GetStream() == nullptr || !HasGlyphs()) {
        return false;
    }
    WriteBeginResource();
    WriteFontComments();
    Stream() << "/CIDInit /ProcSet findresource begin\n";
    const bool isWritten = WriteCIDFontBody();
    WriteEndOfCIDFont();
    WriteCompositeFont();
    Stream() << "%%EndResource\n";
    return isWritten;
}

bool CIDFontType0Builder::HasGlyphs() const {
    switch (Handler()->GetFontType()) {
        case TFontType::kCIDKeyedCFF:
            return CFFSource() != nullptr && FontDictCount(*CFFSource()) > 0;
        case TFontType::kCIDKeyedTrueType:
            return TrueTypeSource() != nullptr;
        default:
            LogNewSource(Handler()->GetFontType());
            return false;
    }
}

void CIDFontType0Builder::WriteFontComments() {
    const CIDFontIdentity identity = GetIdentity();
    const bool isCFF = Handler()->GetFontType() == TFontType::kCIDKeyedCFF;
    Print(
        "%%!PS-Adobe-3.0 Resource-CIDFont\n%%%%DocumentNeededResources: ProcSet (CIDInit)\n"
        "%%%%IncludeResource: ProcSet (CIDInit)\n%%%%BeginResource: CIDFont (%s)\n",
        GetFontName());
    Stream() << "%%Title: (" << GetFontName() << " " << OneLine(identity.registry).c_str() << " "
             << OneLine(identity.ordering).c_str();
    Print(" %d)\n%%%%Version: %g\n", identity.supplement,
          isCFF ? static_cast<double>(identity.version) : 0.0);
}

void CIDFontType0Builder::WriteFontBBox() {
    if (Handler()->GetFontType() != TFontType::kCIDKeyedTrueType) {
        WriteBBox(1);
        return;
    }
    const auto* font = TrueTypeSource();
    if (font != nullptr && font->GetUnitsPerEm() > 0) {
        WriteBBox(kScale / static_cast<float>(font->GetUnitsPerEm()));
    }
}

void CIDFontType0Builder::WriteAdditionalFontDictEntries() {
    Stream() << "/PaintType 0 def\n"
             << "/StrokeWidth 0 def\n";
    if (Handler()->GetFontType() == TFontType::kCIDKeyedCFF) {
        WriteCFFEntries(*CFFSource());
    } else {
        WriteTrueTypeEntries(*TrueTypeSource());
    }
    EndGlyphDirectory();
}

void CIDFontType0Builder::WriteCounts(std::int32_t cidCount, float version,
                                      std::int32_t fontDictBytes) {
    constexpr int kOffsetBytes = 4;
    mFontDictBytes = fontDictBytes;
    Print(
        "/CIDCount %d def\n/CIDFontVersion %g def\n/GDBytes %d def\n"
        "/CIDMapOffset %d def\n/FDBytes %d def\n",
        cidCount, static_cast<double>(version), kOffsetBytes, 0, fontDictBytes);
}

void CIDFontType0Builder::WriteCFFEntries(const GRAPHICS::ICIDKeyedCFFAncillary& font) {
    const std::int32_t count = FontDictCount(font);
    WriteCounts(font.GetCIDCount(), font.GetCIDFontVersion(), count > 1 ? 1 : 0);
    Print("/FDArray %d array\n", count);
    for (std::int32_t i = 0; i < count; ++i) {
        WriteFontDict(font, i);
    }
    BeginGlyphDirectory();
    T2ToT1CharStringFunctor functor(*this, font);
    font.EnumerateCharStrings(functor);
}

void CIDFontType0Builder::WriteFontDict(const GRAPHICS::ICIDKeyedCFFAncillary& font,
                                        std::int32_t index) {
    static constexpr float kThousandths[] = {0.001F, 0, 0, 0.001F, 0, 0};
    Print("dup %d\n%%ADOBeginFontDict\n 10 dict begin\n", index);
    const float* matrix = font.GetFontDictMatrix(index);
    WriteMatrix(matrix == nullptr ? kThousandths : matrix);
    if (const char* name = font.GetFontDictName(index); name != nullptr) {
        Stream() << "/FontName ";
        WriteNameString(name);
        Stream() << " def\n";
    }
    Stream() << "/FontType 1 def\n"
             << "/PaintType 0 def\n"
             << "%ADOBeginPrivateDict\n/Private 20 dict dup begin\n"
             << "/lenIV 0 def\n";
    WritePrivate(font.GetFontDictPrivate(index));
    Stream() << "end def\n%ADOEndPrivateDict\ncurrentdict end\n%ADOEndFontDict\nput\n";
}

void CIDFontType0Builder::WritePrivate(const GRAPHICS::PrivateValues& values) {
    using GRAPHICS::PrivateValues;
    const auto list = [](const auto& array, std::int32_t count) {
        const auto most = static_cast<std::int32_t>(std::size(array));
        return std::span<const float>(array, static_cast<std::size_t>(std::clamp(count, 0, most)));
    };
    const auto whole = [](float value) { return ToInteger(static_cast<double>(value)); };
    Print("/LanguageGroup %d def\n", values.languageGroup);
    WriteValues("/BlueValues", list(values.blueValues, values.blueValueCount));
    WriteValues("/OtherBlues", list(values.otherBlues, values.otherBlueCount));
    Print("/BlueScale %g def\n/BlueShift %g def\n/BlueFuzz %d def\n",
          static_cast<double>(values.blueScale), static_cast<double>(values.blueShift),
          whole(values.blueFuzz));
    Print("/StdHW [%d] def\n/StdVW [%d] def\n", whole(values.stdHW), whole(values.stdVW));
    WriteValues("/StemSnapH", list(values.stemSnapH, values.stemSnapHCount));
    WriteValues("/StemSnapV", list(values.stemSnapV, values.stemSnapVCount));
    Print("/ForcedBold %s def\n/ExpansionFactor %g def\n", values.forceBold ? "true" : "false",
          static_cast<double>(values.expansionFactor));
}

void CIDFontType0Builder::WriteValues(const char* key, std::span<const float> values) {
    if (values.empty()) {
        return;
    }
    Print("%s [", key);
    for (const float value : values) {
        Print(" %g", static_cast<double>(value));
    }
    Stream() << "] def\n";
}

void CIDFontType0Builder::WriteTrueTypeEntries(const GRAPHICS::ICIDKeyedT42Ancillary& font) {
    WriteCounts(font.GetCIDCount(), font.GetCIDFontVersion(), 0);
    Stream() << "/FDArray 1 array\n"
             << "dup 0 10 dict begin\n"
             << "/FontMatrix [0.001 0 0 0.001 0 0] def\n"
             << "/FontName ";
    WriteNameString(GetFontName());
    Stream() << " def\n/FontType 1 def\n/PaintType 0 def\n"
             << "/Private 20 dict dup begin\n/lenIV 0 def\n/LanguageGroup 0 def\n"
             << "end def\ncurrentdict end put\n";
    BeginGlyphDirectory();
    TrueTypeToCIDType0CharStringFunctor functor(*this);
    font.EnumerateGlyphs(functor);
}

void CIDFontType0Builder::BeginGlyphDirectory() {
    mHasNotdef = false;
    Print(" def\n/GlyphDirectory %d dict dup begin\n", GlyphRoom());
}

void CIDFontType0Builder::EndGlyphDirectory() {
    if (!mHasNotdef) {
        T1CharStringConnectionspace blank(0, kScale);
        blank.NewPath();
        blank.ResetPath();
        WriteGlyph(0, 0, blank.GetCharString());
    }
    Stream() << "end def\n";
}

void CIDFontType0Builder::WriteGlyph(std::uint16_t cid, std::uint16_t fontDict,
                                     std::span<const std::uint8_t> charString) {
    if (charString.empty() || charString.size() >= kLongestString) {
        return;
    }
    mHasNotdef = mHasNotdef || cid == 0;
    Stream() << static_cast<std::int32_t>(cid) << "<";
    Stream().ClearSeparated().SetHexMode();
    if (mFontDictBytes != 0) {
        const auto index = static_cast<std::uint8_t>(fontDict);
        Stream().WriteBytes(&index, 1);
    }
    Stream().WriteBytes(charString.data(), static_cast<std::int32_t>(charString.size()));
    Stream() << "> def\n";
    Stream().SetDecimalMode().SetSeparated();
}

void CIDFontType0Builder::WriteEndOfCIDFont() {
    Print("%%%%BeginData: %d Binary Bytes\n(Binary) 0 StartData\n", 0);
    Stream() << "%%EndData\n%%EndResource\n";
}

}  // namespace VANTIX::PS
