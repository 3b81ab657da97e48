// SPDX-License-Identifier: MIT
// Glyphs of Type 3 fonts (PDF Reference, 5.5.4).
#include <exception>
#include <limits>
#include <memory>
#include <string>
#include <utility>

#include "pdf/contentinterpreter.h"
#include "pdf/fonts/fonts.h"
#include "pdf/objects.h"
#include "pdf/textpieces.h"

namespace VANTIX::PDF {

namespace {

constexpr int kMostNestedGlyphs = 8;

}  // namespace

void ContentInterpreter::PlayGlyph(PlayContext& context, const Type3Font& font,
                                   const GlyphDescription& glyph) {
    ContentInterpreter interpreter(context);
    interpreter.mFont = &font;
    interpreter.mIsUncolored = true;
    // Lines are as they are where the glyph is shown, which nobody knows here.
    LineState& line = interpreter.Top().line;
    line.width = line.miterLimit = line.dashPhase = std::numeric_limits<float>::quiet_NaN();
    line.cap = line.join = -1;
    const ScopedLevel level(interpreter);
    interpreter.DrawGlyph(font, glyph);
}

void ContentInterpreter::DrawGlyph(const Type3Font& font, const GlyphDescription& glyph) {
    const OpenStreams::Mark mark(mContext.openStreams, glyph.stream);
    if (!mark.IsSet() || mGlyphDepth >= kMostNestedGlyphs ||
        (mGlyphDepth > 0 && !mContext.fonts.CountNestedGlyph())) {
        mContext.reporter.Warn("recursion",
                               "A glyph that draws itself, or glyphs that are nested too deep");
        return;
    }
    const bool wasUncolored = std::exchange(mIsUncolored, mIsUncolored || !glyph.isColoured);
    ++mGlyphDepth;
    if (glyph.isStroked) {
        SetInitialLines();
    }
    try {
        const std::shared_ptr<Form> form = mContext.forms.Find(glyph.stream, "A glyph");
        Play(form->content,
             form->resources ? *form->resources : font.ResourcesOf(mContext.colorSpaces));
    } catch (const std::exception& failure) {
        mContext.reporter.Warn("damaged", failure.what());
    }
    --mGlyphDepth;
    mIsUncolored = wasUncolored;
}

// A glyph starts with the lines of a new page, and strokes in the colour in which it fills, as
// interpreters of the document do.
void ContentInterpreter::SetInitialLines() {
    constexpr float kMiterLimit = 10.0F;
    const std::array<float, 3> initial = {1.0F, 0.0F, kMiterLimit};
    LineWidth(initial.data());
    LineCap(&initial[1]);
    LineJoin(&initial[1]);
    MiterLimit(&initial[2]);
    SetDash({}, 0.0F);
    State().stroke = State().fill;
    Top().strokeSpace = Top().fillSpace;
    Top().strokePattern = Top().fillPattern;
}

// In a recording the glyphs of fonts that are not in the document yet are played, too.
const GlyphDescription* ContentInterpreter::PlayedGlyph(char code) {
    const Type3Font& font = *Top().text.font->type3;
    const GlyphDescription* glyph = font.byCode[static_cast<std::uint8_t>(code)];
    const bool isThere = mFont == nullptr || font.height < mFont->height;
    return glyph != nullptr && (glyph->isPlayed || !isThere) ? glyph : nullptr;
}

// What is played may show text itself, so that the codes have to be kept. The rendering mode means
// nothing.
void ContentInterpreter::ShowType3(std::string_view codes) {
    const std::string own(codes);
    std::size_t start = 0;
    while (start < own.size()) {
        const GlyphDescription* glyph = PlayedGlyph(own[start]);
        std::size_t end = start + 1;
        while (glyph == nullptr && end < own.size() && PlayedGlyph(own[end]) == nullptr) {
            ++end;
        }
        const std::string_view piece = std::string_view(own).substr(start, end - start);
        start = end;
        if (glyph == nullptr) {
            ShowPieces(piece,
                       MayPaintText(true) ? std::optional(TextRendering::kFill) : std::nullopt);
            continue;
        }
        ShowPlayedGlyph(*glyph);
        const double advance = AdvanceOf(Top().text, piece);
        mFrame.text.matrix =
            Multiply(std::array<double, 6>{1, 0, 0, 1, advance, 0}, mFrame.text.matrix);
    }
}

void ContentInterpreter::ShowPlayedGlyph(const GlyphDescription& glyph) {
    if (IsHidden() || Top().isCollapsed || !IsNear(0.0)) {
        return;
    }
    const TextState text = Top().text;
    const auto size = static_cast<double>(text.size);
    const std::array<double, 6> parameters = {
        size * static_cast<double>(text.scaling), 0, 0, size, 0, static_cast<double>(text.rise)};
    const Type3Font& font = *text.font->type3;
    CloseTextObject();
    Path outerPath = std::exchange(mPath, Path());
    {
        const ScopedLevel level(*this);
        if (level.IsSaved() &&
            Concat(Multiply(font.matrix, Multiply(parameters, mFrame.text.matrix)))) {
            DrawGlyph(font, glyph);
        }
    }
    mPath = std::move(outerPath);
}

}  // namespace VANTIX::PDF
