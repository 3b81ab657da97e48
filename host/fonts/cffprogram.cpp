// SPDX-License-Identifier: MIT
#include "host/fonts/cffprogram.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <set>
#include <span>
#include <utility>

#include "host/fonts/cffreader.h"
#include "host/fonts/cffsubset.h"
#include "host/fonts/cfftotype1.h"
#include "host/fonts/charstringwriter.h"
#include "host/fonts/glyphnames.h"
#include "host/fonts/type2charstrings.h"

namespace VANTIX::HOST {
namespace {

/// What is kept of a glyph that was read.
struct Facts {
    bool isKnown = false;
    bool isWhole = false;
    bool isPlain = false;
    bool marks = false;
    float width = 0;  ///< in units of the font
    std::optional<std::array<std::uint8_t, 2>> components;
};

/// Base and accent become parts of the glyph. What is not there is left out.
void Expand(Type2Glyph& glyph, const Type2Glyph& base, const Type2Glyph& accent) {
    if (base.isWhole) {
        glyph.stems = base.stems;
        glyph.segments.insert(glyph.segments.end(), base.segments.begin(), base.segments.end());
    }
    for (Type2Segment segment : accent.segments) {
        for (std::size_t i = 0; i < 2 * segment.pointCount; ++i) {
            segment.points.at(i) += i % 2 == 0 ? glyph.accent->x : glyph.accent->y;
        }
        if (accent.isWhole) {
            glyph.segments.push_back(segment);
        }
    }
    glyph.accent.reset();
}

template <std::size_t Room>
std::int32_t Fill(float (&values)[Room], const std::vector<float>& source) {
    std::copy(source.begin(), source.end(), std::begin(values));
    return static_cast<std::int32_t>(source.size());
}

class CffProgramImpl final : public CffProgram {
public:
    bool Read(std::vector<std::uint8_t> bytes, std::string& problem);

    [[nodiscard]] float WidthOf(std::string_view glyph) const override;
    [[nodiscard]] bool HasOutline(std::string_view glyph) const override;

    [[nodiscard]] const std::string& Name() const override { return mFont.name; }

    [[nodiscard]] bool IsCidKeyed() const override { return mFont.isCidKeyed; }

    [[nodiscard]] const CffMatrix& Matrix() const override { return mFont.fontDicts[0].matrix; }

    [[nodiscard]] GRAPHICS::FontBox Box() const override { return mFont.Box(); }

    [[nodiscard]] std::uint32_t GlyphCount() const override { return mFont.glyphs.Count(); }

    [[nodiscard]] std::size_t FileSize() const override { return mFileSize; }

    [[nodiscard]] std::string Notice() const override {
        return mFont.Text(mFont.top, CffOperator::kNotice);
    }

    [[nodiscard]] std::string Version() const override {
        return mFont.Text(mFont.top, CffOperator::kVersion);
    }

    [[nodiscard]] const std::array<std::string, kSimpleCodes>& Encoding() const override {
        return mFont.encoding;
    }

    [[nodiscard]] std::optional<std::uint16_t> GlyphOf(std::string_view name) const override;
    [[nodiscard]] std::string NameOf(std::uint16_t glyph) const override;
    [[nodiscard]] std::optional<std::uint16_t> GlyphOfCid(std::uint16_t cid) const override;
    [[nodiscard]] std::uint16_t CidOf(std::uint16_t glyph) const override;

    [[nodiscard]] float WidthOfGlyph(std::uint16_t glyph) const override;
    [[nodiscard]] bool HasGlyphOutline(std::uint16_t glyph) const override;
    [[nodiscard]] bool IsSound() const override;

    [[nodiscard]] const CffMatrix& GlyphMatrix(std::uint16_t glyph) const override {
        return glyph < GlyphCount() ? mFont.fontDicts[mFont.fontDictOf[glyph]].matrix : Matrix();
    }

    void UseGlyph(std::string_view name) override;
    void UseIndex(std::uint16_t glyph) override;

    void Rename(std::string_view name) override { mNewName = SanitiseGlyphName(name); }

    void ExpectConversion(bool converted) override { mIsConverted = converted; }

    const std::vector<std::uint8_t>& Data() override;
    [[nodiscard]] std::vector<std::uint8_t> AsType1() const override;

    [[nodiscard]] std::int32_t WrittenCount() const override;
    void EnumerateGlyphs(bool expanded, CffGlyphFunctor& functor) const override;

    [[nodiscard]] std::int32_t LocalBias(std::uint16_t fontDict) const override;
    [[nodiscard]] std::int32_t GlobalBias() const override;
    std::int32_t CopyLocal(std::uint16_t fontDict, std::int32_t number,
                           std::uint8_t* buffer) const override;
    std::int32_t CopyGlobal(std::int32_t number, std::uint8_t* buffer) const override;

