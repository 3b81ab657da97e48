// SPDX-License-Identifier: MIT
#include <utility>

#include "core/fonts/ifontancillaries.h"
#include "host/fonts/sfnt.h"
#include "host/fonts/truetypeprogram.h"

namespace VANTIX::HOST {
namespace {

class TrueTypeData : public TObject<GRAPHICS::IFontData> {
public:
    explicit TrueTypeData(std::shared_ptr<TrueTypeProgram> program)
        : mProgram(std::move(program)) {}

    const std::uint8_t* GetData() const override { return mProgram->Finish().bytes.data(); }

    std::int32_t GetSize() const override {
        return static_cast<std::int32_t>(mProgram->Finish().bytes.size());
    }

private:
    std::shared_ptr<TrueTypeProgram> mProgram;
};

class TrueTypeAncillary : public TObject<GRAPHICS::IT42Ancillary> {
public:
    /// The font owns this; so it is not counted.
    TrueTypeAncillary(std::shared_ptr<TrueTypeProgram> program, const SimpleFont& font)
        : mProgram(std::move(program)), mFont(font) {}

    std::uint32_t GetGlyphCount() const override { return mProgram->Finish().glyphCount; }

    std::int16_t GetLocaFormat() const override { return mProgram->Finish().locaFormat; }

    std::int32_t GetUnitsPerEm() const override { return mProgram->UnitsPerEm(); }

    void EnumerateTables(GRAPHICS::ITableFunctor& functor) const override {
        const Sfnt font(mProgram->Finish().bytes);
        for (const auto& [tag, bytes] : font.Tables()) {
            if (!functor(tag, bytes.data(), static_cast<std::uint32_t>(bytes.size()))) {
                return;
            }
        }
    }

    void EnumerateGlyphs(GRAPHICS::IGlyphFunctor& functor) const override {
        mProgram->EnumerateGlyphs(functor);
    }

    void EnumerateGlyphNames(GRAPHICS::IGlyphNameFunctor& functor) const override {
        for (const auto& [name, index] : mProgram->Finish().glyphs) {
            if (name != ".notdef" && !functor(name.c_str(), index)) {
                return;
            }
        }
    }

    void EnumerateEncoding(GRAPHICS::IEncodingFunctor& functor) const override {
        std::int32_t count = 0;
        const GRAPHICS::EncodingDifference* names = mFont.GetEncodingDifferences(count);
        for (std::int32_t i = 0; i < count && functor(names[i].code, names[i].name); ++i) {
        }
    }

private:
    std::shared_ptr<TrueTypeProgram> mProgram;
    const SimpleFont& mFont;
};

class TrueTypeFont : public SimpleFont {
public:
    TrueTypeFont(std::shared_ptr<TrueTypeProgram> program, SimpleFontDescription description)
        : SimpleFont(GRAPHICS::TFontType::kTrueType, std::move(description)),
          mProgram(std::move(program)) {
        TakeWidths(*mProgram);
        Aggregate(MakeObject<TrueTypeData>(mProgram).Get(), GRAPHICS::IID_IFONTDATA);
        Aggregate(MakeObject<TrueTypeAncillary>(mProgram, *this).Get(),
                  GRAPHICS::IID_IT42ANCILLARY);
    }

    bool IsEmbedded() const override { return true; }

    /// Glyphs of Type 42 fonts are one unit high.
    const float* GetFontMatrix() const override { return nullptr; }

    /// A Type 42 font has its box in ems, where that of the program would be thousands of times too
    /// large to keep glyphs in a cache by: none says that it is unknown.
    GRAPHICS::FontBox GetFontBBox() const override {
        return mProgram->IsConverted() ? SimpleFont::GetFontBBox() : GRAPHICS::FontBox{};
    }

    /// The names, of which a glyph may have several: as many entries has the dictionary of glyphs.
    std::int32_t GetGlyphCount() const override {
        return static_cast<std::int32_t>(mProgram->Finish().glyphs.size());
    }

private:
    std::shared_ptr<TrueTypeProgram> mProgram;
};

}  // namespace

TInterfacePtr<SimpleFont> MakeTrueTypeFont(std::shared_ptr<TrueTypeProgram> program,
                                           SimpleFontDescription description) {
    return MakeObject<TrueTypeFont>(std::move(program), std::move(description));
}

}  // namespace VANTIX::HOST
