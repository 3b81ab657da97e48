// SPDX-License-Identifier: MIT
#include "host/fonts/cidtruetypefont.h"

#include <set>
#include <utility>

#include "host/fonts/sfnt.h"
#include "host/fonts/truetypeancillaries.h"

namespace VANTIX::HOST {
namespace {

/// Glyphs go out by their indices alone, each once however many names it has.
class ByIndex final : public GRAPHICS::IGlyphFunctor {
public:
    explicit ByIndex(GRAPHICS::ICIDGlyphFunctor& functor) : mFunctor(functor) {}

    bool operator()(const char* /*name*/, std::int32_t /*nameLength*/, std::uint16_t index,
                    const GRAPHICS::IGlyphRecording* recording) override {
        return !mSeen.insert(index).second || mFunctor(recording, index);
    }

private:
    GRAPHICS::ICIDGlyphFunctor& mFunctor;
    std::set<std::uint16_t> mSeen;
};

/// Whether strings of PostScript take the program: its size and that of 'loca' have bounds.
bool FitsStrings(TrueTypeProgram& program) {
    constexpr std::size_t kDataLimit = 65535;
    constexpr std::size_t kLocaLimit = 65532;
    const FinishedTrueType& finished = program.Finish();
    const std::size_t loca = Sfnt(finished.bytes).Bytes("loca"_cc).size();
    return finished.bytes.size() < kDataLimit && loca > 0 && loca <= kLocaLimit;
}

class CIDTrueTypeAncillary : public TObject<GRAPHICS::ICIDKeyedT42Ancillary> {
public:
    /// The font owns this; so it is not counted.
    CIDTrueTypeAncillary(std::shared_ptr<TrueTypeProgram> program, const CIDFont& font)
        : mProgram(std::move(program)), mFont(font) {}

    const char* GetRegistry() const override { return mFont.Description().registry.c_str(); }

    const char* GetOrdering() const override { return mFont.Description().ordering.c_str(); }

    std::int32_t GetSupplement() const override { return mFont.Description().supplement; }

    float GetCIDFontVersion() const override { return 1.0F; }

    std::int32_t GetCIDCount() const override { return mFont.GetGlyphCount(); }

    std::int32_t GetUnitsPerEm() const override { return mProgram->UnitsPerEm(); }

    void EnumerateGlyphs(GRAPHICS::ICIDGlyphFunctor& functor) const override {
        ByIndex byIndex(functor);
        mProgram->EnumerateGlyphs(byIndex);
    }

    void EnumerateTables(GRAPHICS::ITableFunctor& functor) const override {
        EnumerateTrueTypeTables(*mProgram, functor);
    }

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
    std::shared_ptr<TrueTypeProgram> mProgram;
    const CIDFont& mFont;
};

class CIDTrueTypeFont : public CIDFont {
public:
    CIDTrueTypeFont(std::shared_ptr<TrueTypeProgram> program, CIDFontDescription description)
        : CIDFont(GRAPHICS::TFontType::kCIDKeyedTrueType, std::move(description)),
          mProgram(std::move(program)) {
        OfferTrueType(*this, mProgram);
        Aggregate(MakeObject<CIDTrueTypeAncillary>(mProgram, *this).Get(),
                  GRAPHICS::IID_ICIDKEYEDT42ANCILLARY);
    }

    bool HasOutline(std::uint16_t character) const override {
        const CIDCharacter* found = Find(character);
        return found != nullptr && mProgram->HasOutline(NameOf(found->glyph));
    }

    std::int32_t WrittenCIDFontType() const override {
        return mProgram->IsConverted() || !FitsStrings(*mProgram) ? 0 : 2;
    }

    /// Glyph space is an em, unless outlines are converted.
    GRAPHICS::FontBox GetFontBBox() const override {
        return WrittenCIDFontType() == 2 ? GRAPHICS::FontBox{} : CIDFont::GetFontBBox();
    }

    std::int32_t GetGlyphCount() const override {
        return static_cast<std::int32_t>(mProgram->Finish().glyphCount);
    }

protected:
    void Use(const CIDCharacter& character) override {
        mNames[character.glyph] = mProgram->NameGlyph(
            character.glyph, character.glyph == 0 ? ".notdef" : std::string_view());
    }

    std::uint16_t WrittenCode(std::uint16_t glyph) const override {
        const auto& glyphs = mProgram->Finish().glyphs;
        const auto found = glyphs.find(NameOf(glyph));
        return found == glyphs.end() ? std::uint16_t{0} : found->second;
    }

    std::optional<float> WrittenWidth(std::uint16_t glyph) const override {
        const float width = mProgram->WidthOf(NameOf(glyph));
        return width < 0.0F ? std::nullopt : std::optional(width);
    }

private:
    [[nodiscard]] std::string_view NameOf(std::uint16_t glyph) const {
        const auto found = mNames.find(glyph);
        return found == mNames.end() ? std::string_view(".notdef") : found->second;
    }

    std::shared_ptr<TrueTypeProgram> mProgram;
    std::map<std::uint16_t, std::string> mNames;  // by glyph of the file
};

}  // namespace

TInterfacePtr<CIDFont> MakeCIDTrueTypeFont(std::shared_ptr<TrueTypeProgram> program,
                                           CIDFontDescription description) {
    return MakeObject<CIDTrueTypeFont>(std::move(program), std::move(description));
}

}  // namespace VANTIX::HOST
