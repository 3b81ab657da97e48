// SPDX-License-Identifier: MIT
#include "pdf/fonts/fontsources.h"

#include <optional>

#include "host/fonts/standardfonts.h"

namespace VANTIX::PDF {

namespace {

std::string Title(const FontDictionary& font) {
    return font.name.empty() ? "Font without a name" : "Font " + font.name;
}

/// The standard font that is most like one that nobody has.
std::string LikelyStandardFont(const FontDictionary& font) {
    if (font.isSerif && !font.isFixedPitch) {
        const char* const kTimes[] = {"Times-Roman", "Times-Bold", "Times-Italic",
                                      "Times-BoldItalic"};
        return kTimes[(font.isBold ? 1 : 0) + (font.isItalic ? 2 : 0)];
    }
    const char* const kStyles[] = {"", "-Bold", "-Oblique", "-BoldOblique"};
    return (font.isFixedPitch ? "Courier" : "Helvetica") +
           std::string(kStyles[(font.isBold ? 1 : 0) + (font.isItalic ? 2 : 0)]);
}

}  // namespace

FontSource FontSources::Choose(const FontDictionary& font) {
    FontSource source;
    if (UseOwn(font, FontUse::kSimple, source) || UseFile(font, FontUse::kSimple, source)) {
        return source;
    }
    const std::optional<std::string_view> standard = HOST::StandardFontOf(font.name);
    if (standard && !mOptions.embedStandardFonts) {
        source.name = source.standard = *standard;
        return source;
    }
    if (!standard && mOptions.missing == MissingFonts::kFail) {
        mMissing.insert(font.name);
        return source;
    }
    if (!standard && mOptions.missing == MissingFonts::kResident && !font.name.empty()) {
        mReporter.Warn("font-missing", Title(font) + " is not embedded: it has to be resident");
        source.name = font.name;
        return source;
    }
    if (!UseInstalled(font, source)) {
        source.name = source.standard =
            standard ? std::string(*standard) : LikelyStandardFont(font);
        mReporter.Warn("font-missing",
                       Title(font) + " is not embedded: " + source.name + " stands in");
    }
    return source;
}

FontSource FontSources::ChooseForCIDs(const FontDictionary& font,
                                      const std::set<char32_t>& characters,
                                      const std::string& language) {
    FontSource source;
    if (UseOwn(font, FontUse::kComposite, source) && !source.program->type1) {
        return source;
    }
    source = {};
    if (UseFile(font, FontUse::kComposite, source)) {
        return source;
    }
    const bool isMissing = !QPDFObjectHandle(font.program).isStream();
    if (mOptions.missing == MissingFonts::kFail) {
        mMissing.insert(font.name);
        return source;
    }
    std::string what;
    if (mOptions.missing == MissingFonts::kSubstitute &&
        UseInstalledWith(font, characters, language, source)) {
        what = source.name + " stands in";
    } else {
        source.name = font.name;
        what = font.name.empty() ? "its text is left out" : "it has to be resident";
    }
    if (isMissing) {
        mReporter.Warn("font-missing", Title(font) + " is not embedded: " + what);
    }
    return source;
}

std::string FontSources::Failure() const {
    if (!mBadFile.empty() || mMissing.empty()) {
        return mBadFile;
    }
    std::string text = "fonts are missing:";
    for (const std::string& name : mMissing) {
        text += ' ' + (name.empty() ? "(without a name)" : name);
    }
    return text;
}

bool FontSources::UseOwn(const FontDictionary& font, FontUse use, FontSource& source) {
    if (!QPDFObjectHandle(font.program).isStream()) {
        return false;
    }
    const FontProgram& program = mPrograms.Embedded(font.program, font.name, use);
    if (!program.IsUsable()) {
        mReporter.Warn("font-damaged",
                       Title(font) + " is not used as it is embedded: " + program.problem);
        return false;
    }
    source.program = &program;
    source.isEmbedded = true;
    return true;
}

bool FontSources::UseFile(const FontDictionary& font, FontUse use, FontSource& source) {
    auto file = mOptions.files.find(font.baseFont);
    file = file == mOptions.files.end() ? mOptions.files.find(font.name) : file;
    if (file == mOptions.files.end()) {
        return false;
    }
    std::string problem;
    const std::optional<HOST::FoundFont> found = HOST::ReadFontFile(file->second, problem);
    if (found && use == FontUse::kSimple && found->isCidKeyed) {
        problem = "its glyphs have no names";
    } else if (found) {
        const FontProgram& program = mPrograms.Installed(*found, use);
        source.program = &program;
        source.name = found->name;
        problem = program.type1 && use == FontUse::kComposite
                      ? "composite fonts take TrueType and OpenType alone"
                      : program.problem;
    }
    if (!problem.empty() || !source.program->IsUsable()) {
        mBadFile = "--font " + file->first + '=' + file->second + ": " + problem;
        source = {};
        return false;
    }
    return true;
}

bool FontSources::UseInstalled(const FontDictionary& font, FontSource& source) {
    const std::optional<std::string_view> standard = HOST::StandardFontOf(font.name);
    const std::optional<HOST::FoundFont> found = HOST::FindInstalledFont(
        {standard ? std::string(*standard) : font.name, font.isSerif, font.isFixedPitch,
         font.isItalic, font.isBold, font.symbols.isSymbolic && !font.symbols.isNonsymbolic});
    const FontProgram* program = found ? &mPrograms.Installed(*found, FontUse::kSimple) : nullptr;
    if (program == nullptr || !program->IsUsable()) {
        return false;
    }
    source.program = program;
    source.name = found->name;
    if (standard) {
        source.standard = *standard;
    } else {
        mReporter.Warn("font-missing",
                       Title(font) + " is not embedded: " + source.name + " stands in");
    }
    return true;
}

bool FontSources::UseInstalledWith(const FontDictionary& font, const std::set<char32_t>& characters,
                                   const std::string& language, FontSource& source) {
    const std::optional<HOST::FoundFont> found = HOST::FindInstalledFontWith(
        {font.name, font.isSerif, font.isFixedPitch, font.isItalic, font.isBold, false}, characters,
        language);
    const FontProgram* program =
        found ? &mPrograms.Installed(*found, FontUse::kComposite) : nullptr;
    if (program == nullptr || !(program->trueType || program->cff)) {
        return false;
    }
    source.program = program;
    source.name = found->name;
    return true;
}

}  // namespace VANTIX::PDF
