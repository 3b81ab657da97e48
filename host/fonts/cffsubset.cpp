// SPDX-License-Identifier: MIT
#include "host/fonts/cffsubset.h"

#include <algorithm>
#include <string>

#include "host/fonts/cffstandard.h"
#include "host/fonts/harfbuzz.h"

namespace VANTIX::HOST {
namespace {

using namespace HARFBUZZ;

Blob BlobOf(ByteView bytes) {
    return Blob(hb_blob_create_or_fail(
        reinterpret_cast<const char*>(bytes.data()),  // NOLINT: the type of the library's bytes
        static_cast<unsigned>(bytes.size()), HB_MEMORY_MODE_DUPLICATE, nullptr, nullptr));
}

/// The font as an OpenType file of the two tables that cutting needs.
Face WrappedFace(const CffTables& font) {
    std::vector<std::uint8_t> maxp(kMaxpLeastBytes);
    WriteU32(maxp, 0, 0x5000);
    WriteU16(maxp, kMaxpGlyphCount, font.glyphs.Count());
    Face face(hb_face_builder_create());
    const Blob cff = BlobOf(font.file);
    const Blob counts = BlobOf(maxp);
    const bool isMade = cff && counts &&
                        hb_face_builder_add_table(face.get(), "CFF "_cc, cff.get()) != 0 &&
                        hb_face_builder_add_table(face.get(), "maxp"_cc, counts.get()) != 0;
    return isMade ? std::move(face) : nullptr;
}

/// A number of a DICT; without its first byte an offset of an INDEX.
std::string Number(std::size_t value) {
    return {'\x1D', static_cast<char>(value >> 24U), static_cast<char>(value >> 16U),
            static_cast<char>(value >> 8U), static_cast<char>(value)};
}

/// An INDEX of one entry.
std::string IndexOf(const std::string& entry) {
    const std::string offsets = Number(1).substr(1) + Number(entry.size() + 1).substr(1);
    return std::string{'\0', '\1', '\4'} + offsets + entry;
}

/// The Top DICT without encoding, its offsets moved by `shift`. Its length does not depend on that.
std::string ShiftedTop(const CffDict& top, std::size_t shift) {
    const auto moved = [&](double value, std::size_t predefined) {
        const auto offset = static_cast<std::size_t>(std::max(value, 0.0));
        return Number(offset < predefined ? offset : offset + shift);
    };
    std::string text;
    for (const CffDict::Entry& entry : top.Entries()) {
        const std::vector<double>& values = entry.values;
        const auto key = static_cast<unsigned>(entry.key);
        if (entry.key == CffOperator::kEncoding) {
            continue;
        }
        if (entry.key == CffOperator::kCharset && !values.empty()) {
            text += moved(values.back(), kCffPredefinedCharsets);
        } else if (entry.key == CffOperator::kCharStrings && !values.empty()) {
            text += moved(values.back(), 0);
        } else if (entry.key == CffOperator::kPrivate && values.size() == 2) {
            text += Number(static_cast<std::size_t>(std::max(values[0], 0.0)));
            text += moved(values[1], 0);
        } else {
            text.append(entry.operands.begin(), entry.operands.end());
        }
        if (key > 0xFFU) {
            text += static_cast<char>(key >> 8U);
        }
        text += static_cast<char>(key);
    }
    return text;
}

}  // namespace

std::optional<std::vector<std::uint8_t>> SubsetCff(const CffTables& font,
                                                   const std::set<std::uint16_t>& glyphs) {
    const Face face = WrappedFace(font);
    const Input input(hb_subset_input_create_or_fail());
    if (!face || !input) {
        return std::nullopt;
    }
    hb_subset_input_set_flags(input.get(),
                              HB_SUBSET_FLAGS_NOTDEF_OUTLINE | HB_SUBSET_FLAGS_GLYPH_NAMES);
    hb_set_t* wanted = hb_subset_input_glyph_set(input.get());
    hb_set_add(wanted, 0);
    for (const std::uint16_t glyph : glyphs) {
        hb_set_add(wanted, glyph);
    }
    const Face made(hb_subset_or_fail(face.get(), input.get()));
    const Blob result(made ? hb_face_reference_table(made.get(), "CFF "_cc) : nullptr);
    unsigned size = 0;
    const char* data = result ? hb_blob_get_data(result.get(), &size) : nullptr;
    if (size == 0) {
        return std::nullopt;
    }
    std::vector<std::uint8_t> bytes(data, data + size);
    CffTables cut;
    std::string problem;
    if (!cut.Read(bytes, problem) || cut.isCidKeyed) {
        return std::nullopt;
    }
    const std::set<std::string_view> names(cut.names.begin(), cut.names.end());
    const bool isWhole = std::all_of(glyphs.begin(), glyphs.end(), [&](std::uint16_t glyph) {
        return names.contains(font.names[glyph]);
    });
    return isWhole ? std::optional(std::move(bytes)) : std::nullopt;
}

std::vector<std::uint8_t> RenameCff(const CffTables& font, std::string_view name) {
    const ByteView header = font.file.first(font.nameIndex);
    const ByteView rest = font.file.subspan(font.topEnd);
    std::string start(header.begin(), header.end());
    start += IndexOf(std::string(name));
    const std::size_t size = start.size() + IndexOf(ShiftedTop(font.top, 0)).size();
    start += IndexOf(ShiftedTop(font.top, size - font.topEnd));
    std::vector<std::uint8_t> bytes(start.begin(), start.end());
    bytes.insert(bytes.end(), rest.begin(), rest.end());
    return bytes;
}

}  // namespace VANTIX::HOST
