// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string_view>

#include "core/fonts/ifontpackagehandler.h"
#include "core/graphics/igraphicsstate.h"
#include "core/graphics/itextobject.h"
#include "core/object/tobject.h"

namespace VANTIX::PS {

class PostScriptConnectionSpace;
class TextBuffer;

/// Appends bytes as a hexadecimal string: "<…>" with digits in upper case.
void AppendHexString(TextBuffer& text, std::span<const std::uint8_t> bytes);

/// The text that is drawn between the beginning and the end of a text object: its matrices, and the
/// operators that show it. The matrix maps as a PostScript one does; its linear part goes into the
/// font, its translation into the current point.
class PSTextObject : public TObject<GRAPHICS::ITextObject> {
public:
    using Mode = GRAPHICS::IGraphicsState::TTextRendering;

    /// `space` is not referenced, and must outlive the object.
    explicit PSTextObject(PostScriptConnectionSpace& space) : mSpace(space) {}

    bool Reserved1() override { return true; }

    bool Reserved2() override { return true; }

    /// Puts `matrix` before the text matrix, until the line is set anew.
    void ConcatTextMatrix(const float matrix[6]) override;
    void MoveText(float tx, float ty) override;
    void NextLine() override;
    /// Moves by the advance of a glyph, in ems, and the character spacing.
    void AdvanceGlyph(float w0, float w1) override;
    /// Moves by `t` ems in the direction of writing.
    void AdvanceText(float t) override;
    void SetTextMatrix(const float matrix[6]) override;
    GRAPHICS::IConnectionSpace* GetConnectionSpace() override;

    [[nodiscard]] const float* GetMatrix() const { return mMatrix.data(); }

    /// Shows `length` bytes of host text in the state's rendering mode.
    void Show(GRAPHICS::IFontPackageHandler& handler, const void* text, std::int32_t length);

private:
    struct Vector {
        float x = 0;
        float y = 0;
    };

    struct Spacing;
    struct Advances;
    struct Run;

    [[nodiscard]] Vector Map(Vector text) const;
    /// Takes a new matrix over, and selects its font where the linear part changes.
    void TakeMatrix(const std::array<float, 6>& matrix);
    /// In user space, for an advance of (w0, w1) ems and the spacing that goes with it.
    [[nodiscard]] Vector Displacement(float w0, float w1, float spacing) const;
    void AdvanceShown(float w0, float w1, bool isWordSpace);
    void Move(Vector displacement);
    void WriteText(std::string_view text);

    void ShowInMode(const Run& run, Mode mode);
    void ShowTwice(const Run& run, Mode first, Mode second);
    void ShowCodes(const Run& run, Mode mode);
    [[nodiscard]] Spacing MakeSpacing() const;
    void ShowSpaced(const Run& run, const Spacing& spacing);
    void ShowPositioned(const Run& run, const Advances& advances, const Spacing& spacing);
    void ShowOneByOne(const Run& run, const Advances& advances, Mode mode);
    void ShowPlain(const Run& run, Mode mode);

    PostScriptConnectionSpace& mSpace;
    std::array<float, 6> mMatrix{1, 0, 0, 1, 0, 0};
    std::array<float, 6> mLineMatrix{1, 0, 0, 1, 0, 0};
    /// Whether the last font shown is written vertically.
    bool mIsVertical = false;
    /// The mode whose colour is current.
    Mode mColorMode = Mode::kInvisible;
};

}  // namespace VANTIX::PS
