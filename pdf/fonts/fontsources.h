// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <set>
#include <string>

#include "pdf/fonts/fontdictionary.h"
#include "pdf/fonts/fontprograms.h"
#include "pdf/fonts/fonts.h"
#include "pdf/reporter.h"

namespace VANTIX::PDF {

/// Where the glyphs of a font come from.
struct FontSource {
    const FontProgram* program = nullptr;  ///< null for a font that the interpreter is to have
    bool isEmbedded = false;               ///< the program is the document's own
    /// Of a font that stands in or is resident.
    std::string name;
    /// The one of the standard 14 whose glyphs and encoding are meant, or empty.
    std::string standard;
};

/// Finds a source for each font of a document: its own program, the user's file, the interpreter or
/// an installed font.
class FontSources {
public:
    FontSources(const FontOptions& options, Reporter& reporter)
        : mOptions(options), mReporter(reporter), mPrograms(options) {}

    FontSource Choose(const FontDictionary& font);

    /// For the descendant of a composite font that shows these characters, which are of a language
    /// ("ja", or empty where it is unknown): a TrueType or CFF program, or a font that the
    /// interpreter is to have.
    FontSource ChooseForCIDs(const FontDictionary& font, const std::set<char32_t>& characters,
                             const std::string& language);

    /// What ends the run; empty when nothing does.
    [[nodiscard]] std::string Failure() const;

private:
    bool UseOwn(const FontDictionary& font, FontUse use, FontSource& source);
    bool UseFile(const FontDictionary& font, FontUse use, FontSource& source);
    bool UseInstalled(const FontDictionary& font, FontSource& source);
    bool UseInstalledWith(const FontDictionary& font, const std::set<char32_t>& characters,
                          const std::string& language, FontSource& source);

    const FontOptions& mOptions;
    Reporter& mReporter;
    FontPrograms mPrograms;
    std::set<std::string> mMissing;
    std::string mBadFile;
};

}  // namespace VANTIX::PDF
