// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "host/export.h"
#include "host/fonts/simplefont.h"

namespace VANTIX::HOST {

/// A Type 1 font program of the document (Adobe Type 1 Font Format): read, renamed, and cut to the
/// glyphs that its fonts use. The data is made when it is first asked for; what is used later is
/// not in it. Not for several threads.
class NORVANE_HOST_API Type1Program : public NamedProgram {
public:
    /// Takes PFA, PFB and what PDF embeds: clear text, encrypted part (binary or hexadecimal),
    /// zeros or none. Null, with the reason in `problem`, for what is no Type 1 font.
    static std::shared_ptr<Type1Program> Open(const std::vector<std::uint8_t>& bytes,
                                              std::string& problem);

    /// /FontName as it came.
    [[nodiscard]] virtual const std::string& Name() const = 0;
    /// a b c d e f
    [[nodiscard]] virtual const std::array<float, 6>& Matrix() const = 0;
    [[nodiscard]] virtual std::int32_t GlyphCount() const = 0;
    [[nodiscard]] virtual std::size_t FileSize() const = 0;

    /// Gives the program another /FontName, to tell it from every other font of the interpreter.
    virtual void Rename(std::string_view name) = 0;
    /// The encrypted part as hexadecimal digits, for output that must be text.
    virtual void UseText(bool text) = 0;

    /// The program as it is written: clear text, encrypted part, zeros and "cleartomark". Made at
    /// the first call, the same from then on.
    virtual const std::vector<std::uint8_t>& Data() = 0;
};

/// A font of a Type 1 program. `description.name` is the program's name as it is written.
NORVANE_HOST_API TInterfacePtr<SimpleFont> MakeType1Font(
    const std::shared_ptr<Type1Program>& program, SimpleFontDescription description);

/// A font that is not downloaded: the interpreter has `description.name`. With `reEncoded` it gets
/// the encoding of the description, else it keeps its own. `widths` are those the interpreter's
/// font has, in ems, negative where unknown.
NORVANE_HOST_API TInterfacePtr<SimpleFont> MakeResidentFont(
    SimpleFontDescription description, bool reEncoded,
    const std::array<float, kSimpleCodes>& widths);

}  // namespace VANTIX::HOST
