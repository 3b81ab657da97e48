// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace VANTIX::HOST {

/// What a charstring says without being drawn.
struct CharStringFacts {
    /// False for one that is damaged, or longer than the walker goes on.
    bool isWhole = false;
    /// In charstring units.
    double width = 0;
    bool hasWidth = false;
    /// Some line or curve.
    bool marks = false;
    /// Codes in StandardEncoding of base and accent (`seac`), or -1.
    std::array<int, 2> components{-1, -1};
};

/// Walks Type 1 charstrings (Adobe Type 1 Font Format, chapter 6).
class CharStringWalker {
public:
    /// Decrypted subroutines, which must outlive the walker. It takes some steps for each byte of
    /// the program in all its life, so that no program can keep it busy.
    CharStringWalker(std::span<const std::string> subroutines, std::size_t programSize)
        : mSubroutines(subroutines),
          mReached(subroutines.size()),
          mStepsLeft(kLeastSteps + kStepsOfByte * programSize) {}

    CharStringFacts Walk(std::string_view charString);

    /// Whether any walk has called the subroutine, or may have done so.
    [[nodiscard]] bool IsReached(std::size_t subroutine) const {
        return mCallsUnknown || mReached[subroutine];
    }

private:
    static constexpr std::size_t kLeastSteps = 10000;
    static constexpr std::size_t kStepsOfByte = 16;

    enum class Step { kGoOn, kReturn, kEnd, kDamaged };

    Step Run(std::string_view code, int depth);
    Step Operator(std::uint8_t code, int depth);
    Step Escaped(std::uint8_t code);
    Step CallSubroutine(int depth);
    Step CallOther();
    void PushNumber(std::string_view code, std::size_t& position);
    double Pop();

    std::span<const std::string> mSubroutines;
    std::vector<bool> mReached;
    bool mCallsUnknown = false;
    std::size_t mStepsLeft;
    CharStringFacts mFacts;
    std::vector<double> mStack;
    std::vector<double> mOther;  ///< what procedures of /OtherSubrs left
};

}  // namespace VANTIX::HOST
