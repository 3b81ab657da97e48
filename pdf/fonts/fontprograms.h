// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "host/fonts/cffprogram.h"
#include "host/fonts/characterglyphs.h"
#include "host/fonts/fontfinder.h"
#include "host/fonts/truetypeprogram.h"
#include "host/fonts/type1program.h"
#include "pdf/fonts/fonts.h"
#include "pdf/qpdfheaders.h"

namespace VANTIX::PDF {

/// What shows a program: fonts with codes of one byte by names, or composite ones by CIDs.
enum class FontUse : std::uint8_t { kSimple, kComposite };

/// A font program under the name that it is written with; of the kinds at most one is there.
struct FontProgram {
    std::shared_ptr<HOST::Type1Program> type1;
    std::shared_ptr<HOST::CffProgram> cff;
    std::shared_ptr<HOST::TrueTypeProgram> trueType;
    /// No other font of the interpreter has it: a tag of six letters and what the document says.
    std::string name;
    std::string problem;  ///< why there is none
    /// False where glyphs are known by codes alone: its own encoding counts, whatever a font says.
    bool hasNames = true;
    /// Of an installed one that composite fonts use.
    std::shared_ptr<const HOST::CharacterGlyphs> characters;

    [[nodiscard]] bool IsUsable() const { return type1 || cff || trueType; }

    [[nodiscard]] std::size_t FileSize() const;
    /// The program as fonts see it, or null.
    [[nodiscard]] std::shared_ptr<const HOST::SimpleProgram> Simple() const;
    /// The program where it knows its glyphs by names, or null.
    [[nodiscard]] HOST::NamedProgram* Named() const;
};

/// The font programs of a document, each opened once, and the installed ones that stand in. What is
/// handed out lives as long as this object.
class FontPrograms {
public:
    /// Of the options counts how programs go out.
    explicit FontPrograms(const FontOptions& options) : mOptions(options) {}

    /// The program in a stream of the document, whatever key led there: what it holds tells its
    /// kind. `name` is that of the font, without a tag.
    /// Fonts of both uses share one in TrueType alone, here and below.
    const FontProgram& Embedded(const QPDFObjectHandle& stream, const std::string& name,
                                FontUse use);
    const FontProgram& Installed(const HOST::FoundFont& font, FontUse use);

private:
    FontProgram& Open(const std::string& key, std::vector<std::uint8_t> bytes,
                      const std::string& name, FontUse use);
    void OpenCff(std::vector<std::uint8_t> bytes, FontUse use, FontProgram& program) const;
    std::string UniqueName(const std::vector<std::uint8_t>& bytes, const std::string& name);

    const FontOptions& mOptions;
    std::map<std::string, FontProgram> mPrograms;
    std::set<std::string> mNames;
};

}  // namespace VANTIX::PDF
