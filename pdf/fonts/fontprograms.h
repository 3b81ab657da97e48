// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "host/fonts/fontfinder.h"
#include "host/fonts/truetypeprogram.h"
#include "host/fonts/type1program.h"
#include "pdf/qpdfheaders.h"

namespace VANTIX::PDF {

/// A font program under the name that it is written with; of the two kinds at most one is there.
struct FontProgram {
    std::shared_ptr<HOST::Type1Program> type1;
    std::shared_ptr<HOST::TrueTypeProgram> trueType;
    /// No other font of the interpreter has it: a tag of six letters and what the document says.
    std::string name;
    std::string problem;  ///< why there is neither
    bool isCff = false;   ///< for that it is of a kind that is not read yet

    [[nodiscard]] bool IsUsable() const { return type1 || trueType; }

    [[nodiscard]] std::size_t FileSize() const;
    /// The program as fonts see it, or null.
    [[nodiscard]] std::shared_ptr<const HOST::SimpleProgram> Simple() const;
};

/// The font programs of a document, each opened once, and the installed ones that stand in. What is
/// handed out lives as long as this object.
class FontPrograms {
public:
    /// With `textOnly` programs go out without binary parts, without `trueType` as Type 1.
    FontPrograms(bool textOnly, bool trueType) : mTextOnly(textOnly), mTrueType(trueType) {}

    /// The program in a stream of the document, whatever key led there: what it holds tells its
    /// kind. `name` is that of the font, without a tag.
    const FontProgram& Embedded(const QPDFObjectHandle& stream, const std::string& name);
    const FontProgram& Installed(const HOST::FoundFont& font);

private:
    const FontProgram& Open(const std::string& key, std::vector<std::uint8_t> bytes,
                            const std::string& name);
    std::string UniqueName(const std::vector<std::uint8_t>& bytes, const std::string& name);

    bool mTextOnly;
    bool mTrueType;
    std::map<std::string, FontProgram> mPrograms;
    std::set<std::string> mNames;
};

}  // namespace VANTIX::PDF
