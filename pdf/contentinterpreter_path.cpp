// SPDX-License-Identifier: MIT
#include <utility>

#include "pdf/contentinterpreter.h"

namespace VANTIX::PDF {

void ContentInterpreter::MoveTo(Numbers v) {
    mPath.MoveTo(v[0], v[1]);
}

void ContentInterpreter::LineTo(Numbers v) {
    mPath.LineTo(v[0], v[1]);
}

void ContentInterpreter::CurveTo(Numbers v) {
    mPath.CurveTo(v[0], v[1], v[2], v[3], v[4], v[5]);
}

void ContentInterpreter::CurveFromCurrent(Numbers v) {
    mPath.CurveFromCurrent(v[0], v[1], v[2], v[3]);
}

void ContentInterpreter::CurveToEnd(Numbers v) {
    mPath.CurveTo(v[0], v[1], v[2], v[3], v[2], v[3]);
}

void ContentInterpreter::ClosePath(Numbers) {
    mPath.Close();
}

void ContentInterpreter::Rectangle(Numbers v) {
    mPath.Rectangle(v[0], v[1], v[2], v[3]);
}

void ContentInterpreter::ClipNonZero(Numbers) {
    mPendingClip = PendingClip::kNonZero;
}

void ContentInterpreter::ClipEvenOdd(Numbers) {
    mPendingClip = PendingClip::kEvenOdd;
}

void ContentInterpreter::Paint(unsigned flags) {
    if ((flags & kClose) != 0) {
        mPath.Close();
    }
    const PendingClip clip = std::exchange(mPendingClip, PendingClip::kNone);
    // Without any path there is no clip, as readers have agreed; a single point clips all away.
    const bool paints = mPath.HasSegments();
    if (paints && (flags & (kFill | kStroke)) != 0) {
        PreparePaint();
    }
    unsigned marks = flags & kEvenOdd;
    marks |= paints && (flags & kFill) != 0 && MayPaint(true) ? kFill : 0U;
    marks |= paints && (flags & kStroke) != 0 && MayPaint(false) ? kStroke : 0U;
    if (PaintInGroup(marks)) {
        marks = 0;
    }
    const bool clips = !mPath.IsEmpty() && clip != PendingClip::kNone;
    if (clips || (marks & (kFill | kStroke)) != 0) {
        HOST::BaseConnectionSpace& space = mContext.space;
        mPath.PlayTo(space);
        Mark(marks);
        if (clips) {
            clip == PendingClip::kEvenOdd ? space.EOClip() : space.Clip();
            if (KeepsClips()) {
                KeepClip({Top().matrix, mPath, clip == PendingClip::kEvenOdd, {}});
            }
        }
        space.NewPath();
    }
    mPath.Clear();
}

void ContentInterpreter::Mark(unsigned marks) {
    if ((marks & kFill) != 0) {
        FillPath((marks & kEvenOdd) != 0);
    }
    if ((marks & kStroke) != 0) {
        StrokePath();
    }
}

void ContentInterpreter::StrokePath() {
    const Pattern* pattern = Top().strokePattern.get();
    if (pattern != nullptr && pattern->shading && mContext.languageLevel < 3) {
        StrokePathWithShading(*pattern);
    } else {
        mContext.space.Stroke();
    }
}

void ContentInterpreter::FillPath(bool evenOdd) {
    const Pattern* pattern = Top().fillPattern.get();
    if (pattern != nullptr && pattern->shading && mContext.languageLevel < 3) {
        FillPathWithShading(*pattern, evenOdd);
    } else {
        evenOdd ? mContext.space.EOFill() : mContext.space.Fill();
    }
}

bool ContentInterpreter::MayPaint(bool fill) {
    if (IsHidden() || Top().isCollapsed) {
        return false;
    }
    const HOST::GraphicsParameters& state = State();
    if ((fill ? state.fillAlpha : state.strokeAlpha) <= 0.0F) {
        return false;
    }
    const ColorSpaceEntry* space = fill ? Top().fillSpace : Top().strokeSpace;
    const auto& pattern = fill ? Top().fillPattern : Top().strokePattern;
    return space->kind != ColorSpaceEntry::Kind::kPattern || pattern;
}

}  // namespace VANTIX::PDF
