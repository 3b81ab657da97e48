// SPDX-License-Identifier: MIT
#include "pdf/path.h"

#include <limits>

#include "pdf/objects.h"

namespace VANTIX::PDF {

void Path::Clear() {
    mRuns.clear();
    mPoints.clear();
    mHasCurrent = false;
}

void Path::Extend(Kind kind) {
    if (mRuns.empty() || mRuns.back().kind != kind ||
        mRuns.back().segments == std::numeric_limits<std::int32_t>::max()) {
        mRuns.push_back({kind, 0});
    }
    ++mRuns.back().segments;
}

void Path::Push(float x, float y) {
    mPoints.push_back(x);
    mPoints.push_back(y);
    mX = x;
    mY = y;
}

void Path::MoveTo(float x, float y) {
    if (!mRuns.empty() && mRuns.back().kind == Kind::kMove) {
        mPoints.resize(mPoints.size() - 2);
    } else {
        mRuns.push_back({Kind::kMove, 1});
    }
    Push(x, y);
    mStartX = x;
    mStartY = y;
    mHasCurrent = true;
}

void Path::LineTo(float x, float y) {
    if (!mHasCurrent) {
        MoveTo(x, y);
        return;
    }
    Extend(Kind::kLine);
    Push(x, y);
}

void Path::CurveTo(float x1, float y1, float x2, float y2, float x3, float y3) {
    if (!mHasCurrent) {
        MoveTo(x1, y1);
    }
    Extend(Kind::kCurve);
    Push(x1, y1);
    Push(x2, y2);
    Push(x3, y3);
}

void Path::CurveFromCurrent(float x2, float y2, float x3, float y3) {
    if (mHasCurrent) {
        CurveTo(mX, mY, x2, y2, x3, y3);
    } else {
        CurveTo(x2, y2, x2, y2, x3, y3);
    }
}

void Path::Rectangle(float x, float y, float width, float height) {
    MoveTo(x, y);
    LineTo(x + width, y);
    LineTo(x + width, y + height);
    LineTo(x, y + height);
    Close();
}

void Path::Close() {
    if (!mHasCurrent || mRuns.back().kind == Kind::kClose) {
        return;
    }
    mRuns.push_back({Kind::kClose, 1});
    mX = mStartX;
    mY = mStartY;
}

void Path::Transform(const std::array<double, 6>& matrix) {
    const auto apply = [&](float& x, float& y) {
        const double px = x;
        const double py = y;
        x = ToFloat(px * matrix[0] + py * matrix[2] + matrix[4]);
        y = ToFloat(px * matrix[1] + py * matrix[3] + matrix[5]);
    };
    for (std::size_t i = 0; i + 1 < mPoints.size(); i += 2) {
        apply(mPoints[i], mPoints[i + 1]);
    }
    apply(mX, mY);
    apply(mStartX, mStartY);
}

void Path::PlayTo(GRAPHICS::IConnectionSpace& space) const {
    const float* points = mPoints.data();
    for (const Run& run : mRuns) {
        switch (run.kind) {
            case Kind::kMove:
                space.MoveTo(points[0], points[1]);
                points += 2;
                break;
            case Kind::kLine:
                space.LineTo(points, run.segments);
                points += std::ptrdiff_t{2} * run.segments;
                break;
            case Kind::kCurve:
                space.CurveTo(points, run.segments);
                points += std::ptrdiff_t{6} * run.segments;
                break;
            case Kind::kClose:
                space.ClosePath();
                break;
        }
    }
}

}  // namespace VANTIX::PDF
