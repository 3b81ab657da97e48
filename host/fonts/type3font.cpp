// SPDX-License-Identifier: MIT
#include "host/fonts/type3font.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "core/fonts/ifontancillaries.h"
#include "core/graphics/pluginhelper/delegateconnectionspace.h"
#include "host/graphics/baseconnectionspace.h"

namespace VANTIX::HOST {
namespace {

/// What draws itself by a function, and nothing else. It borrows the function.
class GlyphRecording final : public GRAPHICS::IdleConnectionSpace<GRAPHICS::IConnectionSpace> {
public:
    explicit GlyphRecording(const Type3Glyph& glyph) : mGlyph(glyph) {}

    void PlayTo(GRAPHICS::IConnectionSpace& space) const override {
        BaseConnectionSpace* base = BaseConnectionSpace::From(&space);
        if (base == nullptr) {
            return;
        }
        try {
            mGlyph.play(*base);
        } catch (const std::exception&) {
            // What was drawn so far is the glyph.
            return;
        }
    }

private:
    const Type3Glyph& mGlyph;
};

/// Glyphs and encoding of a font, which holds it.
class Type3Ancillary final : public TObject<GRAPHICS::IT3Ancillary> {
public:
    Type3Ancillary(std::vector<Type3Glyph> glyphs, const SimpleFont& font)
        : mGlyphs(std::move(glyphs)), mFont(font) {}

    std::int32_t GetGlyphCount() const override {
        return static_cast<std::int32_t>(mGlyphs.size());
    }

    void EnumerateGlyphs(GRAPHICS::IT3GlyphProcFunctor& functor) const override {
        for (const Type3Glyph& glyph : mGlyphs) {
            TInterfacePtr<GlyphRecording> recording;
            if (glyph.play) {
                recording = MakeObject<GlyphRecording>(glyph);
            }
            if (!functor(glyph.name.c_str(), static_cast<std::int32_t>(glyph.name.size()),
                         recording.Get(), glyph.box.data(), glyph.width, glyph.isColoured)) {
                return;
            }
        }
    }

    void EnumerateEncoding(GRAPHICS::IEncodingFunctor& functor) const override {
        std::int32_t count = 0;
        const GRAPHICS::EncodingDifference* entry = mFont.GetEncodingDifferences(count);
        while (count-- > 0 && functor(entry->code, entry->name)) {
            ++entry;
        }
    }

private:
    std::vector<Type3Glyph> mGlyphs;
    const SimpleFont& mFont;
};

/// The widths of glyphs in text space.
class Type3Widths final : public SimpleProgram {
public:
    Type3Widths(const std::vector<Type3Glyph>& glyphs, const std::array<float, 6>& matrix)
        : mGlyphs(glyphs), mMatrix(matrix) {}

    // A glyph that leads away from the line has no advance in the sense of the document.
    [[nodiscard]] float WidthOf(std::string_view glyph) const override {
        const auto found =
            std::find_if(mGlyphs.begin(), mGlyphs.end(),
                         [glyph](const Type3Glyph& each) { return each.name == glyph; });
        return found == mGlyphs.end() || mMatrix[1] != 0.0F ? -1.0F : found->width * mMatrix[0];
    }

    [[nodiscard]] bool HasOutline(std::string_view /*glyph*/) const override { return true; }

private:
    const std::vector<Type3Glyph>& mGlyphs;
    const std::array<float, 6>& mMatrix;
};

class Type3Font final : public SimpleFont {
public:
    Type3Font(std::vector<Type3Glyph> glyphs, SimpleFontDescription description,
              const std::array<float, 6>& matrix)
        : SimpleFont(GRAPHICS::TFontType::kType3, std::move(description)),
          mGlyphCount(static_cast<std::int32_t>(glyphs.size())),
          mMatrix{matrix[0], matrix[2], matrix[1], matrix[3], matrix[4], matrix[5]} {
        TakeWidths(Type3Widths(glyphs, matrix));
        Aggregate(MakeObject<Type3Ancillary>(std::move(glyphs), *this).Get(),
                  GRAPHICS::IID_IT3ANCILLARY);
    }

    bool IsEmbedded() const override { return true; }

    const float* GetFontMatrix() const override { return mMatrix.data(); }

    std::int32_t GetGlyphCount() const override { return mGlyphCount; }

private:
    std::int32_t mGlyphCount;
    std::array<float, 6> mMatrix;  // in the order of the handlers
};

}  // namespace

TInterfacePtr<SimpleFont> MakeType3Font(std::vector<Type3Glyph> glyphs,
                                        SimpleFontDescription description,
                                        const std::array<float, 6>& matrix) {
    return MakeObject<Type3Font>(std::move(glyphs), std::move(description), matrix);
}

}  // namespace VANTIX::HOST
