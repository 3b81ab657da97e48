// SPDX-License-Identifier: MIT
#include "host/fonts/sfntsubset.h"

#include "host/fonts/harfbuzz.h"
#include "host/fonts/sfntlayout.h"

namespace VANTIX::HOST {
namespace {

using namespace HARFBUZZ;

Input MakeInput(const Sfnt& font, const std::set<std::uint16_t>& glyphs) {
    Input input(hb_subset_input_create_or_fail());
    if (!input) {
        return input;
    }
    // ".notdef" keeps its outline: it is what an interpreter shows of a code without a glyph.
    hb_subset_input_set_flags(input.get(), HB_SUBSET_FLAGS_NOTDEF_OUTLINE);
    hb_set_t* wanted = hb_subset_input_glyph_set(input.get());
    hb_set_add(wanted, 0);
    for (const std::uint16_t glyph : glyphs) {
        hb_set_add(wanted, glyph);
    }
    hb_set_t* dropped = hb_subset_input_set(input.get(), HB_SUBSET_SETS_DROP_TABLE_TAG);
    for (const auto& [tag, bytes] : font.Tables()) {
        if (!IsPostScriptTable(tag)) {
            hb_set_add(dropped, tag);
        }
    }
    return input;
}

/// Empty where the new indices do not number `count` glyphs without gaps.
std::vector<std::uint16_t> OldGlyphs(hb_subset_plan_t* plan, std::uint32_t count) {
    const hb_map_t* map = hb_subset_plan_new_to_old_glyph_mapping(plan);
    std::vector<std::uint16_t> old(count);
    for (std::uint32_t i = 0; i < count; ++i) {
        const hb_codepoint_t glyph = hb_map_get(map, i);
        if (glyph == HB_MAP_VALUE_INVALID) {
            return {};
        }
        old[i] = static_cast<std::uint16_t>(glyph);
    }
    return old;
}

}  // namespace

std::optional<SfntSubset> SubsetSfnt(ByteView file, const Sfnt& font,
                                     const std::set<std::uint16_t>& glyphs) {
    const Blob blob(hb_blob_create_or_fail(
        reinterpret_cast<const char*>(file.data()),  // NOLINT: the type of the library's bytes
        static_cast<unsigned>(file.size()), HB_MEMORY_MODE_READONLY, nullptr, nullptr));
    const Face face(blob ? hb_face_create(blob.get(), 0) : nullptr);
    const Input input = MakeInput(font, glyphs);
    if (!face || !input) {
        return std::nullopt;
    }
    const Plan plan(hb_subset_plan_create_or_fail(face.get(), input.get()));
    const Face made(plan ? hb_subset_plan_execute_or_fail(plan.get()) : nullptr);
    const Blob result(made ? hb_face_reference_blob(made.get()) : nullptr);
    if (!result) {
        return std::nullopt;
    }
    unsigned size = 0;
    const char* data = hb_blob_get_data(result.get(), &size);
    SfntSubset subset{{data, data + size}, {}};
    const Sfnt cut(subset.bytes);
    if (cut.Problem() != nullptr) {
        return std::nullopt;
    }
    subset.oldGlyphs = OldGlyphs(plan.get(), cut.GlyphCount());
    return subset.oldGlyphs.empty() ? std::nullopt : std::optional(std::move(subset));
}

}  // namespace VANTIX::HOST
