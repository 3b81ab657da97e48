// SPDX-License-Identifier: MIT
#include "host/fonts/truetypeancillaries.h"

#include <utility>

#include "core/fonts/ifontancillaries.h"
#include "core/object/tobject.h"
#include "host/fonts/sfnt.h"

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
    TrueTypeAncillary(std::shared_ptr<TrueTypeProgram> program,
                      const GRAPHICS::IFontPackageHandler& font)
        : mProgram(std::move(program)), mFont(font) {}

    std::uint32_t GetGlyphCount() const override { return mProgram->Finish().glyphCount; }

    std::int16_t GetLocaFormat() const override { return mProgram->Finish().locaFormat; }

    std::int32_t GetUnitsPerEm() const override { return mProgram->UnitsPerEm(); }

    void EnumerateTables(GRAPHICS::ITableFunctor& functor) const override {
        EnumerateTrueTypeTables(*mProgram, functor);
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
    const GRAPHICS::IFontPackageHandler& mFont;
};

}  // namespace

void OfferTrueType(GRAPHICS::IFontPackageHandler& font,
                   const std::shared_ptr<TrueTypeProgram>& program) {
    font.Aggregate(MakeObject<TrueTypeData>(program).Get(), GRAPHICS::IID_IFONTDATA);
    font.Aggregate(MakeObject<TrueTypeAncillary>(program, font).Get(), GRAPHICS::IID_IT42ANCILLARY);
}

void EnumerateTrueTypeTables(TrueTypeProgram& program, GRAPHICS::ITableFunctor& functor) {
    const Sfnt font(program.Finish().bytes);
    for (const auto& [tag, bytes] : font.Tables()) {
        if (!functor(tag, bytes.data(), static_cast<std::uint32_t>(bytes.size()))) {
            return;
        }
    }
}

}  // namespace VANTIX::HOST
