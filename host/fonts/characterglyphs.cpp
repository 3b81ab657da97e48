// SPDX-License-Identifier: MIT
#include "host/fonts/characterglyphs.h"

#include <limits>
#include <utility>

#include "host/fonts/harfbuzz.h"

namespace VANTIX::HOST {
namespace {

using Font = std::unique_ptr<hb_font_t, HARFBUZZ::Destroyer<hb_font_destroy>>;
using Buffer = std::unique_ptr<hb_buffer_t, HARFBUZZ::Destroyer<hb_buffer_destroy>>;

Font FontOf(const std::vector<std::uint8_t>& bytes) {
    const HARFBUZZ::Blob blob(hb_blob_create(reinterpret_cast<const char*>(bytes.data()),
                                             static_cast<unsigned>(bytes.size()),
                                             HB_MEMORY_MODE_READONLY, nullptr, nullptr));
    const HARFBUZZ::Face face(hb_face_create(blob.get(), 0));
    return Font(hb_font_create(face.get()));
}

}  // namespace

struct CharacterGlyphs::Parts {
    explicit Parts(std::vector<std::uint8_t> theBytes)
        : bytes(std::move(theBytes)), font(FontOf(bytes)), buffer(hb_buffer_create()) {}

    std::vector<std::uint8_t> bytes;
    Font font;
    Buffer buffer;
};

CharacterGlyphs::CharacterGlyphs(std::vector<std::uint8_t> bytes)
    : mParts(std::make_unique<Parts>(std::move(bytes))) {}

CharacterGlyphs::~CharacterGlyphs() = default;

std::uint16_t CharacterGlyphs::GlyphOf(char32_t character, bool isVertical) const {
    hb_codepoint_t glyph = 0;
    hb_font_get_nominal_glyph(mParts->font.get(), character, &glyph);
    if (isVertical && glyph != 0) {
        // Text that runs down has this feature.
        hb_buffer_t* buffer = mParts->buffer.get();
        const std::uint32_t text = character;
        hb_buffer_clear_contents(buffer);
        hb_buffer_add_utf32(buffer, &text, 1, 0, 1);
        hb_buffer_set_direction(buffer, HB_DIRECTION_TTB);
        hb_buffer_guess_segment_properties(buffer);
        hb_shape(mParts->font.get(), buffer, nullptr, 0);
        unsigned count = 0;
        const hb_glyph_info_t* shaped = hb_buffer_get_glyph_infos(buffer, &count);
        glyph = count == 1 && shaped->codepoint != 0 ? shaped->codepoint : glyph;
    }
    return glyph <= std::numeric_limits<std::uint16_t>::max() ? static_cast<std::uint16_t>(glyph)
                                                              : std::uint16_t{0};
}

}  // namespace VANTIX::HOST
