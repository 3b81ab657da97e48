// SPDX-License-Identifier: MIT
#include "host/fonts/cidcfffont.h"

#include <cmath>
#include <utility>

#include "host/fonts/cffsubroutines.h"
#include "host/fonts/glyphnames.h"

namespace VANTIX::HOST {
namespace {

/// Hands glyphs on by their CIDs.
class ByCid final : public CffGlyphFunctor {
public:
    ByCid(const CffProgram& program, GRAPHICS::ICIDCharStringFunctor& functor)
        : mProgram(program), mFunctor(functor) {}

    bool operator()(const CffGlyph& glyph) override {
        return mFunctor(mProgram.CidOf(glyph.index), glyph.fontDict, glyph.charString);
    }

private:
    const CffProgram& mProgram;
    GRAPHICS::ICIDCharStringFunctor& mFunctor;
};

class CIDCffAncillary final : public CffSubroutines<GRAPHICS::ICIDKeyedCFFAncillary> {
public:
    /// The font owns this; so it is not counted.
    CIDCffAncillary(std::shared_ptr<CffProgram> program, const CIDFont& font)
        : CffSubroutines(std::move(program)), mFont(font) {
        for (std::size_t i = 0; i < static_cast<std::size_t>(Program().FontDictCount()); ++i) {
            mMatrices.push_back(HandlerMatrixOf(Program().FontDictMatrix(i)));
            mNames.push_back(SanitiseGlyphName(Program().FontDictName(i)));
        }
    }

    const char* GetRegistry() const override { return mFont.Description().registry.c_str(); }

    const char* GetOrdering() const override { return mFont.Description().ordering.c_str(); }

    std::int32_t GetSupplement() const override { return mFont.Description().supplement; }

    float GetCIDFontVersion() const override { return Program().CidFontVersion(); }

    std::int32_t GetCIDCount() const override { return Program().CidCount(); }

    std::int32_t GetFontDictCount() const override { return Program().FontDictCount(); }

    const float* GetFontDictMatrix(std::int32_t index) const override {
        return IsThere(index) ? mMatrices[static_cast<std::size_t>(index)].data() : nullptr;
    }

    const char* GetFontDictName(std::int32_t index) const override {
        return IsThere(index) ? mNames[static_cast<std::size_t>(index)].c_str() : nullptr;
    }

    GRAPHICS::PrivateValues GetFontDictPrivate(std::int32_t index) const override {
        return IsThere(index) ? Program().FontDictPrivate(static_cast<std::size_t>(index))
                              : GRAPHICS::PrivateValues();
    }

    void EnumerateCharStrings(GRAPHICS::ICIDCharStringFunctor& functor) const override {
        ByCid byCid(Program(), functor);
        Program().EnumerateGlyphs(true, byCid);
    }

    void EnumerateVerticalMetrics(GRAPHICS::IVerticalMetricFunctor& functor) const override {
        mFont.EnumerateVerticalMetrics(functor);
    }

private:
    [[nodiscard]] bool IsThere(std::int32_t index) const {
        return index >= 0 && index < Program().FontDictCount();
    }

    const CIDFont& mFont;
    std::vector<HandlerMatrix> mMatrices;
    std::vector<std::string> mNames;
};

/// What a CID-keyed TrueType font answers, too: characters, but neither outlines nor tables.
class CIDCharacters final : public TObject<GRAPHICS::ICIDKeyedT42Ancillary> {
public:
    /// The font owns this; so it is not counted.
    CIDCharacters(std::shared_ptr<CffProgram> program, const CIDFont& font)
        : mProgram(std::move(program)), mFont(font) {}

    const char* GetRegistry() const override { return mFont.Description().registry.c_str(); }

    const char* GetOrdering() const override { return mFont.Description().ordering.c_str(); }

    std::int32_t GetSupplement() const override { return mFont.Description().supplement; }

    float GetCIDFontVersion() const override { return mProgram->CidFontVersion(); }

    std::int32_t GetCIDCount() const override { return mProgram->CidCount(); }

