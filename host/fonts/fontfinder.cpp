// SPDX-License-Identifier: MIT
#include "host/fonts/fontfinder.h"

#include <fontconfig/fontconfig.h>
#include <freetype/freetype.h>
#include <freetype/ftfntfmt.h>
#include <freetype/tttables.h>
#include <ft2build.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <mutex>
#include <string_view>
#include <tuple>

#include "host/fonts/harfbuzz.h"
#include "host/fonts/standardfonts.h"

namespace VANTIX::HOST {
namespace {

constexpr std::uintmax_t kMostFileSize = 64U << 20U;

template <auto Function>
struct Destroyer {
    template <class T>
    void operator()(T* object) const {
        Function(object);
    }
};

using Config = std::unique_ptr<FcConfig, Destroyer<FcConfigDestroy>>;
using Pattern = std::unique_ptr<FcPattern, Destroyer<FcPatternDestroy>>;
using FontSet = std::unique_ptr<FcFontSet, Destroyer<FcFontSetSortDestroy>>;

/// The fonts of Ghostscript's collection that equal the standard ones, by their names.
struct StandIn {
    std::string_view standard;
    std::string_view installed;
};

constexpr std::array kStandIns = {
    StandIn{"Helvetica", "NimbusSans-Regular"},
    StandIn{"Helvetica-Bold", "NimbusSans-Bold"},
    StandIn{"Helvetica-Oblique", "NimbusSans-Italic"},
    StandIn{"Helvetica-BoldOblique", "NimbusSans-BoldItalic"},
    StandIn{"Times-Roman", "NimbusRoman-Regular"},
    StandIn{"Times-Bold", "NimbusRoman-Bold"},
    StandIn{"Times-Italic", "NimbusRoman-Italic"},
    StandIn{"Times-BoldItalic", "NimbusRoman-BoldItalic"},
    StandIn{"Courier", "NimbusMonoPS-Regular"},
    StandIn{"Courier-Bold", "NimbusMonoPS-Bold"},
    StandIn{"Courier-Oblique", "NimbusMonoPS-Italic"},
    StandIn{"Courier-BoldOblique", "NimbusMonoPS-BoldItalic"},
    StandIn{"Symbol", "StandardSymbolsPS"},
    StandIn{"ZapfDingbats", "D050000L"},
};

/// The standard font of the kind that is wished for.
std::string_view StandardFontLike(const FontWish& wish) {
    // Fonts by weight and slope, as the table above has them.
    const std::size_t style = (wish.isBold ? 1U : 0U) + (wish.isItalic ? 2U : 0U);
    if (wish.isSymbolic && !wish.isSerif && !wish.isFixedPitch) {
        return "Symbol";
    }
    const std::size_t family = wish.isFixedPitch ? 8 : (wish.isSerif ? 4 : 0);
    return kStandIns.at(family + style).standard;
}

std::string GenericFamily(const FontWish& wish) {
    return wish.isFixedPitch ? "monospace" : (wish.isSerif ? "serif" : "sans-serif");
}

const FcChar8* Text(const std::string& text) {
    return reinterpret_cast<const FcChar8*>(text.c_str());
}

std::string StringOf(const FcPattern* pattern, const char* property) {
    FcChar8* value = nullptr;
    if (FcPatternGetString(pattern, property, 0, &value) != FcResultMatch) {
        return {};
    }
    return reinterpret_cast<const char*>(value);
}

int IntegerOf(const FcPattern* pattern, const char* property, int otherwise) {
    FcPatternGetInteger(pattern, property, 0, &otherwise);
    return otherwise;
}

/// Whether a font is of a kind that can be used: Type 1, CFF, or TrueType with its own outlines.
bool IsUsable(const FcPattern* pattern) {
    const std::string format = StringOf(pattern, FC_FONTFORMAT);
    return IntegerOf(pattern, FC_INDEX, 0) == 0 &&
           (format == "Type 1" || format == "CFF" || format == "TrueType");
}

/// Whether a font is of a kind in which glyphs are found by characters; no instance of a variable
/// one.
bool HasCharacters(const FcPattern* pattern) {
    constexpr int kLastFace = 0xFFFF;
    const std::string format = StringOf(pattern, FC_FONTFORMAT);
    const int face = IntegerOf(pattern, FC_INDEX, 0);
    return face >= 0 && face <= kLastFace && (format == "CFF" || format == "TrueType");
}

std::vector<std::uint8_t> ReadBytes(const std::string& path) {
    std::error_code error;
    const std::uintmax_t size = std::filesystem::file_size(path, error);
    std::ifstream file(path, std::ios::binary);
    if (error || size > kMostFileSize || !file) {
        return {};
    }
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

/// One face of a collection as a file of its own; empty for one that is not there.
std::vector<std::uint8_t> FaceOf(const std::vector<std::uint8_t>& collection, int index) {
    using HARFBUZZ::Blob;
    using HARFBUZZ::Face;
    const Blob file(hb_blob_create(reinterpret_cast<const char*>(collection.data()),
                                   static_cast<unsigned>(collection.size()),
                                   HB_MEMORY_MODE_READONLY, nullptr, nullptr));
    const Face face(hb_face_create(file.get(), static_cast<unsigned>(index)));
    const Face alone(hb_face_builder_create());
    constexpr unsigned kMostTables = 256;
    std::array<hb_tag_t, kMostTables> tags{};
    unsigned count = kMostTables;
    hb_face_get_table_tags(face.get(), 0, &count, tags.data());
    for (unsigned i = 0; i < count; ++i) {
        const Blob table(hb_face_reference_table(face.get(), tags.at(i)));
        hb_face_builder_add_table(alone.get(), tags.at(i), table.get());
    }
    const Blob made(count == 0 ? hb_blob_get_empty() : hb_face_reference_blob(alone.get()));
    unsigned length = 0;
    const char* bytes = hb_blob_get_data(made.get(), &length);
    return {bytes, bytes + length};
}

bool IsCollection(const std::vector<std::uint8_t>& bytes) {
    constexpr std::string_view kTag = "ttcf";
    return bytes.size() >= kTag.size() && std::equal(kTag.begin(), kTag.end(), bytes.begin());
}

/// What FreeType says of the bytes of a font; false for those that are not usable.
bool Describe(FoundFont& font, std::string& problem) {
    FT_Library library = nullptr;
    FT_Face face = nullptr;
    if (FT_Init_FreeType(&library) != 0) {
        problem = "FreeType does not start";
        return false;
    }
    bool isUsable = false;
    if (FT_New_Memory_Face(library, font.bytes.data(), static_cast<FT_Long>(font.bytes.size()), 0,
                           &face) == 0) {
        const std::string_view format = FT_Get_Font_Format(face);
        FT_ULong length = 0;
        const bool hasGlyf =
            FT_Load_Sfnt_Table(face, FT_MAKE_TAG('g', 'l', 'y', 'f'), 0, nullptr, &length) == 0;
        const char* name = FT_Get_Postscript_Name(face);
        font.isTrueType = format == "TrueType" && hasGlyf;
        font.name = name == nullptr ? "" : name;
        font.isCidKeyed = FT_IS_CID_KEYED(face) != 0;
        isUsable = font.isTrueType || format == "CFF" || format == "Type 1";
        FT_Done_Face(face);
    }
    FT_Done_FreeType(library);
    if (!isUsable) {
        problem = "it is neither a Type 1 or CFF font nor a TrueType font with outlines of its own";
    }
    return isUsable;
}

/// The installed fonts as fontconfig lists them.
class InstalledFonts {
public:
    InstalledFonts() : mConfig(FcInitLoadConfigAndFonts()) {}

    /// The font with this PostScript name, without regard to case.
    std::optional<FoundFont> Named(const std::string& name) const {
        if (mConfig == nullptr || name.empty()) {
            return std::nullopt;
        }
        const Pattern wanted(FcPatternCreate());
        FcPatternAddString(wanted.get(), FC_POSTSCRIPT_NAME, Text(name));
        const Objects objects(
            FcObjectSetBuild(FC_FILE, FC_FONTFORMAT, FC_INDEX, FC_POSTSCRIPT_NAME, nullptr));
        const List list(FcFontList(mConfig.get(), wanted.get(), objects.get()));
        return list == nullptr ? std::nullopt : First(*list, true);
    }

    /// The font that fontconfig puts first for a family and style.
    std::optional<FoundFont> Like(const std::string& family, const FontWish& wish) const {
        if (mConfig == nullptr) {
            return std::nullopt;
        }
        const FontSet sorted = Sorted({family}, wish, "");
        return sorted == nullptr ? std::nullopt : First(*sorted, false);
    }

    /// The font that has most of the characters.
    std::optional<FoundFont> With(const FontWish& wish, const std::set<char32_t>& characters,
                                  const std::string& language) const {
        if (mConfig == nullptr || characters.empty()) {
            return std::nullopt;
        }
        const CharSet wanted(FcCharSetCreate());
        for (const char32_t character : characters) {
            FcCharSetAddChar(wanted.get(), character);
        }
        const FontSet sorted = Sorted({wish.name, GenericFamily(wish)}, wish, language);
        std::vector<Candidate> candidates;
        for (int index = 0; sorted != nullptr && index < sorted->nfont; ++index) {
            const Candidate candidate = Rate(sorted->fonts[index], wish, *wanted);
            if (2 * std::size_t{candidate.characters} >= characters.size()) {
                candidates.push_back(candidate);
            }
        }
        std::stable_sort(candidates.begin(), candidates.end());
        for (const Candidate& candidate : candidates) {
            std::string problem;
            std::optional<FoundFont> font = ReadFontFile(candidate.path, problem, candidate.face);
            if (font) {
                return font;
            }
        }
        return std::nullopt;
    }

private:
    using CharSet = std::unique_ptr<FcCharSet, Destroyer<FcCharSetDestroy>>;
    using Objects = std::unique_ptr<FcObjectSet, Destroyer<FcObjectSetDestroy>>;
    using List = std::unique_ptr<FcFontSet, Destroyer<FcFontSetDestroy>>;

    /// All fonts, those first that fontconfig takes for most like fonts of these families.
    FontSet Sorted(const std::vector<std::string>& families, const FontWish& wish,
                   const std::string& language) const {
        const Pattern wanted(FcPatternCreate());
        for (const std::string& family : families) {
            FcPatternAddString(wanted.get(), FC_FAMILY, Text(family));
        }
        if (!language.empty()) {
            FcPatternAddString(wanted.get(), FC_LANG, Text(language));
        }
        FcPatternAddInteger(wanted.get(), FC_WEIGHT,
                            wish.isBold ? FC_WEIGHT_BOLD : FC_WEIGHT_REGULAR);
        FcPatternAddInteger(wanted.get(), FC_SLANT,
                            wish.isItalic ? FC_SLANT_ITALIC : FC_SLANT_ROMAN);
        FcConfigSubstitute(mConfig.get(), wanted.get(), FcMatchPattern);
        FcDefaultSubstitute(wanted.get());
        FcResult result = FcResultNoMatch;
        return FontSet(FcFontSort(mConfig.get(), wanted.get(), FcFalse, nullptr, &result));
    }

    /// How well a font fits; those that fit best are least.
    struct Candidate {
        FcChar32 characters = 0;
        int style = 0;  ///< of what is wished for, what it has
        std::string path;
        int face = 0;

        bool operator<(const Candidate& other) const {
            return std::tie(other.characters, other.style) < std::tie(characters, style);
        }
    };

    static Candidate Rate(const FcPattern* pattern, const FontWish& wish, const FcCharSet& wanted) {
        FcCharSet* has = nullptr;
        if (!HasCharacters(pattern) ||
            FcPatternGetCharSet(pattern, FC_CHARSET, 0, &has) != FcResultMatch) {
            return {};
        }
        constexpr int kNameCounts = 4;
        const bool isBold = IntegerOf(pattern, FC_WEIGHT, FC_WEIGHT_REGULAR) >= FC_WEIGHT_DEMIBOLD;
        const bool isItalic = IntegerOf(pattern, FC_SLANT, FC_SLANT_ROMAN) != FC_SLANT_ROMAN;
        const bool isFixedPitch = IntegerOf(pattern, FC_SPACING, FC_PROPORTIONAL) == FC_MONO;
        Candidate candidate;
        candidate.characters = FcCharSetIntersectCount(has, &wanted);
        candidate.style = (isBold == wish.isBold ? 1 : 0) + (isItalic == wish.isItalic ? 1 : 0) +
                          (isFixedPitch == wish.isFixedPitch ? 1 : 0) +
                          (StringOf(pattern, FC_POSTSCRIPT_NAME) == wish.name ? kNameCounts : 0);
        candidate.path = StringOf(pattern, FC_FILE);
        candidate.face = IntegerOf(pattern, FC_INDEX, 0);
        return candidate;
    }

    /// The first usable font of a set, or the first one by its path.
    static std::optional<FoundFont> First(const FcFontSet& set, bool byPath) {
        std::vector<std::string> paths;
        for (int index = 0; index < set.nfont; ++index) {
            if (IsUsable(set.fonts[index])) {
                paths.push_back(StringOf(set.fonts[index], FC_FILE));
            }
        }
        if (byPath) {
            // The order of a list is chance. Type 1 programs go out as they are.
            const auto rank = [](const std::string& path) {
                return std::tuple(!path.ends_with(".t1") && !path.ends_with(".pfb"),
                                  std::string_view(path));
            };
            std::sort(paths.begin(), paths.end(),
                      [&](const auto& a, const auto& b) { return rank(a) < rank(b); });
        }
        for (const std::string& path : paths) {
            std::string problem;
            std::optional<FoundFont> font = ReadFontFile(path, problem);
            if (font && !font->isCidKeyed) {
                return font;
            }
        }
        return std::nullopt;
    }

    Config mConfig;
};

/// Calls `find` with the installed fonts, which are listed once. Fontconfig is not for several
/// threads.
template <class Find>
std::optional<FoundFont> AmongInstalled(const Find& find) {
    static std::mutex mutex;
    const std::scoped_lock lock(mutex);
    static const InstalledFonts fonts;
    return find(fonts);
}

std::optional<FoundFont> FindAmong(const InstalledFonts& fonts, const FontWish& wish) {
    if (std::optional<FoundFont> font = fonts.Named(wish.name)) {
        return font;
    }
    const std::optional<std::string_view> meant = StandardFontOf(wish.name);
    const std::string_view standard = meant ? *meant : StandardFontLike(wish);
    const auto* const standIn =
        std::find_if(kStandIns.begin(), kStandIns.end(),
                     [&](const StandIn& each) { return each.standard == standard; });
    if (std::optional<FoundFont> font = fonts.Named(std::string(standIn->installed))) {
        return font;
    }
    return fonts.Like(GenericFamily(wish), wish);
}

}  // namespace

std::optional<FoundFont> FindInstalledFont(const FontWish& wish) {
    return AmongInstalled([&](const InstalledFonts& fonts) { return FindAmong(fonts, wish); });
}

std::optional<FoundFont> FindInstalledFontWith(const FontWish& wish,
                                               const std::set<char32_t>& characters,
                                               const std::string& language) {
    return AmongInstalled(
        [&](const InstalledFonts& fonts) { return fonts.With(wish, characters, language); });
}

std::optional<FoundFont> ReadFontFile(const std::string& path, std::string& problem, int face) {
    FoundFont font;
    font.path = path;
    font.face = face;
    font.bytes = ReadBytes(path);
    if (font.bytes.empty()) {
        problem = "it cannot be read";
        return std::nullopt;
    }
    if (IsCollection(font.bytes)) {
        font.bytes = FaceOf(font.bytes, face);
    }
    if (!Describe(font, problem)) {
        return std::nullopt;
    }
    return font;
}

}  // namespace VANTIX::HOST
