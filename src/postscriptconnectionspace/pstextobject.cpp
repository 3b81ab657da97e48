// SPDX-License-Identifier: MIT
// Text showing (PostScript Language Reference, 5.1; PDF Reference, 5.3).
#include "postscriptconnectionspace/pstextobject.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "core/fonts/ifontancillaries.h"
#include "core/libsupport/vlogger/logmessage.h"
#include "postscriptconnectionspace/postscriptconnectionspace.h"
#include "postscriptconnectionspace/textbuffer.h"
#include "postscriptdatastream/workbuffer.h"

namespace VANTIX::PS {

namespace {

constexpr const char* kModule = "src/postscriptconnectionspace";
/// Advances that there is always room for, and their bytes.
constexpr std::size_t kLeastAdvances = 1024;
constexpr std::size_t kAdvanceBytes = kLeastAdvances * sizeof(float);
constexpr std::size_t kSpareCodeBytes = 16;

}  // namespace

/// A string that is shown: host text, its codes, and the bytes of each code.
struct PSTextObject::Run {
    using Bytes = std::span<const std::uint8_t>;

    GRAPHICS::IFontPackageHandler& handler;
    const void* text;
    std::int32_t length;
    Bytes codes;
    std::size_t codeBytes;

    [[nodiscard]] std::size_t Count() const { return (codes.size() + codeBytes - 1) / codeBytes; }

    [[nodiscard]] Bytes Character(std::size_t index) const {
        const Bytes rest = codes.subspan(index * codeBytes);
        return rest.first(std::min(rest.size(), codeBytes));
    }
};

/// The advances of a run's characters, for a font that does not have them itself.
struct PSTextObject::Advances {
    explicit Advances(const Run& run)
        : w0(std::max(kLeastAdvances, run.codes.size())), w1(w0.Size()) {
        auto count = static_cast<std::int32_t>(w0.Size());
        areKnown = run.handler.IsEmbedded() && w0.Data() != nullptr && w1.Data() != nullptr &&
                   run.handler.GetAdvances(run.text, run.length, w0.Data(), w1.Data(), &count) &&
                   count > 0 && static_cast<std::size_t>(count) >= run.Count();
    }

    mutable WorkBuffer<float, kAdvanceBytes> w0;
    mutable WorkBuffer<float, kAdvanceBytes> w1;
    bool areKnown = false;

    [[nodiscard]] Vector operator[](std::size_t index) const {
        return {w0.Data()[index], w1.Data()[index]};
    }
};

/// Character and word spacing in text space and in user space.
struct PSTextObject::Spacing {
    Vector character;
    Vector word;
    Vector userCharacter;
    Vector userWord;

    [[nodiscard]] bool HasWord() const { return word.x != 0 || word.y != 0; }

