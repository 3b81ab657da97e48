// SPDX-License-Identifier: MIT
// Charstrings of installed fonts in CFF to Type 1, beside FreeType's reading of the same glyphs.
#include <freetype/freetype.h>
#include <freetype/ftoutln.h>

#include <ctime>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "host/fonts/cffprogram.h"
#include "support.h"
#include "t2tot1charstringconverter.h"

namespace VANTIX::BENCH {
namespace {

const std::string kFolder = "/usr/share/fonts/opentype/urw-base35/";

/// Charstrings as a handler gives them, copied.
class CharStrings final : public GRAPHICS::ICharStringFunctor {
public:
    bool operator()(const char* /*name*/, const GRAPHICS::CharString& code) override {
        mBytes.emplace_back(code.data, code.data + code.length);
        mCodes.push_back(code);
        mCodes.back().data = mBytes.back().data();
        return true;
    }

    [[nodiscard]] const std::vector<GRAPHICS::CharString>& Get() const { return mCodes; }

private:
    std::vector<std::vector<std::uint8_t>> mBytes;
    std::vector<GRAPHICS::CharString> mCodes;
};

/// All glyphs of a font, to be converted.
class Type2Font {
public:
    explicit Type2Font(const std::string& file) {
        std::ifstream stream(file, std::ios::binary);
        std::string problem;
        const std::shared_ptr<HOST::CffProgram> program = HOST::CffProgram::Open(
            {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()}, problem);
        if (program == nullptr) {
            return;
        }
        for (std::uint32_t glyph = 0; glyph < program->GlyphCount(); ++glyph) {
            program->UseIndex(static_cast<std::uint16_t>(glyph));
        }
        mFont = HOST::MakeCFFFont(program, {});
        mAncillary =
            FindInterface<GRAPHICS::ICFFAncillary>(mFont.Get(), GRAPHICS::IID_ICFFANCILLARY);
        mAncillary->EnumerateCharStrings(mCodes);
    }

    [[nodiscard]] std::size_t GlyphCount() const { return mCodes.Get().size(); }

    std::size_t Convert() {
        std::size_t bytes = 0;
        for (const GRAPHICS::CharString& code : mCodes.Get()) {
            bytes += mConverter.ConvertGlyph(code, 0, mAncillary).size();
        }
        return bytes;
    }

private:
    TInterfacePtr<HOST::SimpleFont> mFont;
    const GRAPHICS::ICFFAncillary* mAncillary = nullptr;
    CharStrings mCodes;
    PS::T2ToT1CharStringConverter mConverter;
};

/// The same font in FreeType.
class FreeTypeFont {
public:
    explicit FreeTypeFont(const std::string& file) {
        if (FT_Init_FreeType(&mLibrary) != 0 ||
            FT_New_Face(mLibrary, file.c_str(), 0, &mFace) != 0) {
            mFace = nullptr;
        }
    }

    ~FreeTypeFont() { FT_Done_FreeType(mLibrary); }

    FreeTypeFont(const FreeTypeFont&) = delete;
    FreeTypeFont& operator=(const FreeTypeFont&) = delete;
    FreeTypeFont(FreeTypeFont&&) = delete;
    FreeTypeFont& operator=(FreeTypeFont&&) = delete;

    [[nodiscard]] std::size_t GlyphCount() const {
        return mFace == nullptr ? 0 : static_cast<std::size_t>(mFace->num_glyphs);
    }

    /// How many lines and curves there are.
    std::size_t Decompose() {
        FT_Outline_Funcs functions{};
        functions.move_to = [](const FT_Vector*, void*) { return 0; };
        functions.line_to = [](const FT_Vector*, void* count) { return Count(count); };
        functions.conic_to = [](const FT_Vector*, const FT_Vector*, void* count) {
            return Count(count);
        };
        functions.cubic_to = [](const FT_Vector*, const FT_Vector*, const FT_Vector*, void* count) {
            return Count(count);
        };
        std::size_t count = 0;
        for (FT_UInt glyph = 0; glyph < GlyphCount(); ++glyph) {
            if (FT_Load_Glyph(mFace, glyph, FT_LOAD_NO_SCALE | FT_LOAD_NO_HINTING) == 0) {
                FT_Outline_Decompose(&mFace->glyph->outline, &functions, &count);
            }
        }
        return count;
    }

private:
    static int Count(void* count) {
        ++*static_cast<std::size_t*>(count);
        return 0;
    }

    FT_Library mLibrary = nullptr;
    FT_Face mFace = nullptr;
};

double ProcessorSeconds() {
    return static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
}

/// All glyphs of a font in each iteration. FreeType's turn comes after each of ours, outside the
/// time that is reported, so that a busy machine slows both alike.
void InstalledType2ToType1(benchmark::State& state, const char* name) {
    const std::string file = kFolder + name + ".otf";
    Type2Font font(file);
    FreeTypeFont freeType(file);
    if (font.GlyphCount() == 0 || font.GlyphCount() != freeType.GlyphCount()) {
        state.SkipWithError("fonts-urw-base35 is not installed, or not as it was");
        return;
    }
    std::size_t bytes = 0;
    double ours = 0;
    double theirs = 0;
    for ([[maybe_unused]] auto _ : state) {
        const double start = ProcessorSeconds();
        bytes += font.Convert();
        const double end = ProcessorSeconds();
        benchmark::DoNotOptimize(freeType.Decompose());
        ours += end - start;
        theirs += ProcessorSeconds() - end;
        state.SetIterationTime(end - start);
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(font.GlyphCount()));
    state.SetBytesProcessed(static_cast<std::int64_t>(bytes));
    state.counters["times_freetype"] = ours / theirs;
}

BENCHMARK_CAPTURE(InstalledType2ToType1, Roman, "NimbusRoman-Regular")->UseManualTime();
BENCHMARK_CAPTURE(InstalledType2ToType1, Sans, "NimbusSans-Regular")->UseManualTime();
BENCHMARK_CAPTURE(InstalledType2ToType1, Script, "Z003-MediumItalic")->UseManualTime();

}  // namespace
}  // namespace VANTIX::BENCH
