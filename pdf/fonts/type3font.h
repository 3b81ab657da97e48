// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>

#include "host/fonts/type3font.h"
#include "pdf/contentparser.h"
#include "pdf/fonts/fontdictionary.h"
#include "pdf/reporter.h"
#include "pdf/resources.h"

namespace VANTIX::PDF {

/// A glyph description of a Type 3 font (PDF Reference, 5.5.4), in glyph space.
struct GlyphDescription {
    QPDFObjectHandle stream;
    float width = 0.0F;
    std::array<float, 4> box{};  ///< llx lly urx ury, of a glyph that is declared by d1
    bool isColoured = true;
    bool isStroked = false;
    /// It has colours of its own: its content is played wherever it is shown.
    bool isPlayed = false;
};

/// A Type 3 font of the document.
struct Type3Font {
    /// Of its glyphs, those of `resources`.
    Resources& ResourcesOf(ColorSpaces& colorSpaces) const;

    QPDFObjectHandle resources;
    std::array<double, 6> matrix{};
    /// 1, or one more than that of the fonts that its glyphs show.
    int height = 1;
    std::map<std::string, GlyphDescription> glyphs;  ///< by their names in PostScript
    std::array<const GlyphDescription*, HOST::kSimpleCodes> byCode{};

private:
    mutable std::unique_ptr<Resources> mInForce;
};

/// Reads Type 3 fonts, and those that their glyphs show.
class Type3Fonts {
public:
    explicit Type3Fonts(Reporter& reporter) : mReporter(reporter) {}

    /// The font of a dictionary. `outer` serves glyphs of a font without resources. Null for one of
    /// which nothing can be shown (after a warning), and for one that is being read.
    std::shared_ptr<const Type3Font> Read(const QPDFObjectHandle& dictionary,
                                          const QPDFObjectHandle& outer);

private:
    class Survey;

    std::shared_ptr<const Type3Font> ReadNew(const QPDFObjectHandle& dictionary,
                                             const QPDFObjectHandle& outer);

    Reporter& mReporter;
    std::map<std::string, std::shared_ptr<const Type3Font>> mFonts;
    int mDepth = 0;
};

/// Plays a glyph into the base space of a recording.
using GlyphPlayer =
    std::function<void(const Type3Font&, const GlyphDescription&, HOST::BaseConnectionSpace&)>;

/// Describes the font for the host and makes its handler; `selector` is its number.
TInterfacePtr<HOST::SimpleFont> MakeType3Font(const std::shared_ptr<const Type3Font>& font,
                                              const FontDictionary& dictionary,
                                              std::int32_t selector, const GlyphPlayer& player);

}  // namespace VANTIX::PDF