    [[nodiscard]] const std::string& Registry() const override { return mFont.registry; }

    [[nodiscard]] const std::string& Ordering() const override { return mFont.ordering; }

    [[nodiscard]] std::int32_t Supplement() const override;
    [[nodiscard]] float CidFontVersion() const override;
    [[nodiscard]] std::int32_t CidCount() const override;

    [[nodiscard]] std::int32_t FontDictCount() const override {
        return static_cast<std::int32_t>(mFont.fontDicts.size());
    }

    [[nodiscard]] const CffMatrix& FontDictMatrix(std::size_t index) const override {
        return mFont.fontDicts.at(index).matrix;
    }

    [[nodiscard]] const std::string& FontDictName(std::size_t index) const override {
        return mFont.fontDicts.at(index).name;
    }

    [[nodiscard]] GRAPHICS::PrivateValues FontDictPrivate(std::size_t index) const override;

private:
    [[nodiscard]] const Facts& FactsOf(std::size_t glyph) const;
    [[nodiscard]] std::optional<std::uint16_t> StandardGlyph(std::uint8_t code) const;
    bool Hand(std::uint16_t glyph, bool expanded, Type2Reader& reader,
              CffGlyphFunctor& functor) const;
    [[nodiscard]] std::string Simplified(std::uint16_t glyph, bool expanded,
                                         Type2Reader& reader) const;

