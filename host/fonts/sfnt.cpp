// SPDX-License-Identifier: MIT
#include "host/fonts/sfnt.h"

#include <algorithm>
#include <array>

namespace VANTIX::HOST {
namespace {

constexpr std::size_t kHeaderBytes = 12;
constexpr std::size_t kRecordBytes = 16;
constexpr int kDeepestComponent = 16;

/// Steps through the components of a composite glyph (OpenType 1.9, glyf).
class Components {
public:
    explicit Components(ByteView glyph)
        : mGlyph(glyph), mMore(glyph.size() >= 10 && (glyph[0] & 0x80U) != 0) {}

    /// False at the end, for a simple glyph, and for one that ends too soon.
    bool Next(std::uint16_t& component) {
        if (!mMore || mAt + 4 > mGlyph.size()) {
            return false;
        }
        const unsigned flags = ReadU16(mGlyph, mAt);
        component = ReadU16(mGlyph, mAt + 2);
        mAt += (flags & kWords) != 0 ? 8 : 6;
        mAt += (flags & kScale) != 0       ? 2
               : (flags & kTwoScales) != 0 ? 4
               : (flags & kMatrix) != 0    ? 8
                                           : 0;
        mMore = (flags & kMore) != 0;
        return true;
    }

private:
    static constexpr unsigned kWords = 0x1;
    static constexpr unsigned kScale = 0x8;
    static constexpr unsigned kMore = 0x20;
    static constexpr unsigned kTwoScales = 0x40;
    static constexpr unsigned kMatrix = 0x80;

    ByteView mGlyph;
    std::size_t mAt = 10;  // behind the number of contours and the box
    bool mMore;
};

}  // namespace

Sfnt::Sfnt(ByteView file) {
    if (file.size() < kHeaderBytes) {
        return;
    }
    mVersion = ReadU32(file, 0);
    const std::size_t count =
        std::min<std::size_t>(ReadU16(file, 4), (file.size() - kHeaderBytes) / kRecordBytes);
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t record = kHeaderBytes + i * kRecordBytes;
        const std::size_t offset = ReadU32(file, record + 8);
        if (offset <= file.size()) {
            const std::size_t length =
                std::min<std::size_t>(ReadU32(file, record + 12), file.size() - offset);
            mTables.emplace_back(ReadU32(file, record), file.subspan(offset, length));
        }
    }
}

const Sfnt::Table* Sfnt::Find(FourCC tag) const {
    const auto found = std::find_if(mTables.begin(), mTables.end(),
                                    [tag](const Table& table) { return table.first == tag; });
    return found == mTables.end() ? nullptr : &*found;
}

ByteView Sfnt::Bytes(FourCC tag) const {
    const Table* table = Find(tag);
    return table == nullptr ? ByteView{} : table->second;
}

const char* Sfnt::Problem() const {
    struct Need {
        FourCC tag;
        std::size_t leastBytes;
        const char* problem;
    };

    static constexpr std::array<Need, 6> kNeeds{
        {{"head"_cc, kHeadBytes, "no header ('head')"},
         {"hhea"_cc, kHheaBytes, "no horizontal header ('hhea')"},
         {"maxp"_cc, kMaxpLeastBytes, "no maximum profile ('maxp')"},
         {"hmtx"_cc, 4, "no metrics ('hmtx')"},
         {"loca"_cc, 4, "no locations of glyphs ('loca')"},
         {"glyf"_cc, 0, "no outlines ('glyf')"}}};
    if (mVersion != 0x00010000 && mVersion != "true"_cc) {
        return "no TrueType font";
    }
    for (const Need& need : kNeeds) {
        const Table* table = Find(need.tag);
        if (table == nullptr || table->second.size() < need.leastBytes) {
            return need.problem;
        }
    }
    if (GlyphCount() == 0) {
        return "no glyphs";
    }
    if (ReadU16(Bytes("head"_cc), kHeadUnitsPerEm) == 0) {
        return "no units per em";
    }
    return LocaFormat() == 0 || LocaFormat() == 1 ? nullptr : "an unknown format of 'loca'";
}

std::uint32_t Sfnt::GlyphCount() const {
    return ReadU16(Bytes("maxp"_cc), kMaxpGlyphCount);
}

std::int16_t Sfnt::LocaFormat() const {
    return static_cast<std::int16_t>(ReadU16(Bytes("head"_cc), kHeadLocaFormat));
}

GlyphTable::GlyphTable(const Sfnt& font)
    : mGlyf(font.Bytes("glyf"_cc)),
      mLoca(font.Bytes("loca"_cc)),
      mIsLong(font.LocaFormat() == 1),
      mParts(font.GlyphCount()) {}

ByteView GlyphTable::Glyph(std::uint32_t glyph) const {
    const std::size_t entry = mIsLong ? 4 : 2;
    if (glyph >= mParts.size() || (std::size_t{glyph} + 2) * entry > mLoca.size()) {
        return {};
    }
    const auto location = [&](std::size_t index) {
        return mIsLong ? std::size_t{ReadU32(mLoca, index * 4)}
                       : std::size_t{2} * ReadU16(mLoca, index * 2);
    };
    // What is wrong is read as FreeType does, from whose outlines these must not differ.
    const std::size_t start = location(glyph);
    std::size_t end = location(std::size_t{glyph} + 1);
    if (end < start || (end > mGlyf.size() && glyph + 1 == mParts.size())) {
        end = mGlyf.size();
    }
    return start < end && end <= mGlyf.size() ? mGlyf.subspan(start, end - start) : ByteView{};
}

std::uint32_t GlyphTable::PartsOf(std::uint32_t glyph, int depth) {
    if (glyph >= mParts.size() || depth > kDeepestComponent) {
        return kTooMany;
    }
    if (mParts[glyph] != 0) {
        return mParts[glyph];
    }
    std::uint32_t parts = 1;
    mParts[glyph] = kTooMany;  // what it is if a component asks for it again
    Components components(Glyph(glyph));
    std::uint16_t component = 0;
    while (parts <= kMostParts && components.Next(component)) {
        parts += PartsOf(component, depth + 1);
    }
    mParts[glyph] = static_cast<std::uint16_t>(std::min(parts, kTooMany));
    return mParts[glyph];
}

void GlyphTable::MarkParts(std::uint32_t glyph, std::vector<bool>& marks) const {
    if (marks[glyph]) {
        return;
    }
    marks[glyph] = true;
    Components components(Glyph(glyph));
    std::uint16_t component = 0;
    while (components.Next(component)) {
        MarkParts(component, marks);
    }
}

}  // namespace VANTIX::HOST
