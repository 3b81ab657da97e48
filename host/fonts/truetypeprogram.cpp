// SPDX-License-Identifier: MIT
#include "host/fonts/truetypeprogram.h"

#include <freetype/freetype.h>
#include <freetype/ftadvanc.h>
#include <freetype/tttables.h>

#include <cmath>
#include <limits>
#include <optional>
#include <set>
#include <unordered_map>
#include <utility>

#include "host/fonts/glyphnames.h"
#include "host/fonts/glyphrecording.h"
#include "host/fonts/sfntlayout.h"
#include "host/fonts/sfntsubset.h"

namespace VANTIX::HOST {
namespace {

constexpr const char* kNotdef = ".notdef";
/// As many entries as a dictionary of PostScript holds.
constexpr std::size_t kMostNames = 65535;
/// A name made of another one keeps this much of it.
constexpr std::size_t kMostOfName = 100;

/// A face of a library of its own, so that programs share nothing.
struct FaceCloser {
    void operator()(FT_Face face) const {
        FT_Library library = face->glyph->library;
        FT_Done_Face(face);
        FT_Done_FreeType(library);
    }
};

using Face = std::unique_ptr<FT_FaceRec, FaceCloser>;

Face OpenFace(ByteView bytes) {
    FT_Library library = nullptr;
    if (FT_Init_FreeType(&library) != 0) {
        return nullptr;
    }
    FT_Face face = nullptr;
    if (FT_New_Memory_Face(library, bytes.data(), static_cast<FT_Long>(bytes.size()), 0, &face) !=
        0) {
        FT_Done_FreeType(library);
        return nullptr;
    }
    return Face(face);
}

/// The maps from codes to glyphs that the file has; null or empty where it has none.
struct CharMaps {
    std::vector<FT_CharMap> unicode;  // those with most characters first
    FT_CharMap symbol = nullptr;
    FT_CharMap mac = nullptr;
};

CharMaps FindCharMaps(const FT_FaceRec& face) {
    constexpr FT_UShort kUnicodePlatform = 0;
    constexpr FT_UShort kMacPlatform = 1;
    constexpr FT_UShort kWindowsPlatform = 3;
    constexpr FT_UShort kWindowsFull = 10;
    constexpr FT_Long kVariationSelectors = 14;
    CharMaps maps;
    for (FT_Int i = 0; i < face.num_charmaps; ++i) {
        FT_CharMap map = face.charmaps[i];
        const FT_Long format = FT_Get_CMap_Format(map);
        // FreeType makes a map of 'post' where there is none; that has no format.
        if (format < 0 || format == kVariationSelectors) {
            continue;
        }
        if (map->platform_id == kWindowsPlatform && map->encoding_id == 0) {
            maps.symbol = map;
        } else if (map->platform_id == kMacPlatform && map->encoding_id == 0) {
            maps.mac = map;
        } else if (map->platform_id == kWindowsPlatform && map->encoding_id == kWindowsFull) {
            maps.unicode.insert(maps.unicode.begin(), map);
        } else if (map->platform_id == kUnicodePlatform ||
                   (map->platform_id == kWindowsPlatform && map->encoding_id == 1)) {
            maps.unicode.push_back(map);
        }
    }
    return maps;
}

class TrueTypeFile final : public TrueTypeProgram {
public:
    /// `face` reads `bytes`, an sfnt without problems.
    TrueTypeFile(std::vector<std::uint8_t> bytes, Face face)
        : mBytes(std::move(bytes)),
          mSfnt(mBytes),
          mGlyphs(mSfnt),
          mFace(std::move(face)),
          mCharMaps(FindCharMaps(*mFace)),
          mRecording(MakeObject<GlyphRecording>(mFace.get())) {
        mNames.emplace(kNotdef, std::uint16_t{0});
    }

    float WidthOf(std::string_view glyph) const override {
        const auto found = mNames.find(glyph);
        return found == mNames.end() ? -1.0F : Width(found->second);
    }

    bool HasOutline(std::string_view glyph) const override {
        const auto found = mNames.find(glyph);
        return found != mNames.end() && Load(found->second) && mFace->glyph->outline.n_points > 0;
    }

    bool HasUnicodeMap() const override { return !mCharMaps.unicode.empty(); }

    bool HasSymbolMap() const override { return mCharMaps.symbol != nullptr; }

    bool HasMacMap() const override { return mCharMaps.mac != nullptr; }

    std::uint16_t GlyphOfUnicode(char32_t character) const override {
        for (FT_CharMap map : mCharMaps.unicode) {
            if (const std::uint16_t glyph = LookUp(map, character); glyph != 0) {
                return glyph;
            }
        }
        return 0;
    }

