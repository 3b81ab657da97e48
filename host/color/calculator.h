// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace VANTIX::HOST {

/// A checked program of the PostScript calculator (PDF Reference, 3.9.4), compiled to jumps: it has
/// no loops, so that it always ends. Its stack holds at most 100 values.
class CalculatorProgram {
public:
    enum class Outcome {
        kDone,       ///< the stack held just the outputs
        kLeftovers,  ///< it held more: the topmost are the outputs
        kFailed      ///< an error that an interpreter would report; the outputs are not set
    };

    /// Nothing, with the reason, for a program that does not parse or has more than 65,536 tokens
    /// or procedures nested deeper than 32.
    static std::optional<CalculatorProgram> Parse(std::string_view text, std::string& error);

    /// Runs on `inputs` reals; `outputs` numbers are read off the stack.
    Outcome Run(const float* in, std::int32_t inputs, float* out, std::int32_t outputs) const;

    /// The program in as few characters as keep its meaning, without comments and outer braces.
    const std::string& Text() const { return mText; }

private:
    struct Instruction {
        std::uint8_t code = 0;
        std::int32_t integer = 0;  ///< an integer, a truth value, or where to jump
        double real = 0.0;
    };
    friend class CalculatorParser;
    friend class CalculatorMachine;

    CalculatorProgram() = default;

    std::vector<Instruction> mCode;
    std::string mText;
};

}  // namespace VANTIX::HOST
