// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace VANTIX::HOST {

/// A token of a PostScript program and where it stands.
struct PostScriptToken {
    enum class Kind {
        kEnd,
        kName,     ///< executable, or one of the brackets and braces
        kLiteral,  ///< text is without the slash
        kNumber,
        kString  ///< text is as it stands between the outer delimiters
    };
    Kind kind = Kind::kEnd;
    std::string_view text;
    std::size_t begin = 0;
    std::size_t end = 0;
    double number = 0;

    [[nodiscard]] bool Is(std::string_view name) const {
        return kind == Kind::kName && text == name;
    }

    [[nodiscard]] bool IsInteger() const;
};

/// Scans the tokens of PostScript text (PostScript Language Reference, 3.3), comments left out.
/// Nothing is executed; damaged text gives some tokens or other, and always comes to its end.
class PostScriptScanner {
public:
    /// The text must outlive the scanner.
    explicit PostScriptScanner(std::string_view text) : mText(text) {}

    PostScriptToken Next();
    /// With its brace just read, goes behind the procedure.
    void SkipProcedure();

    [[nodiscard]] std::size_t Position() const { return mPosition; }

    /// Not behind the end.
    void MoveTo(std::size_t position);

private:
    void SkipSpace();
    PostScriptToken Delimited(std::size_t begin);

    std::string_view mText;
    std::size_t mPosition = 0;
};

/// A number as PostScript writes it, radix numbers too; nothing for other words.
std::optional<double> NumberOf(std::string_view word);

}  // namespace VANTIX::HOST
