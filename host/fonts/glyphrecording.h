// SPDX-License-Identifier: MIT
#pragma once

#include <freetype/freetype.h>

#include <cstdint>

#include "core/fonts/ifontancillaries.h"
#include "core/object/tobject.h"

namespace VANTIX::HOST {

/// The outline of the glyph that a face (borrowed) has loaded: one object serves all glyphs.
class GlyphRecording : public TObject<GRAPHICS::IGlyphRecording> {
public:
    explicit GlyphRecording(FT_Face face) : mFace(face) {}

    /// Turns to a glyph with its advance in ems. `isDrawable` false: to a blank one.
    void Load(std::uint16_t glyph, float advance, bool isDrawable);

    bool Play(GRAPHICS::IConnectionSpace& space) const override;

    float GetAdvanceWidth() const override { return mAdvance; }

    std::int32_t GetPointCount() const override;

private:
    FT_Face mFace;
    float mAdvance = 0;
    bool mHasOutline = false;
};

/// Loads the outline of a glyph in units of the font, without hints; false where that fails.
bool LoadOutline(FT_Face face, std::uint32_t glyph);

}  // namespace VANTIX::HOST