    [[nodiscard]] bool IsThere() const { return HasWord() || character.x != 0 || character.y != 0; }
};

void AppendHexString(TextBuffer& text, std::span<const std::uint8_t> bytes) {
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    text.Append("<");
    for (const std::uint8_t byte : bytes) {
        const char digits[] = {kDigits[byte >> 4U], kDigits[byte & 0xFU]};
        text.Append({digits, sizeof digits});
    }
    text.Append(">");
}

GRAPHICS::IConnectionSpace* PSTextObject::GetConnectionSpace() {
    return &mSpace;
}

PSTextObject::Vector PSTextObject::Map(Vector text) const {
    return {mMatrix[0] * text.x + mMatrix[2] * text.y, mMatrix[1] * text.x + mMatrix[3] * text.y};
}

void PSTextObject::TakeMatrix(const std::array<float, 6>& matrix) {
    const bool isSameFont = std::equal(matrix.begin(), matrix.begin() + 4, mMatrix.begin());
    mMatrix = matrix;
    if (!isSameFont) {
        mSpace.SetTextMatrix(mMatrix.data());
    }
    mSpace.MoveTo(mMatrix[4], mMatrix[5]);
}

void PSTextObject::SetTextMatrix(const float matrix[6]) {
    std::copy_n(matrix, mLineMatrix.size(), mLineMatrix.begin());
    TakeMatrix(mLineMatrix);
}

void PSTextObject::ConcatTextMatrix(const float matrix[6]) {
    const auto product = [this, matrix](std::size_t row, std::size_t column) {
        return matrix[row] * mMatrix[column] + matrix[row + 1] * mMatrix[column + 2];
    };
    TakeMatrix({product(0, 0), product(0, 1), product(2, 0), product(2, 1),
                product(4, 0) + mMatrix[4], product(4, 1) + mMatrix[5]});
}

void PSTextObject::MoveText(float tx, float ty) {
    mMatrix = mLineMatrix;
    const Vector moved = Map({tx, ty});
    mMatrix[4] += moved.x;
    mMatrix[5] += moved.y;
    mLineMatrix = mMatrix;
    mSpace.MoveTo(mMatrix[4], mMatrix[5]);
}

void PSTextObject::NextLine() {
    MoveText(0, -mSpace.GetTextState().leading);
}

PSTextObject::Vector PSTextObject::Displacement(float w0, float w1, float spacing) const {
    const TextState state = mSpace.GetTextState();
    const float dx = state.fontSize * w0 + (mIsVertical ? 0 : spacing);
    const float dy = state.fontSize * w1 + (mIsVertical ? spacing : 0);
    return Map({dx * state.horizontalScaling, dy});
}

void PSTextObject::Move(Vector displacement) {
    if (displacement.x != 0 || displacement.y != 0) {
        mSpace.RelativeMoveTo(displacement.x, displacement.y);
    }
}

void PSTextObject::AdvanceGlyph(float w0, float w1) {
    Move(Displacement(w0, w1, mSpace.GetTextState().charSpacing));
}

void PSTextObject::AdvanceText(float t) {
    Move(mIsVertical ? Displacement(0, t, 0) : Displacement(t, 0, 0));
}

void PSTextObject::AdvanceShown(float w0, float w1, bool isWordSpace) {
    if (w0 < 0) {
        w0 = -w0;
        isWordSpace = true;
    } else if (w1 > 0) {
        w1 = -w1;
        isWordSpace = true;
    }
    const TextState state = mSpace.GetTextState();
    const Vector moved =
        Displacement(w0, w1, state.charSpacing + (isWordSpace ? state.wordSpacing : 0));
    mSpace.RelativeMoveTo(moved.x, moved.y);
}

void PSTextObject::WriteText(std::string_view text) {
    mSpace.WriteRawData(text.data(), static_cast<std::int32_t>(text.size()));
}

void PSTextObject::Show(GRAPHICS::IFontPackageHandler& handler, const void* text,
                        std::int32_t length) {
    const auto* composite =
        FindInterface<GRAPHICS::ICompositeFontInfo>(&handler, GRAPHICS::IID_ICOMPOSITEFONTINFO);
    mIsVertical = composite != nullptr && composite->IsVertical();
    const Mode mode = mSpace.GetTextState().rendering;
    mSpace.SetTextRenderingColor(mode);
    mColorMode = mode == Mode::kFillStroke ? Mode::kFill : mode;
    const std::size_t room = static_cast<std::size_t>(length) * 2 + kSpareCodeBytes;
    WorkBuffer<std::uint8_t> buffer(room);
    if (buffer.Data() == nullptr) {
        LogError(kModule) << "Unable to get memory to hold the encoded text of Bytes Size = "
                          << std::int64_t{length} * 2;
        return;
    }
    Run run{handler, text, length, {}, composite != nullptr ? std::size_t{2} : std::size_t{1}};
    std::int32_t count = 0;
    if (handler.ReEncodeText(text, length, buffer.Data(), &count)) {
        run.codes = {buffer.Data(), std::min(static_cast<std::size_t>(std::max(count, 0)), room)};
    } else {
        LogError(kModule)
            << "ReEncoding of the input text string failed, output the input string itself.";
        run.codes = {static_cast<const std::uint8_t*>(text), static_cast<std::size_t>(length)};
    }
    if (!run.codes.empty()) {
        ShowInMode(run, mode);
    }
}

void PSTextObject::ShowInMode(const Run& run, Mode mode) {
    switch (mode) {
        case Mode::kFill:
        case Mode::kStroke:
        case Mode::kInvisible:
        case Mode::kClip:
            ShowCodes(run, mode);
            break;
        case Mode::kFillStroke:
            ShowTwice(run, Mode::kFill, Mode::kStroke);
            break;
        case Mode::kFillClip:
            ShowTwice(run, Mode::kFill, Mode::kClip);
            break;
        case Mode::kStrokeClip:
            ShowTwice(run, Mode::kStroke, Mode::kClip);
            break;
        case Mode::kFillStrokeClip:
            WriteText("currentpoint\n");
            ShowCodes(run, Mode::kFill);
            WriteText("currentpoint\n4 -2 roll 2 copy moveto\n");  // end, start
            ShowCodes(run, Mode::kStroke);
            WriteText("moveto\n");  // end
            ShowCodes(run, Mode::kClip);
            WriteText("moveto\n");
            break;
        default:
            LogError(kModule) << "Invalid TextRendering Mode.";
    }
}

void PSTextObject::ShowTwice(const Run& run, Mode first, Mode second) {
    WriteText("currentpoint\n");
    ShowCodes(run, first);
    WriteText("currentpoint\n4 -2 roll moveto\n");  // end
    ShowCodes(run, second);
    WriteText("moveto\n");
}

PSTextObject::Spacing PSTextObject::MakeSpacing() const {
    const TextState state = mSpace.GetTextState();
    const auto inDirection = [&](float amount) {
        return mIsVertical ? Vector{0, amount} : Vector{amount * state.horizontalScaling, 0};
    };
    const Vector character = inDirection(state.charSpacing);
    const Vector word = inDirection(state.wordSpacing);
    return {character, word, Map(character), Map(word)};
}

void PSTextObject::ShowCodes(const Run& run, Mode mode) {
    if (mode != mColorMode) {
        mSpace.SetTextRenderingColor(mode);
        mColorMode = mode;
    }
    const Advances advances(run);
    const Spacing spacing = MakeSpacing();
    if (mode == Mode::kFill && advances.areKnown) {
        ShowPositioned(run, advances, spacing);
        return;
    }
    if (mode == Mode::kFill && run.Count() > 1 && spacing.IsThere()) {
        ShowSpaced(run, spacing);
        return;
    }
    // Outlines are collected first, so that they are stroked as one path.
    const Mode pieceMode = mode == Mode::kStroke ? Mode::kInvisible : mode;
    if (advances.areKnown) {
        ShowOneByOne(run, advances, pieceMode);
    } else {
        ShowPlain(run, pieceMode);
    }
    if (mode == Mode::kStroke) {
        WriteText("stroke\n");
    }
}

void PSTextObject::ShowSpaced(const Run& run, const Spacing& spacing) {
    TextBuffer& line = mSpace.StartLine();
    if (spacing.HasWord()) {
        line.Format("%.8g %.8g %d ", spacing.userWord.x, spacing.userWord.y,
                    run.handler.GetSpaceCharCode());
    }
    line.Format("%.8g %.8g ", spacing.userCharacter.x, spacing.userCharacter.y);
    AppendHexString(line, run.codes);
    line.Append(spacing.HasWord() ? "awidthshow\n" : "ashow\n");
    WriteText(line.View());
}

void PSTextObject::ShowPositioned(const Run& run, const Advances& advances,
                                  const Spacing& spacing) {
    const TextState state = mSpace.GetTextState();
    /// In user space: horizontal advances are scaled by `scaling`.
    const auto map = [&](Vector advance, float scaling) {
        const Vector user = Map({std::abs(advance.x) * scaling, advance.y});
        return Vector{user.x * state.fontSize, user.y * state.fontSize};
    };
    const Vector first = map(advances[0], state.horizontalScaling);
    const bool isAlongX = first.y == 0;
    const bool isAlongY = !isAlongX && first.x == 0;
    TextBuffer& line = mSpace.StartLine();
    AppendHexString(line, run.codes);
    for (std::size_t i = 0; i < run.Count(); ++i) {
        const Vector advance = advances[i];
        const float words = advance.x < 0 ? 1 : 0;
        const Vector user = map(advance, isAlongX ? state.horizontalScaling : 1);
        const float x = user.x + words * spacing.userWord.x + spacing.userCharacter.x;
        const float y = user.y + words * spacing.userWord.y + spacing.userCharacter.y;
        line.Append(i == 0 ? "[" : " ");
        if (isAlongX || isAlongY) {
            line.Format("%0.3g", isAlongX ? x : y);
        } else {
            line.Format("%0.3g %0.3g", x, y);
        }
    }
    line.Append(isAlongX ? "]xshow\n" : isAlongY ? "]yshow\n" : "]xyshow\n");
    WriteText(line.View());
}

void PSTextObject::ShowOneByOne(const Run& run, const Advances& advances, Mode mode) {
    for (std::size_t i = 0; i < run.Count(); ++i) {
        WriteText("currentpoint\n");
        mSpace.Show(run.Character(i), mode);
        WriteText("moveto\n");
        AdvanceShown(advances[i].x, advances[i].y, false);
    }
}

void PSTextObject::ShowPlain(const Run& run, Mode mode) {
    const TextState state = mSpace.GetTextState();
    const bool hasWordSpaces = run.codeBytes == 1 && state.wordSpacing != 0;
    if (!hasWordSpaces && state.charSpacing == 0) {
        mSpace.Show(run.codes, mode);
        return;
    }
    const std::int32_t space = run.handler.GetSpaceCharCode();
    for (std::size_t i = 0; i < run.Count(); ++i) {
        const Run::Bytes character = run.Character(i);
        mSpace.Show(character, mode);
        AdvanceShown(0, 0, hasWordSpaces && character[0] == space);
    }
}

}  // namespace VANTIX::PS
