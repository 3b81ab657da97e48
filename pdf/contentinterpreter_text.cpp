// SPDX-License-Identifier: MIT
#include <algorithm>
#include <cmath>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "core/graphics/itextobject.h"
#include "pdf/contentinterpreter.h"
#include "pdf/fonts/compositefont.h"
#include "pdf/fonts/fonts.h"
#include "pdf/fonts/stringoperand.h"
#include "pdf/objects.h"
#include "pdf/textpieces.h"

namespace VANTIX::PDF {

namespace {

constexpr std::array<double, 6> kIdentity = {1, 0, 0, 1, 0, 0};

// Thousandths of an em, in which TJ moves.
constexpr double kAdjustment = 1.0 / 1000.0;

// Of one text object; each becomes an outline of a path.
constexpr std::size_t kMaxClipCodes = 65536;

// Leads to the same space from a point further on.
void Translate(std::array<double, 6>& matrix, double x, double y) {
    matrix[4] += x * matrix[0] + y * matrix[2];
    matrix[5] += x * matrix[1] + y * matrix[3];
}

bool HasOutline(const Font& font, std::string_view codes) {
    const auto byte = [&](std::size_t i) {
        return static_cast<unsigned>(static_cast<std::uint8_t>(codes[i]));
    };
    const std::size_t step = font.handler->CodeBytes();
    for (std::size_t i = 0; i + step <= codes.size(); i += step) {
        const unsigned code = step == 1 ? byte(i) : byte(i) << 8U | byte(i + 1);
        if (font.HasOutline(static_cast<std::uint16_t>(code))) {
            return true;
        }
    }
    return false;
}

}  // namespace

void ContentInterpreter::BeginText(Numbers) {
    EndText(nullptr);
    mFrame.text.matrix = mFrame.text.lineMatrix = kIdentity;
}

void ContentInterpreter::EndText(Numbers) {
    CloseTextObject();
    ClipToText();
}

void ContentInterpreter::CloseTextObject() {
    if (mFrame.text.isOpen) {
        mContext.space.EndTextObject();
        mFrame.text.isOpen = false;
    }
}

// The connection space clips when a text object ends in this mode.
void ContentInterpreter::ClipToText() {
    TextObject& text = mFrame.text;
    if (text.hasOutline) {
        ClipToStrings(text.clip);
        if (KeepsClips()) {
            KeepClip({Top().matrix, {}, false, std::move(text.clip)});
        }
    }
    text.clip.clear();
    text.clipCodes = 0;
    text.hasOutline = false;
}

void ContentInterpreter::ClipToStrings(const std::vector<ClippingText>& strings) {
    for (const ClippingText& string : strings) {
        DrawText(string.place, string.codes, TextRendering::kClip);
    }
    CloseTextObject();
    mContext.space.NewPath();
    State().textRendering = TextRendering::kFill;
}

// The content of a soft mask may show text itself.
void ContentInterpreter::PrepareText() {
    const TextRendering mode = Top().text.rendering;
    if (mode != TextRendering::kInvisible && mode != TextRendering::kClip) {
        PreparePaint();
    }
}

void ContentInterpreter::HorizontalScaling(Numbers v) {
    Top().text.scaling = v[0] / 100.0F;
}

void ContentInterpreter::RenderingMode(Numbers v) {
    if (v[0] < 0.0F || v[0] > 7.0F) {
        BadOperands();
    } else {
        Top().text.rendering = static_cast<TextRendering>(v[0]);
    }
}

void ContentInterpreter::SelectFont(Numbers) {
    const std::vector<Operand>& operands = Operands();
    if (operands.size() < 2 || operands.back().kind != OperandKind::kNumber ||
        operands[operands.size() - 2].kind != OperandKind::kName) {
        BadOperands();
        return;
    }
    const std::string_view name = operands[operands.size() - 2].text;
    const QPDFObjectHandle& font = mFrame.resources->Find("/Font", name);
    if (IsNull(font)) {
        mContext.reporter.Warn("missing-resource", "There is no font " + std::string(name));
    }
    SetFont(font, ToFloat(operands.back().number));
}

void ContentInterpreter::SetFont(const QPDFObjectHandle& dictionary, float size) {
    Top().text.font = IsNull(dictionary) ? nullptr : mContext.fonts.Find(dictionary);
    Top().text.size = size;
}

void ContentInterpreter::MoveLine(Numbers v) {
    MoveLineBy(static_cast<double>(v[0]), static_cast<double>(v[1]));
}

void ContentInterpreter::MoveLineWithLeading(Numbers v) {
    Top().text.leading = -v[1];
    MoveLine(v);
}

void ContentInterpreter::NextLine(Numbers) {
    MoveLineBy(0.0, -static_cast<double>(Top().text.leading));
}

void ContentInterpreter::MoveLineBy(double x, double y) {
    Translate(mFrame.text.lineMatrix, x, y);
    mFrame.text.matrix = mFrame.text.lineMatrix;
}

void ContentInterpreter::TextMatrix(Numbers v) {
    std::copy_n(v, 6, mFrame.text.lineMatrix.begin());
    mFrame.text.matrix = mFrame.text.lineMatrix;
}

void ContentInterpreter::ShowString(Numbers) {
    if (Operands().empty()) {
        BadOperands();
        return;
    }
    PrepareText();
    mCodes.clear();
    AppendString(Operands().back(), mCodes);
    Show(mCodes);
}

void ContentInterpreter::ShowStringOnNextLine(Numbers) {
    NextLine(nullptr);
    ShowString(nullptr);
}

void ContentInterpreter::ShowStringWithSpacing(Numbers) {
    const std::vector<Operand>& operands = Operands();
    const std::size_t count = operands.size();
    if (count < 3 || operands[count - 3].kind != OperandKind::kNumber ||
        operands[count - 2].kind != OperandKind::kNumber) {
        BadOperands();
        return;
    }
    Top().text.wordSpacing = ToFloat(operands[count - 3].number);
    Top().text.charSpacing = ToFloat(operands[count - 2].number);
    ShowStringOnNextLine(nullptr);
}

// What no adjustment parts is shown as one string.
void ContentInterpreter::ShowStrings(Numbers) {
    PrepareText();
    mCodes.clear();
    for (const Operand& operand : Operands()) {
        if (operand.kind != OperandKind::kNumber) {
            AppendString(operand, mCodes);
        } else if (operand.number != 0.0) {
            Show(mCodes);
            mCodes.clear();
            const TextState& text = Top().text;
            MoveAlong(-operand.number * kAdjustment * static_cast<double>(text.size) *
                      ScalingAlong(text));
        }
    }
    Show(mCodes);
}

void ContentInterpreter::Show(std::string_view codes) {
    const TextState& text = Top().text;
    if (codes.empty() || text.font == nullptr || !text.font->handler) {
        return;
    }
    if (text.font->type3) {
        ShowType3(codes);
        return;
    }
    if (text.font->codes == nullptr) {
        ShowHostText(codes);
        return;
    }
    // Interpreters give word spacing to one code of two bytes; that of one byte has it here.
    while (!codes.empty()) {
        mHostText.clear();
        const bool isSpace = text.font->codes->Take(codes, mHostText, text.wordSpacing != 0.0F);
        ShowHostText(mHostText);
        if (isSpace) {
            MoveAlong(static_cast<double>(text.wordSpacing) * ScalingAlong(text));
        }
    }
}

void ContentInterpreter::ShowHostText(std::string_view codes) {
    if (Top().text.rendering == TextRendering::kInvisible) {
        ShowInvisible(codes);
    } else {
        ShowPieces(codes, VisibleRendering());
    }
}

// On the line, in units of text space.
void ContentInterpreter::MoveAlong(double distance) {
    const TextState& text = Top().text;
    const bool isVertical = text.font != nullptr && text.font->handler->IsVertical();
    Translate(mFrame.text.matrix, isVertical ? 0.0 : distance, isVertical ? distance : 0.0);
}

// The mode in which what may be painted is, without its clip; nothing where nothing is painted.
std::optional<TextRendering> ContentInterpreter::VisibleRendering() {
    const auto mode = static_cast<TextRendering>(static_cast<unsigned>(Top().text.rendering) & 3U);
    const bool fill =
        (mode == TextRendering::kFill || mode == TextRendering::kFillStroke) && MayPaintText(true);
    const bool stroke = (mode == TextRendering::kStroke || mode == TextRendering::kFillStroke) &&
                        MayPaintText(false);
    if (fill) {
        return stroke ? TextRendering::kFillStroke : TextRendering::kFill;
    }
    return stroke ? std::optional(TextRendering::kStroke) : std::nullopt;
}

bool ContentInterpreter::MayPaintText(bool fill) {
    const auto& pattern = fill ? Top().fillPattern : Top().strokePattern;
    if (!MayPaint(fill)) {
        return false;
    }
    if (!pattern || !pattern->shading || mContext.languageLevel > 2) {
        return true;
    }
    mContext.reporter.Warn("pattern-text",
                           "What is written in a shading is painted in its middle colour: language "
                           "level 2 has no shadings");
    return SelectMiddleColor(*pattern->shading, fill);
}

// Shown where nothing of it is seen, so that a program that reads the output finds it.
void ContentInterpreter::ShowInvisible(std::string_view codes) {
    constexpr double kClipSize = 0.01;
    const std::optional<TextPlace> place = Place(Top().text, mFrame.text.matrix);
    const bool isKept = mContext.keepsHiddenText && place && MayPaintText(true);
    if (!isKept) {
        ShowPieces(codes, std::nullopt);
        return;
    }
    const ScopedLevel level(*this);
    if (level.IsSaved()) {
        const std::array<double, 6>& matrix = Top().matrix;
        const double scale = std::sqrt(std::abs(matrix[0] * matrix[3] - matrix[1] * matrix[2]));
        const double side = kClipSize / scale;
        const auto x = static_cast<double>(place->origin[0]);
        const auto y = static_cast<double>(place->origin[1]);
        ClipToBox({x, y, x + side, y + side});
    }
    ShowPieces(codes, level.IsSaved() ? std::optional(TextRendering::kFill) : std::nullopt);
}

void ContentInterpreter::ShowPieces(std::string_view codes,
                                    std::optional<TextRendering> rendering) {
    const TextState& text = Top().text;
    const bool isInJob = text.font->isInJob;
    const bool clips = isInJob && text.rendering > TextRendering::kInvisible &&
                       !Top().isCollapsed && !text.font->type3;
    rendering = isInJob ? rendering : std::nullopt;
    while (!codes.empty()) {
        const std::optional<TextPlace> place =
            rendering || clips ? Place(text, mFrame.text.matrix) : std::nullopt;
        std::string_view piece = codes.substr(0, place ? PieceLength(*place, codes) : codes.size());
        if (!IsNear(AdvanceOf(text, piece))) {
            piece = piece.substr(0, text.font->handler->CodeBytes());
        }
        const bool isSeen = place && IsNear(0.0);
        if (isSeen && rendering) {
            DrawText(*place, piece, *rendering);
        }
        if (isSeen && clips) {
            KeepForClip(*place, piece);
        }
        MoveAlong(AdvanceOf(text, piece));
        codes.remove_prefix(piece.size());
    }
}

// Whether a place on the line lies where the coordinates of interpreters reach.
bool ContentInterpreter::IsNear(double along) {
    constexpr double kFarthest = 1e5;
    const std::array<double, 6> matrix = Multiply(mFrame.text.matrix, Top().matrix);
    const std::size_t direction = Top().text.font->handler->IsVertical() ? 2 : 0;
    return std::abs(matrix.at(direction) * along + matrix[4]) <= kFarthest &&
           std::abs(matrix.at(direction + 1) * along + matrix[5]) <= kFarthest;
}

void ContentInterpreter::KeepForClip(const TextPlace& place, std::string_view codes) {
    TextObject& text = mFrame.text;
    if (codes.size() > kMaxClipCodes - text.clipCodes) {
        mContext.reporter.Warn("clip", "A clip of very long text is cut short");
        return;
    }
    text.clipCodes += codes.size();
    text.hasOutline = text.hasOutline || HasOutline(*place.selection.font, codes);
    text.clip.push_back({place, std::string(codes)});
}

// The matrix is set for each string: no position then depends on what an interpreter makes of the
// string before.
void ContentInterpreter::DrawText(const TextPlace& place, std::string_view codes,
                                  TextRendering rendering) {
    const SelectedFont& wanted = place.selection;
    const std::array<float, 4>& linear = wanted.linear;
    HOST::GraphicsParameters& state = State();
    state.fontName = wanted.font->name.c_str();
    state.fontSelector = wanted.font->selector;
    state.fontSize = wanted.size;
    // Nothing follows the last glyph.
    const std::size_t step = wanted.font->handler->CodeBytes();
    const std::string_view spaced = codes.substr(0, codes.size() - step);
    const bool hasSpace = step == 1 && spaced.find(' ') != std::string_view::npos;
    state.charSpacing = spaced.empty() ? 0.0F : place.charSpacing;
    state.wordSpacing = hasSpace ? place.wordSpacing : 0.0F;
    state.textRendering = rendering;
    TextObject& text = mFrame.text;
    if (!text.isOpen) {
        text.isOpen = mContext.space.BeginTextObject();
        text.linear = {1, 0, 0, 1};
    }
    GRAPHICS::ITextObject* object = text.isOpen ? mContext.space.GetCurrentTextObject() : nullptr;
    if (object == nullptr) {
        return;
    }
    // A new matrix selects the font itself, but this loads the fonts of the document.
    SelectedFont& selected = Top().selectedFont;
    if (!std::exchange(mContext.fontsAreLoaded, true) ||
        (text.linear == linear && selected != wanted)) {
        mContext.space.SelectCurrentFont();
    }
    const std::array<float, 6> matrix = {linear[0], linear[1],       linear[2],
                                         linear[3], place.origin[0], place.origin[1]};
    object->SetTextMatrix(matrix.data());
    text.linear = linear;
    selected = wanted;
    mContext.space.DrawTextW(codes.data(), static_cast<std::int32_t>(codes.size()));
}

}  // namespace VANTIX::PDF
