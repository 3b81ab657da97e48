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
#include <string_view>
#include <tuple>

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

/// Whether a font is of a kind that can be used: Type 1, CFF, or TrueType with its own outlines.
bool IsUsable(const FcPattern* pattern) {
    const std::string format = StringOf(pattern, FC_FONTFORMAT);
    int index = 0;
    FcPatternGetInteger(pattern, FC_INDEX, 0, &index);
    return index == 0 && (format == "Type 1" || format == "CFF" || format == "TrueType");
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
        isUsable = font.isTrueType || format == "Type 1" ||
                   (format == "CFF" && FT_IS_CID_KEYED(face) == 0);
        FT_Done_Face(face);
    }
    FT_Done_FreeType(library);
    if (!isUsable) {
        problem = "it is neither a Type 1 or CFF font nor a TrueType font with outlines of its own";
    }
    return isUsable;
}

/// The installed fonts as fontconfig lists them for one use: opened each time, since its shared
/// configuration is not for several threads.
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
        const Pattern wanted(FcPatternCreate());
        FcPatternAddString(wanted.get(), FC_FAMILY, Text(family));
        FcPatternAddInteger(wanted.get(), FC_WEIGHT,
                            wish.isBold ? FC_WEIGHT_BOLD : FC_WEIGHT_REGULAR);
        FcPatternAddInteger(wanted.get(), FC_SLANT,
                            wish.isItalic ? FC_SLANT_ITALIC : FC_SLANT_ROMAN);
        FcConfigSubstitute(mConfig.get(), wanted.get(), FcMatchPattern);
        FcDefaultSubstitute(wanted.get());
        FcResult result = FcResultNoMatch;
        const FontSet sorted(FcFontSort(mConfig.get(), wanted.get(), FcFalse, nullptr, &result));
        return sorted == nullptr ? std::nullopt : First(*sorted, false);
    }

    /// The TrueType font that has most of the characters.
    std::optional<FoundFont> With(const FontWish& wish,
                                  const std::set<char32_t>& characters) const {
        if (mConfig == nullptr || characters.empty()) {
            return std::nullopt;
        }
        const CharSet wanted(FcCharSetCreate());
        for (const char32_t character : characters) {
            FcCharSetAddChar(wanted.get(), character);
        }
        const Pattern all(FcPatternCreate());
        const Objects objects(FcObjectSetBuild(FC_FILE, FC_FONTFORMAT, FC_INDEX, FC_CHARSET,
                                               FC_WEIGHT, FC_SLANT, FC_SPACING, FC_POSTSCRIPT_NAME,
                                               nullptr));
        const List list(FcFontList(mConfig.get(), all.get(), objects.get()));
        std::vector<Candidate> candidates;
        for (int index = 0; list != nullptr && index < list->nfont; ++index) {
            const Candidate candidate = Rate(list->fonts[index], wish, *wanted);
            if (2 * std::size_t{candidate.characters} >= characters.size()) {
                candidates.push_back(candidate);
            }
        }
        std::sort(candidates.begin(), candidates.end());
        for (const Candidate& candidate : candidates) {
            std::string problem;
            std::optional<FoundFont> font = ReadFontFile(candidate.path, problem);
            if (font && font->isTrueType) {
                return font;
            }
        }
        return std::nullopt;
    }

private:
    using CharSet = std::unique_ptr<FcCharSet, Destroyer<FcCharSetDestroy>>;
    using Objects = std::unique_ptr<FcObjectSet, Destroyer<FcObjectSetDestroy>>;
    using List = std::unique_ptr<FcFontSet, Destroyer<FcFontSetDestroy>>;

    /// How well a font fits; those that fit best are least.
    struct Candidate {
        FcChar32 characters = 0;
        int style = 0;  ///< of what is wished for, what it has
        std::string path;

        bool operator<(const Candidate& other) const {
            return std::tuple(other.characters, other.style, std::string_view(path)) <
                   std::tuple(characters, style, std::string_view(other.path));
        }
    };

    static Candidate Rate(const FcPattern* pattern, const FontWish& wish, const FcCharSet& wanted) {
        FcCharSet* has = nullptr;
        if (!IsUsable(pattern) || StringOf(pattern, FC_FONTFORMAT) != "TrueType" ||
            FcPatternGetCharSet(pattern, FC_CHARSET, 0, &has) != FcResultMatch) {
            return {};
        }
        const auto value = [&](const char* property, int otherwise) {
            FcPatternGetInteger(pattern, property, 0, &otherwise);
            return otherwise;
        };
        constexpr int kNameCounts = 4;
        const bool isBold = value(FC_WEIGHT, FC_WEIGHT_REGULAR) >= FC_WEIGHT_DEMIBOLD;
        const bool isItalic = value(FC_SLANT, FC_SLANT_ROMAN) != FC_SLANT_ROMAN;
        const bool isFixedPitch = value(FC_SPACING, FC_PROPORTIONAL) == FC_MONO;
        Candidate candidate;
        candidate.characters = FcCharSetIntersectCount(has, &wanted);
        candidate.style = (isBold == wish.isBold ? 1 : 0) + (isItalic == wish.isItalic ? 1 : 0) +
                          (isFixedPitch == wish.isFixedPitch ? 1 : 0) +
                          (StringOf(pattern, FC_POSTSCRIPT_NAME) == wish.name ? kNameCounts : 0);
        candidate.path = StringOf(pattern, FC_FILE);
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
            if (font) {
                return font;
            }
        }
        return std::nullopt;
    }

    Config mConfig;
};

}  // namespace

std::optional<FoundFont> FindInstalledFont(const FontWish& wish) {
    const InstalledFonts fonts;
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
    const char* family = wish.isFixedPitch ? "monospace" : (wish.isSerif ? "serif" : "sans-serif");
    return fonts.Like(family, wish);
}

std::optional<FoundFont> FindInstalledFontWith(const FontWish& wish,
                                               const std::set<char32_t>& characters) {
    return InstalledFonts().With(wish, characters);
}

std::optional<FoundFont> ReadFontFile(const std::string& path, std::string& problem) {
    FoundFont font;
    font.path = path;
    font.bytes = ReadBytes(path);
    if (font.bytes.empty()) {
        problem = "it cannot be read";
        return std::nullopt;
    }
    if (!Describe(font, problem)) {
        return std::nullopt;
    }
    return font;
}

}  // namespace VANTIX::HOST
