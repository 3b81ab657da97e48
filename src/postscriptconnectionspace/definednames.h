// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/object/guid.h"

namespace VANTIX::PS {

/// Which names of a job exist where its current text is executed. A form is executed where it
/// ends, ahead of every text that is still open around it: it knows what the document's body has,
/// and its own names, which belong to the body from its end on. A procedure is executed behind what
/// stands before it; its names are nobody else's.
class DefinedNames {
public:
    /// Tells apart what one name can stand for.
    using Meaning = std::pair<GUID, std::int32_t>;

    enum class Text : std::uint8_t { kForm, kProcedure };

    void Begin(Text kind);
    /// Ends the newest text. The names of a form that is not `kept` are lost.
    void End(bool kept);

    /// Notes a definition in the current text.
    void Define(std::string_view name, const Meaning& meaning = {});

    /// What the name stands for in the current text (borrowed until the next definition), or null.
    [[nodiscard]] const Meaning* Find(std::string_view name) const;
    /// The same of a definition that cannot change until the text is executed: in a procedure, its
    /// own.
    [[nodiscard]] const Meaning* FindLasting(std::string_view name) const;

    /// Whether a definition of the name as `meaning` would take it from another text.
    [[nodiscard]] bool IsTaken(std::string_view name, const Meaning& meaning) const;

private:
    struct Level {
        Text kind = Text::kProcedure;
        std::map<std::string, Meaning, std::less<>> names;
    };

    static const Meaning* FindIn(const Level& level, std::string_view name);

    std::vector<Level> mLevels{1};  // the first is the body
};

}  // namespace VANTIX::PS
