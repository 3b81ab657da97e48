// SPDX-License-Identifier: MIT
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdarg>

#include "postscriptconnectionspace/postscriptconnectionspace.h"
#include "postscriptconnectionspace/postscriptoutputcontext.h"
#include "postscriptdatastream/formattext.h"
#include "postscriptdatastream/workbuffer.h"

namespace VANTIX::PS {

namespace {

/// Room for the longest operator: six numbers of at most 15 characters with their blanks, and the
/// operator's name.
constexpr std::size_t kOperatorBytes = 128;
/// Operators of one path that are gathered for one write.
constexpr std::size_t kGatherBytes = 2048;
constexpr std::size_t kMaxNumberChars = 16;

constexpr float kRadiansPerDegree = 0.017453292519943295F;

}  // namespace

void PostScriptConnectionSpace::WriteOperator(const char* format, ...) {
    char text[kOperatorBytes];
    std::va_list arguments;
    va_start(arguments, format);
    FormatTextList(text, sizeof text, format, arguments);
    va_end(arguments);
    WriteText(text);
}

void PostScriptConnectionSpace::WriteText(const char* text) {
    if (IPostScriptDataStream* stream = mStreams.Top(); stream != nullptr) {
        *stream << text;
    }
}

void PostScriptConnectionSpace::SaveGraphicsState() {
    if (!IsDrawingSuppressed() && mContext) {
        mContext->GSave();
    }
}

void PostScriptConnectionSpace::RestoreGraphicsState() {
    if (!IsDrawingSuppressed() && mContext) {
        mContext->GRestore();
    }
}

void PostScriptConnectionSpace::Scale(float sx, float sy) {
    if (!IsDrawingSuppressed()) {
        WriteOperator("%.8g %.8g scale\n", sx, sy);
    }
}

void PostScriptConnectionSpace::Translate(float tx, float ty) {
    if (!IsDrawingSuppressed()) {
        WriteOperator("%.8g %.8g translate\n", tx, ty);
    }
}

void PostScriptConnectionSpace::Rotate(float angle) {
    const float cosine = std::cos(angle);
    const float sine = std::sin(angle);
    Concat(cosine, -sine, sine, cosine, 0, 0);
}

void PostScriptConnectionSpace::Concat(float a, float b, float c, float d, float e, float f) {
    if (!IsDrawingSuppressed()) {
        WriteOperator("[%.8g %.8g %.8g %.8g %.8g %.8g] concat\n", a, b, c, d, e, f);
    }
}

void PostScriptConnectionSpace::NewPath() {
    if (!IsDrawingSuppressed()) {
        WriteText("newpath\n");
    }
}

void PostScriptConnectionSpace::MoveTo(float x, float y) {
    if (!IsDrawingSuppressed()) {
        mCurrent = {x, y};
        WriteOperator("%.8g %.8g moveto\n", x, y);
    }
}

void PostScriptConnectionSpace::RelativeMoveTo(float dx, float dy) {
    if (!IsDrawingSuppressed()) {
        mCurrent = {mCurrent.x + dx, mCurrent.y + dy};
        WriteOperator("%.8g %.8g rmoveto\n", dx, dy);
    }
}

// Several operators go out in one write: the bytes are the same, the calls to the stream fewer.
template <std::size_t Floats, class Format>
void PostScriptConnectionSpace::WritePoints(const float* points, std::int32_t count,
                                            Format format) {
    char text[kGatherBytes];
    std::size_t used = 0;
    for (std::int32_t i = 0; i < count; ++i, points += Floats) {
        if (used + kOperatorBytes > sizeof text) {
            WriteText(text);
            used = 0;
        }
        used += format(text + used, sizeof text - used, points);
    }
    WriteText(text);
    mCurrent = {points[-2], points[-1]};
}

void PostScriptConnectionSpace::LineTo(const float* points, std::int32_t count) {
    if (IsDrawingSuppressed() || points == nullptr || count <= 0) {
        return;
    }
    WritePoints<2>(points, count, [](char* text, std::size_t size, const float* p) {
        return FormatText(text, size, "%.8g %.8g lineto\n", p[0], p[1]);
    });
}

void PostScriptConnectionSpace::CurveTo(const float* points, std::int32_t count) {
    if (IsDrawingSuppressed() || points == nullptr || count <= 0) {
        return;
    }
    if (IPostScriptDataStream* stream = mStreams.Top(); stream != nullptr) {
        stream->SetSeparated();
    }
    WritePoints<6>(points, count, [](char* text, std::size_t size, const float* p) {
        return FormatText(text, size, "%.8g %.8g %.8g %.8g %.8g %.8g curveto\n", p[0], p[1], p[2],
                          p[3], p[4], p[5]);
    });
}

void PostScriptConnectionSpace::QuadCurveTo(const float* points, std::int32_t count) {
    if (points == nullptr) {
        return;
    }
    const auto towards = [](float from, float to) { return from + (to - from) * 2 / 3; };
    for (std::int32_t i = 0; i < count; ++i, points += 4) {
        const float qx = points[0];
        const float qy = points[1];
        const float x = points[2];
        const float y = points[3];
        const float curve[] = {
            towards(mCurrent.x, qx), towards(mCurrent.y, qy), towards(x, qx), towards(y, qy), x, y};
        CurveTo(curve, 1);
    }
}

void PostScriptConnectionSpace::Arc(float x, float y, float radius, float angle1, float angle2) {
    if (IsDrawingSuppressed()) {
        return;
    }
    WriteOperator("%.8g %.8g %.8g %.8g %.8g arc\n", x, y, radius, 360 - angle2, 360 - angle1);
    const float end = (360 - angle1) * kRadiansPerDegree;
    mCurrent = {x + radius * std::cos(end), y + radius * std::sin(end)};
}

void PostScriptConnectionSpace::ArcTo(float x1, float y1, float x2, float y2, float radius) {
    if (IsDrawingSuppressed()) {
        return;
    }
    // The operator leaves the four coordinates of the tangent points behind.
    WriteOperator("%.8g %.8g %.8g %.8g %.8g arcto 4 {pop} repeat\n", x1, y1, x2, y2, radius);
    const float inX = mCurrent.x - x1;
    const float inY = mCurrent.y - y1;
    const float outX = x2 - x1;
    const float outY = y2 - y1;
    const float outLength = std::hypot(outX, outY);
    const float cross = std::abs(inX * outY - inY * outX);
    mCurrent = {x1, y1};
    if (cross == 0) {
        return;  // on one line there is no corner to round: the operator draws to (x1, y1)
    }
    // radius / tan(half the corner's angle), with tan(t / 2) = sin t / (1 + cos t).
    const float dot = inX * outX + inY * outY;
    const float distance = radius * (std::hypot(inX, inY) * outLength + dot) / cross;
    mCurrent = {x1 + outX / outLength * distance, y1 + outY / outLength * distance};
}

void PostScriptConnectionSpace::ClosePath() {
    if (!IsDrawingSuppressed()) {
        WriteText("closepath\n");
    }
}

void PostScriptConnectionSpace::ResetPath() {
    WriteText("newpath\n");
}

void PostScriptConnectionSpace::Clip() {
    if (!IsDrawingSuppressed()) {
        WriteText("clip\n");
    }
}

void PostScriptConnectionSpace::EOClip() {
    if (!IsDrawingSuppressed()) {
        WriteText("eoclip\n");
    }
}

void PostScriptConnectionSpace::SetLineWidth(float width) {
    if (!IsDrawingSuppressed()) {
        WriteOperator("%.8g setlinewidth\n", width);
    }
}

void PostScriptConnectionSpace::SetLineCap(std::int32_t cap) {
    if (!IsDrawingSuppressed()) {
        WriteOperator("%i setlinecap\n", cap);
    }
}

void PostScriptConnectionSpace::SetLineJoin(std::int32_t join) {
    if (!IsDrawingSuppressed()) {
        WriteOperator("%i setlinejoin\n", join);
    }
}

void PostScriptConnectionSpace::SetDash(float phase, const float* lengths, std::int32_t count) {
    if (IsDrawingSuppressed()) {
        return;
    }
    const std::size_t elements =
        lengths == nullptr ? 0 : static_cast<std::size_t>(std::max(count, 0));
    WorkBuffer<char> buffer(elements * kMaxNumberChars + kOperatorBytes);
    char* text = buffer.Data();
    if (text == nullptr) {
        return;
    }
    const auto left = [&](const char* end) {
        return buffer.Size() - static_cast<std::size_t>(end - text);
    };
    char* end = text;
    *end++ = '[';
    for (std::size_t i = 0; i < elements; ++i) {
        end += FormatText(end, left(end), "%.8g ", lengths[i]);
    }
    FormatText(end, left(end), "] %.8g setdash\n", phase);
    WriteText(text);
}

void PostScriptConnectionSpace::SetMiterLimit(float limit) {
    if (!IsDrawingSuppressed()) {
        WriteOperator("%.8g setmiterlimit\n", limit);
    }
}

void PostScriptConnectionSpace::SetFlatness(float flatness) {
    if (!IsDrawingSuppressed()) {
        WriteOperator("%.8g setflat\n", flatness);
    }
}

void PostScriptConnectionSpace::SelectRenderingIntent(COLOR::TRenderingIntent intent) {
    if (mContext) {
        mContext->SetRenderingIntent(intent);
    }
}

void PostScriptConnectionSpace::SelectRenderingIntent2(COLOR::TRenderingIntent intent) {
    if (mContext) {
        mContext->SetRenderingIntent2(intent);
    }
}

void PostScriptConnectionSpace::SetOverprintState(bool overprint) {
    if (!IsDrawingSuppressed()) {
        WriteOperator("%s setoverprint\n", overprint ? "true" : "false");
    }
}

void PostScriptConnectionSpace::SaveInitialPageMatrix() {
    if (IPostScriptDataStream* base = GetBaseStream(); base != nullptr) {
        *base << "userdict dup /initialPageMatrix known {dup /initialPageMatrix exch 1 index get "
                 "currentmatrix put} {/initialPageMatrix matrix currentmatrix put} ifelse\n";
    }
}

}  // namespace VANTIX::PS
