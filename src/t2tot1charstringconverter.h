// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <span>

#include "core/fonts/ifontancillaries.h"
#include "truetypetot1conversionutils.h"

namespace VANTIX::PS {

/// Turns charstrings of one format into encrypted Type 1 charstrings without leading random bytes.
class ICharStringConverter {
public:
    /// Begins a glyph. `noWidth` says that the charstring has no width and is to get none;
    /// `subroutines` (borrowed, may be null) has those of font DICT `fontDict`. False (logged)
    /// without memory.
    virtual bool Init(float nominalWidth, float defaultWidth, std::uint16_t fontDict, bool noWidth,
                      const GRAPHICS::ICharStringSubroutines* subroutines) = 0;
    /// Converts `length` bytes; what cannot be converted is left out (logged). False where the
    /// glyph is given up.
    virtual bool Convert(const void* charString, std::int32_t length) = 0;
    /// What was converted (borrowed, until the next call) and its length in bytes, 0 for a glyph
    /// that was given up.
    virtual const std::uint8_t* GetCharString(std::int32_t& length) const = 0;

protected:
    ~ICharStringConverter() = default;
};

/// Reads a number of a Type 2 charstring or of a CFF DICT (Technical Notes 5176 and 5177) at `p`,
/// which has `end` behind its last byte. A number that is cut short reads as null, otherwise the
/// answer is the byte behind it. `real` is set where `isReal` becomes true, else `integer`.
const std::uint8_t* DecodeType2Number(const std::uint8_t* p, const std::uint8_t* end,
                                      std::int32_t& integer, float& real, bool& isReal);

/// Interprets a Type 2 charstring (Technical Note 5177) and writes it as a Type 1 charstring (Adobe
/// Type 1 Font Format, chapter 6): subroutines in place, flex as curves, and the stems of the first
/// hint mask. Serves one glyph after the other.
class T2ToT1CharStringConverter final : public ICharStringConverter {
public:
    bool Init(float nominalWidth, float defaultWidth, std::uint16_t fontDict, bool noWidth,
              const GRAPHICS::ICharStringSubroutines* subroutines) override;
    bool Convert(const void* charString, std::int32_t length) override;
    const std::uint8_t* GetCharString(std::int32_t& length) const override;

    /// A glyph from its beginning to its end, with "endchar" where the charstring lacks it: the
    /// Type 1 charstring (borrowed, until the next call), empty for one that was given up.
    std::span<const std::uint8_t> ConvertGlyph(const GRAPHICS::CharString& glyph,
                                               std::uint16_t fontDict,
                                               const GRAPHICS::ICharStringSubroutines* subroutines);

private:
    struct Operators;
    struct OperatorTables;
    struct Frame;
    using Operands = std::span<const float>;

    // What the operators do; the argument is that of the table.
    void Stems(std::uint8_t command);
    void Mask(std::uint8_t isHintMask);
    void Move(std::uint8_t command);
    void EndChar(std::uint8_t command);
    void Lines(std::uint8_t command);
    void AlternatingLines(std::uint8_t command);
    void Curves(std::uint8_t command);
    void CurvesAndLine(std::uint8_t command);
    void LinesAndCurve(std::uint8_t command);
    void CurvesAlong(std::uint8_t isHorizontal);
    void AlternatingCurves(std::uint8_t command);
    void Flex(std::uint8_t command);
    void CallSubroutine(std::uint8_t isGlobal);
    void Return(std::uint8_t command);
    void Drop(std::uint8_t command);
    void Duplicate(std::uint8_t command);
    void Exchange(std::uint8_t command);
    void IfElse(std::uint8_t command);
    void Random(std::uint8_t command);
    void Put(std::uint8_t command);
    void Get(std::uint8_t command);
    void Ignore(std::uint8_t command);
    template <float (*kFunction)(float)>
    void Unary(std::uint8_t command);
    template <float (*kFunction)(float, float)>
    void Binary(std::uint8_t command);

    void Step();
    void RunOperator(std::uint8_t code);
    void Push(float value);
    /// The last `count` operands, which leave the stack; empty where there are fewer.
    Operands Pop(std::size_t count);

    [[nodiscard]] Operands Stack() const { return {mStack.data(), mCount}; }

    /// At the operators that clear the stack: the width, where it is pending.
    void TakeWidth(bool hasWidth);
    /// The address of an element of the transient array, or null (logged).
    std::int32_t* Transient(float index);

    void AddStem(std::uint8_t command, float position, float size);
    /// Writes the stems so far: all, or those of a mask and those that do not overlap them.
    void FlushStems(std::span<const std::uint8_t> mask);
    void Write(Operands operands, std::uint16_t command);
    void Write(std::initializer_list<float> operands, std::uint16_t command);
    void WriteCurve(Operands operands);
    void GiveUp();

    /// Whether a glyph may complain once more.
    bool MayComplain() { return mComplaints++ < kMostComplaints; }

    static constexpr std::uint8_t kMostOperands = 255;
    static constexpr std::int32_t kMostNesting = 10;
    /// The stems of a charstring (Technical Note 5177, appendix B).
    static constexpr std::size_t kMostStems = 96;
    /// Bytes that a glyph may have interpreted, those of subroutines at each call.
    static constexpr std::int32_t kMostSteps = 1 << 20;
    static constexpr std::int32_t kMostComplaints = 8;

    struct Stem {
        float position = 0;
        float size = 0;
        std::uint8_t command = 0;
    };

    std::array<float, 256> mStack;
    std::uint8_t mCount = 0;
    std::array<Stem, kMostStems> mStems;
    std::size_t mPendingStems = 0;
    std::int32_t mStemCount = 0;
    float mNominalWidth = 0;
    float mDefaultWidth = 0;
    bool mWidthPending = true;
    std::uint16_t mFontDict = 0;
    bool mIsOver = false;
    std::int32_t mDepth = 0;
    std::int32_t mSteps = 0;
    std::int32_t mComplaints = 0;
    Frame* mFrame = nullptr;
    const GRAPHICS::ICharStringSubroutines* mSubroutines = nullptr;
    T1CharString mOut;
};

}  // namespace VANTIX::PS
