// SPDX-License-Identifier: MIT
#include "host/fonts/type3font.h"

#include <cmath>
#include <exception>
#include <map>
#include <optional>
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

class Type3Font final : public SimpleFont {
public:
    Type3Font(std::vector<Type3Glyph> glyphs, SimpleFontDescription description,
              const std::array<float, 6>& matrix)
        : SimpleFont(GRAPHICS::TFontType::kType3, std::move(description)),
          mGlyphCount(static_cast<std::int32_t>(glyphs.size())),
          mMatrix(HandlerMatrixOf(matrix)) {
        // A glyph that leads away from the line has no advance in the sense of the document.
        if (matrix[1] == 0.0F) {
            TakeAdvances(glyphs, matrix[0]);
        }
        Aggregate(MakeObject<Type3Ancillary>(std::move(glyphs), *this).Get(),
                  GRAPHICS::IID_IT3ANCILLARY);
    }

    bool IsEmbedded() const override { return true; }

    const float* GetFontMatrix() const override { return mMatrix.data(); }

    std::int32_t GetGlyphCount() const override { return mGlyphCount; }

    /// Mirrored glyphs lead to the left.
    float AdvanceAt(std::uint16_t code) const override {
        const float width = Description().widths.at(code);
        return std::isfinite(width) ? width : mAdvances.at(code).value_or(0.0F);
    }

    std::optional<float> WrittenAdvanceAt(std::uint16_t code) const override {
        return mAdvances.at(code);
    }

private:
    void TakeAdvances(const std::vector<Type3Glyph>& glyphs, float unit) {
        std::map<std::string_view, float> widths;
        for (const Type3Glyph& glyph : glyphs) {
            widths.emplace(glyph.name, glyph.width * unit);
        }
        for (std::size_t code = 0; code < kSimpleCodes; ++code) {
            const auto found = widths.find(Description().encoding[code]);
            if (found != widths.end() && std::isfinite(found->second)) {
                mAdvances[code] = found->second;
            }
        }
    }

    std::int32_t mGlyphCount;
    HandlerMatrix mMatrix;
    std::array<std::optional<float>, kSimpleCodes> mAdvances;  ///< as written, in text space
};

}  // namespace

TInterfacePtr<SimpleFont> MakeType3Font(std::vector<Type3Glyph> glyphs,
                                        SimpleFontDescription description,
                                        const std::array<float, 6>& matrix) {
    return MakeObject<Type3Font>(std::move(glyphs), std::move(description), matrix);
}

}  // namespace VANTIX::HOST
