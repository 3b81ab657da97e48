// SPDX-License-Identifier: MIT
#include <utility>

#include "host/fonts/truetypeancillaries.h"
#include "host/fonts/truetypeprogram.h"

namespace VANTIX::HOST {
namespace {

class TrueTypeFont : public SimpleFont {
public:
    TrueTypeFont(std::shared_ptr<TrueTypeProgram> program, SimpleFontDescription description)
        : SimpleFont(GRAPHICS::TFontType::kTrueType, std::move(description)),
          mProgram(std::move(program)) {
        TakeWidths(*mProgram);
        OfferTrueType(*this, mProgram);
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