    std::size_t mFileSize = 0;
    std::vector<std::uint8_t> mBytes;
    CffTables mFont;
    std::map<std::string, std::uint16_t, std::less<>> mGlyphs;  ///< by name fit for PostScript
    std::vector<std::uint16_t> mGlyphOfCid;                     ///< 0 for none
    bool mIsConverted = false;
    std::set<std::uint16_t> mUsed;
    bool mUsesSome = false;
    std::string mNewName;
    std::vector<std::uint8_t> mData;
    mutable std::optional<Type2Reader> mReader;
    mutable std::vector<Facts> mFacts;
};

bool CffProgramImpl::Read(std::vector<std::uint8_t> bytes, std::string& problem) {
    const ByteView cff = FindCff(bytes);
    mFileSize = bytes.size();
    if (cff.size() == bytes.size()) {
        mBytes = std::move(bytes);
    } else {
        mBytes.assign(cff.begin(), cff.end());
    }
    if (!mFont.Read(mBytes, problem)) {
        return false;
    }
    mReader.emplace(mFont);
    mFacts.resize(mFont.glyphs.Count());
    for (std::size_t glyph = 0; glyph < mFont.names.size(); ++glyph) {
        if (!mFont.names[glyph].empty()) {
            mGlyphs.emplace(SanitiseGlyphName(mFont.names[glyph]),
                            static_cast<std::uint16_t>(glyph));
        }
    }
    for (std::string& name : mFont.encoding) {
        name = name == ".notdef" ? std::string() : SanitiseGlyphName(name);
    }
    for (std::size_t glyph = mFont.cids.size(); glyph-- > 1;) {
        const std::size_t cid = mFont.cids[glyph];
        mGlyphOfCid.resize(std::max(mGlyphOfCid.size(), cid + 1));
        mGlyphOfCid[cid] = static_cast<std::uint16_t>(glyph);
    }
    return true;
}

const Facts& CffProgramImpl::FactsOf(std::size_t glyph) const {
    Facts& facts = mFacts[glyph];
    if (facts.isKnown) {
        return facts;
    }
    const Type2Glyph& read = mReader->Read(glyph);
    facts = {.isKnown = true,
             .isWhole = read.isWhole,
             .isPlain = read.isPlain,
             .marks = !read.isWhole || !read.segments.empty() || read.accent,
             .width = static_cast<float>(read.width),
             .components = {}};
    if (read.isWhole && read.accent) {
        facts.components = read.accent->codes;
    }
    return facts;
}

std::optional<std::uint16_t> CffProgramImpl::GlyphOf(std::string_view name) const {
    const auto found = mGlyphs.find(SanitiseGlyphName(name));
    return found == mGlyphs.end() ? std::nullopt : std::optional(found->second);
}

std::string CffProgramImpl::NameOf(std::uint16_t glyph) const {
    return glyph < mFont.names.size() && !mFont.names[glyph].empty()
               ? SanitiseGlyphName(mFont.names[glyph])
               : std::string();
}

std::optional<std::uint16_t> CffProgramImpl::GlyphOfCid(std::uint16_t cid) const {
    const bool isThere =
        mFont.isCidKeyed ? cid < mGlyphOfCid.size() && mGlyphOfCid[cid] != 0 : cid < GlyphCount();
    if (!isThere && cid != 0) {
        return std::nullopt;
    }
    return cid == 0 || !mFont.isCidKeyed ? cid : mGlyphOfCid[cid];
}

std::uint16_t CffProgramImpl::CidOf(std::uint16_t glyph) const {
    return mFont.isCidKeyed && glyph < mFont.cids.size() ? mFont.cids[glyph] : glyph;
}

std::optional<std::uint16_t> CffProgramImpl::StandardGlyph(std::uint8_t code) const {
    return GlyphOf(NamesOf(BaseEncoding::kStandard).at(code));
}

float CffProgramImpl::WidthOf(std::string_view glyph) const {
    const auto found = GlyphOf(glyph);
    return found ? WidthOfGlyph(*found) : -1.0F;
}

bool CffProgramImpl::HasOutline(std::string_view glyph) const {
    const auto found = GlyphOf(glyph);
    return found && HasGlyphOutline(*found);
}

float CffProgramImpl::WidthOfGlyph(std::uint16_t glyph) const {
    if (glyph >= GlyphCount()) {
        return -1.0F;
    }
    const float width = FactsOf(glyph).width;
    return (mIsConverted ? std::round(width) : width) * GlyphMatrix(glyph)[0];
}

bool CffProgramImpl::HasGlyphOutline(std::uint16_t glyph) const {
    return glyph < GlyphCount() && FactsOf(glyph).marks;
}

bool CffProgramImpl::IsSound() const {
    const bool areNamed = std::all_of(
        mFont.names.begin(), mFont.names.end(),
        [](const std::string& name) { return name.empty() || SanitiseGlyphName(name) == name; });
    for (std::size_t glyph = 0; areNamed && glyph < GlyphCount(); ++glyph) {
        if (!FactsOf(glyph).isWhole) {
            return false;
        }
    }
    return areNamed;
}

void CffProgramImpl::UseGlyph(std::string_view name) {
    mUsesSome = true;
    if (const auto glyph = GlyphOf(name)) {
        UseIndex(*glyph);
    }
}

void CffProgramImpl::UseIndex(std::uint16_t glyph) {
    mUsesSome = true;
    if (glyph >= GlyphCount() || !mUsed.insert(glyph).second || !FactsOf(glyph).components) {
        return;
    }
    for (const std::uint8_t code : *FactsOf(glyph).components) {
        if (const auto component = StandardGlyph(code)) {
            UseIndex(*component);
        }
    }
}

const std::vector<std::uint8_t>& CffProgramImpl::Data() {
    if (!mData.empty()) {
        return mData;
    }
    if (mFont.isCidKeyed) {
        return mBytes;
    }
    mData = RenameCff(mFont, mNewName.empty() ? mFont.name : mNewName);
    CffTables renamed;
    std::string problem;
    if (mUsesSome && renamed.Read(mData, problem)) {
        if (auto cut = SubsetCff(renamed, mUsed)) {
            mData = std::move(*cut);
        }
    }
    return mData;
}

std::vector<std::uint8_t> CffProgramImpl::AsType1() const {
    return Type1OfCff(mFont, FontDictPrivate(0));
}

std::int32_t CffProgramImpl::WrittenCount() const {
    const std::size_t used = mUsed.size() + (mUsed.contains(0) ? 0 : 1);
    return static_cast<std::int32_t>(mUsesSome ? used : GlyphCount());
}

void CffProgramImpl::EnumerateGlyphs(bool expanded, CffGlyphFunctor& functor) const {
    Type2Reader reader(mFont);
    for (std::uint32_t index = 0; index < GlyphCount(); ++index) {
        const auto glyph = static_cast<std::uint16_t>(index);
        const bool isWritten = glyph == 0 || !mUsesSome || mUsed.contains(glyph);
        if (isWritten && !Hand(glyph, expanded, reader, functor)) {
            return;
        }
    }
}

bool CffProgramImpl::Hand(std::uint16_t glyph, bool expanded, Type2Reader& reader,
                          CffGlyphFunctor& functor) const {
    const Facts& facts = FactsOf(glyph);
    CffGlyph handed{.index = glyph, .fontDict = mFont.fontDictOf[glyph], .charString = {}};
    GRAPHICS::CharString& code = handed.charString;
    if (facts.isWhole && facts.isPlain && !(expanded && facts.components)) {
        const ByteView bytes = mFont.glyphs[glyph];
        const CffFontDict& dict = mFont.fontDicts[handed.fontDict];
        code = {bytes.data(), static_cast<std::int32_t>(bytes.size()),
                static_cast<float>(dict.nominalWidth), static_cast<float>(dict.defaultWidth)};
        return functor(handed);
    }
    const std::string text = Simplified(glyph, expanded, reader);
    const std::vector<std::uint8_t> bytes(text.begin(), text.end());
    code = {bytes.data(), static_cast<std::int32_t>(bytes.size()), 0, 0};
    return functor(handed);
}

std::string CffProgramImpl::Simplified(std::uint16_t glyph, bool expanded,
                                       Type2Reader& reader) const {
    Type2Glyph read = reader.Read(glyph);
    if (expanded && read.accent) {
        const auto part = [&](std::size_t which) {
            const auto found = StandardGlyph(read.accent->codes.at(which));
            return found ? reader.Read(*found) : Type2Glyph();
        };
        const Type2Glyph base = part(0);
        Expand(read, base, part(1));
    }
    return PlainType2CharString(read);
}

std::int32_t Copy(const CffIndex& subroutines, std::int32_t number, std::uint8_t* buffer) {
    const ByteView code = number < 0 ? ByteView() : subroutines[static_cast<std::size_t>(number)];
    if (code.size() > GRAPHICS::ICharStringSubroutines::kRoom) {
        return 0;
    }
    std::copy(code.begin(), code.end(), buffer);
    return static_cast<std::int32_t>(code.size());
}

std::int32_t CffProgramImpl::LocalBias(std::uint16_t fontDict) const {
    return fontDict < mFont.fontDicts.size() ? mFont.fontDicts[fontDict].subroutines.Bias() : 0;
}

std::int32_t CffProgramImpl::GlobalBias() const {
    return mFont.subroutines.Bias();
}

std::int32_t CffProgramImpl::CopyLocal(std::uint16_t fontDict, std::int32_t number,
                                       std::uint8_t* buffer) const {
    return fontDict < mFont.fontDicts.size()
               ? Copy(mFont.fontDicts[fontDict].subroutines, number, buffer)
               : 0;
}

std::int32_t CffProgramImpl::CopyGlobal(std::int32_t number, std::uint8_t* buffer) const {
    return Copy(mFont.subroutines, number, buffer);
}

std::int32_t CffProgramImpl::Supplement() const {
    constexpr double kLargest = 65535;
    return static_cast<std::int32_t>(
        std::clamp(mFont.top.Number(CffOperator::kRegistryOrdering, 0), 0.0, kLargest));
}

float CffProgramImpl::CidFontVersion() const {
    return static_cast<float>(mFont.top.Number(CffOperator::kCIDFontVersion, 0));
}

std::int32_t CffProgramImpl::CidCount() const {
    return static_cast<std::int32_t>(mFont.isCidKeyed ? std::max<std::size_t>(mGlyphOfCid.size(), 1)
                                                      : GlyphCount());
}

GRAPHICS::PrivateValues CffProgramImpl::FontDictPrivate(std::size_t index) const {
    using Values = GRAPHICS::PrivateValues;
    const CffDict& dict = mFont.fontDicts.at(index).values;
    const auto number = [&dict](CffOperator key, float otherwise) {
        return static_cast<float>(dict.Number(key, otherwise));
    };
    Values values;
    values.languageGroup = number(CffOperator::kLanguageGroup, 0) == 1 ? 1 : 0;
    values.blueValueCount =
        Fill(values.blueValues, dict.Sums(CffOperator::kBlueValues, Values::kMostBlues));
    values.otherBlueCount =
        Fill(values.otherBlues, dict.Sums(CffOperator::kOtherBlues, Values::kMostOtherBlues));
    values.blueScale = number(CffOperator::kBlueScale, values.blueScale);
    values.blueShift = number(CffOperator::kBlueShift, values.blueShift);
    values.blueFuzz = number(CffOperator::kBlueFuzz, values.blueFuzz);
    values.stdHW = number(CffOperator::kStdHW, 0);
    values.stdVW = number(CffOperator::kStdVW, 0);
    values.stemSnapHCount =
        Fill(values.stemSnapH, dict.Sums(CffOperator::kStemSnapH, Values::kMostSnaps));
    values.stemSnapVCount =
        Fill(values.stemSnapV, dict.Sums(CffOperator::kStemSnapV, Values::kMostSnaps));
    values.forceBold = number(CffOperator::kForceBold, 0) != 0;
    values.expansionFactor = number(CffOperator::kExpansionFactor, values.expansionFactor);
    return values;
}

}  // namespace

std::shared_ptr<CffProgram> CffProgram::Open(std::vector<std::uint8_t> bytes,
                                             std::string& problem) {
    auto program = std::make_shared<CffProgramImpl>();
    if (!program->Read(std::move(bytes), problem)) {
        return nullptr;
    }
    return program;
}

}  // namespace VANTIX::HOST