    std::uint16_t GlyphOfSymbol(std::uint32_t code) const override {
        return LookUp(mCharMaps.symbol, code);
    }

    std::uint16_t GlyphOfMac(std::uint8_t code) const override {
        return LookUp(mCharMaps.mac, code);
    }

    std::uint16_t GlyphOfPostName(std::string_view name) const override;
    std::string PostNameOf(std::uint16_t glyph) const override;

    std::uint32_t GlyphCount() const override { return mSfnt.GlyphCount(); }

    std::int32_t UnitsPerEm() const override { return mFace->units_per_EM; }

    GRAPHICS::FontBox Box() const override {
        const FT_BBox& box = mFace->bbox;
        return {static_cast<float>(box.xMin), static_cast<float>(box.yMin),
                static_cast<float>(box.xMax - box.xMin), static_cast<float>(box.yMax - box.yMin)};
    }

    std::size_t FileSize() const override { return mBytes.size(); }

    std::string NameGlyph(std::uint16_t glyph, std::string_view wanted) override;

    void ExpectConversion(bool converted) override { mIsConverted = converted; }

    bool IsConverted() const override { return mIsConverted; }

    const FinishedTrueType& Finish() override;
    void EnumerateGlyphs(GRAPHICS::IGlyphFunctor& functor) override;

private:
    std::uint16_t LookUp(FT_CharMap map, std::uint32_t code) const {
        if (map == nullptr || FT_Set_Charmap(mFace.get(), map) != 0) {
            return 0;
        }
        return static_cast<std::uint16_t>(FT_Get_Char_Index(mFace.get(), code));
    }

    /// In ems.
    float Width(std::uint16_t glyph) const;
    /// Loads the outline of a glyph that can be drawn.
    bool Load(std::uint16_t glyph) const;
    std::string NameOf(std::uint16_t glyph) const;
    std::vector<bool> MarkNamed() const;
    std::optional<SfntSubset> Cut() const;