    std::int32_t GetUnitsPerEm() const override {
        constexpr float kUsual = 0.001F;
        const float unit = std::abs(mProgram->Matrix()[0]);
        return static_cast<std::int32_t>(std::lround(1.0F / (unit > 0.0F ? unit : kUsual)));
    }

    void EnumerateGlyphs(GRAPHICS::ICIDGlyphFunctor& /*functor*/) const override {}

    void EnumerateTables(GRAPHICS::ITableFunctor& /*functor*/) const override {}

    std::int32_t GetUnicodeCount() const override {
        return static_cast<std::int32_t>(mFont.WrittenUnicode().size());
    }

    void EnumerateUnicode(GRAPHICS::ICIDToUnicodeFunctor& functor) const override {
        for (const auto& [code, character] : mFont.WrittenUnicode()) {
            if (!functor(code, character)) {
                return;
            }
        }
    }

    void EnumerateVerticalMetrics(GRAPHICS::IVerticalMetricFunctor& functor) const override {
        mFont.EnumerateVerticalMetrics(functor);
    }

private:
    std::shared_ptr<CffProgram> mProgram;
    const CIDFont& mFont;
};

class CIDCffFont final : public CIDFont {
public:
    CIDCffFont(std::shared_ptr<CffProgram> program, CIDFontDescription description)
        : CIDFont(GRAPHICS::TFontType::kCIDKeyedCFF, std::move(description)),
          mProgram(std::move(program)) {
        mProgram->ExpectConversion(true);
        Aggregate(MakeObject<CIDCffAncillary>(mProgram, *this).Get(),
                  GRAPHICS::IID_ICIDKEYEDCFFANCILLARY);
        Aggregate(MakeObject<CIDCharacters>(mProgram, *this).Get(),
                  GRAPHICS::IID_ICIDKEYEDT42ANCILLARY);
    }

    bool HasOutline(std::uint16_t character) const override {
        const CIDCharacter* found = Find(character);
        return found != nullptr && mProgram->HasGlyphOutline(GlyphOf(found->glyph));
    }

    /// The font DICTs bring all of theirs.
    const float* GetFontMatrix() const override { return kIdentity.data(); }

    std::int32_t GetGlyphCount() const override { return mProgram->WrittenCount(); }

protected:
    void Use(const CIDCharacter& character) override {
        mProgram->UseIndex(GlyphOf(character.glyph));
    }

    std::uint16_t WrittenCode(std::uint16_t cid) const override {
        return mProgram->GlyphOfCid(cid) ? cid : std::uint16_t{0};
    }

    std::optional<float> WrittenWidth(std::uint16_t cid) const override {
        return mProgram->WidthOfGlyph(GlyphOf(cid));
    }

    // A glyph is written in the space of its font DICT.
    std::array<float, 2> Units(std::uint16_t cid) const override {
        const std::array<float, 6>& matrix = mProgram->GlyphMatrix(GlyphOf(cid));
        const std::array<float, 2> usual = CIDFont::Units(cid);
        return {matrix[0] != 0.0F ? 1.0F / matrix[0] : usual[0],
                matrix[3] != 0.0F ? 1.0F / matrix[3] : usual[1]};
    }

private:
    static constexpr HandlerMatrix kIdentity{1, 0, 0, 1, 0, 0};

    [[nodiscard]] std::uint16_t GlyphOf(std::uint16_t cid) const {
        return mProgram->GlyphOfCid(cid).value_or(0);
    }

    std::shared_ptr<CffProgram> mProgram;
};

}  // namespace

TInterfacePtr<CIDFont> MakeCIDCFFFont(std::shared_ptr<CffProgram> program,
                                      CIDFontDescription description) {
    if (program->IsCidKeyed()) {
        description.registry = SanitiseGlyphName(program->Registry());
        description.ordering = SanitiseGlyphName(program->Ordering());
        description.supplement = program->Supplement();
    }
    return MakeObject<CIDCffFont>(std::move(program), std::move(description));
}

}  // namespace VANTIX::HOST
