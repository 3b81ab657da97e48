// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "core/graphics/iconnectionspace.h"

namespace VANTIX::PDF {

/// The path under construction. Kept until it is painted, in storage that serves every path, so
/// that what stays invisible is never written and runs of segments go out in one call.
class Path {
public:
    [[nodiscard]] bool IsEmpty() const { return mRuns.empty(); }

    /// Whether there is more than a move to a point: something to paint.
    [[nodiscard]] bool HasSegments() const {
        return mRuns.size() > 1 || (!IsEmpty() && mRuns.front().kind != Kind::kMove);
    }

    /// Coordinates in all.
    [[nodiscard]] std::size_t Size() const { return mPoints.size(); }

    void Clear();
    void MoveTo(float x, float y);
    /// Without a current point this and the curves begin the path at their first point.
    void LineTo(float x, float y);
    void CurveTo(float x1, float y1, float x2, float y2, float x3, float y3);
    /// The first control point is the current point (operator v).
    void CurveFromCurrent(float x2, float y2, float x3, float y3);
    void Rectangle(float x, float y, float width, float height);
    void Close();

    /// Applies `matrix` to all points.
    void Transform(const std::array<double, 6>& matrix);

    /// Makes the same path in `space`.
    void PlayTo(GRAPHICS::IConnectionSpace& space) const;

private:
    enum class Kind : std::uint8_t { kMove, kLine, kCurve, kClose };

    struct Run {
        Kind kind;
        std::int32_t segments;
    };

    void Extend(Kind kind);
    void Push(float x, float y);

    std::vector<Run> mRuns;
    std::vector<float> mPoints;
    bool mHasCurrent = false;
    float mX = 0.0F;
    float mY = 0.0F;
    float mStartX = 0.0F;
    float mStartY = 0.0F;
};

}  // namespace VANTIX::PDF