    std::vector<std::uint8_t> mBytes;
    Sfnt mSfnt;
    mutable GlyphTable mGlyphs;
    Face mFace;
    CharMaps mCharMaps;
    TInterfacePtr<GlyphRecording> mRecording;
    std::map<std::string, std::uint16_t, std::less<>> mNames;  // glyphs of the file
    mutable std::unordered_map<std::string, std::uint16_t> mPostNames;
    std::optional<FinishedTrueType> mFinished;
    bool mIsConverted = false;
};

float TrueTypeFile::Width(std::uint16_t glyph) const {
    FT_Fixed advance = 0;
    if (FT_Get_Advance(mFace.get(), glyph, FT_LOAD_NO_SCALE, &advance) != 0) {
        return 0;
    }
    const float width = static_cast<float>(advance) / static_cast<float>(UnitsPerEm());
    constexpr float kParts = 10000;
    return mIsConverted ? std::trunc(width * kParts) / kParts : width;
}

bool TrueTypeFile::Load(std::uint16_t glyph) const {
    // A face follows components however often they come.
    return mGlyphs.IsSound(glyph) && LoadOutline(mFace.get(), glyph);
}

std::uint16_t TrueTypeFile::GlyphOfPostName(std::string_view name) const {
    if (mPostNames.empty()) {
        for (std::uint32_t glyph = 0; glyph < GlyphCount(); ++glyph) {
            const auto index = static_cast<std::uint16_t>(glyph);
            mPostNames.try_emplace(PostNameOf(index), index);
        }
    }
    const auto found = name.empty() ? mPostNames.end() : mPostNames.find(std::string(name));
    return found == mPostNames.end() ? std::uint16_t{0} : found->second;
}

std::string TrueTypeFile::PostNameOf(std::uint16_t glyph) const {
    std::array<char, 256> name{};
    if (!FT_HAS_GLYPH_NAMES(mFace.get()) ||
        FT_Get_Glyph_Name(mFace.get(), glyph, name.data(), static_cast<FT_UInt>(name.size())) !=
            0) {
        return {};
    }
    // Names that 'post' does not have come as this one.
    return glyph != 0 && std::string_view(name.data()) == kNotdef ? "" : name.data();
}

std::string TrueTypeFile::NameGlyph(std::uint16_t glyph, std::string_view wanted) {
    if (glyph >= GlyphCount()) {
        return kNotdef;
    }
    std::string name = SanitiseGlyphName(wanted);
    if (name.empty() || (name == kNotdef && glyph != 0)) {
        name = "g" + std::to_string(glyph);
    }
    const auto isFree = [&] {
        const auto found = mNames.find(name);
        return found == mNames.end() || found->second == glyph;
    };
    // What follows a period leaves the meaning of a name as it is (Adobe Glyph Naming).
    const std::string stem = name.substr(0, kMostOfName) + ".g" + std::to_string(glyph);
    for (int i = 0; !isFree(); ++i) {
        name = i == 0 ? stem : stem + '.' + std::to_string(i);
    }
    if (!mNames.contains(name)) {
        if (mFinished || mNames.size() >= kMostNames) {
            return NameOf(glyph);
        }
        mNames.emplace(name, glyph);
    }
    return name;
}

/// One that the glyph has already.
std::string TrueTypeFile::NameOf(std::uint16_t glyph) const {
    for (const auto& [name, named] : mNames) {
        if (named == glyph) {
            return name;
        }
    }
    return kNotdef;
}

/// The glyphs of the file, by index, that are drawn for the names.
std::vector<bool> TrueTypeFile::MarkNamed() const {
    std::vector<bool> marks(GlyphCount());
    for (const auto& [name, glyph] : mNames) {
        if (Load(glyph)) {
            mGlyphs.MarkParts(glyph, marks);
        }
    }
    return marks;
}

/// Nothing where a glyph lost its outline on the way, too.
std::optional<SfntSubset> TrueTypeFile::Cut() const {
    std::set<std::uint16_t> glyphs;
    for (const auto& [name, glyph] : mNames) {
        glyphs.insert(glyph);
    }
    auto subset = SubsetSfnt(mBytes, mSfnt, glyphs);
    if (!subset) {
        return std::nullopt;
    }
    const Sfnt cut(subset->bytes);
    const GlyphTable cutGlyphs(cut);
    for (std::uint32_t i = 0; i < subset->oldGlyphs.size(); ++i) {
        const std::uint16_t old = subset->oldGlyphs[i];
        glyphs.erase(old);
        if (cutGlyphs.Glyph(i).empty() && Load(old) && mFace->glyph->outline.n_points > 0) {
            return std::nullopt;
        }
    }
    return glyphs.empty() ? std::move(subset) : std::nullopt;
}

const FinishedTrueType& TrueTypeFile::Finish() {
    if (mFinished) {
        return *mFinished;
    }
    mFinished.emplace();
    mFinished->glyphs = mNames;
    std::vector<bool> keeps = MarkNamed();
    if (const auto subset = Cut()) {
        std::vector<bool> keepsNew;
        std::unordered_map<std::uint16_t, std::uint16_t> newGlyphs;
        for (const std::uint16_t old : subset->oldGlyphs) {
            newGlyphs[old] = static_cast<std::uint16_t>(keepsNew.size());
            keepsNew.push_back(keeps[old]);
        }
        for (auto& [name, glyph] : mFinished->glyphs) {
            glyph = newGlyphs[glyph];
        }
        mFinished->bytes = LayOutSfnt(Sfnt(subset->bytes), keepsNew);
    } else {
        mFinished->bytes = LayOutSfnt(mSfnt, keeps);
    }
    const Sfnt written(mFinished->bytes);
    mFinished->glyphCount = written.GlyphCount();
    mFinished->locaFormat = written.LocaFormat();
    return *mFinished;
}

void TrueTypeFile::EnumerateGlyphs(GRAPHICS::IGlyphFunctor& functor) {
    const auto& finished = Finish().glyphs;
    auto written = finished.begin();
    for (const auto& [name, glyph] : mNames) {
        mRecording->Load(glyph, Width(glyph), mGlyphs.IsSound(glyph));
        if (!functor(name.c_str(), static_cast<std::int32_t>(name.size()), written->second,
                     mRecording.Get())) {
            return;
        }
        ++written;
    }
}

}  // namespace

std::shared_ptr<TrueTypeProgram> TrueTypeProgram::Open(std::vector<std::uint8_t> bytes,
                                                       std::string& problem) {
    if (bytes.size() > std::numeric_limits<std::int32_t>::max()) {
        problem = "too large";
        return nullptr;
    }
    if (const char* found = Sfnt(bytes).Problem(); found != nullptr) {
        problem = found;
        return nullptr;
    }
    Face face = OpenFace(bytes);
    if (!face || !FT_IS_SCALABLE(face.get())) {
        problem = "damaged tables";
        return nullptr;
    }
    return std::make_shared<TrueTypeFile>(std::move(bytes), std::move(face));
}

}  // namespace VANTIX::HOST
