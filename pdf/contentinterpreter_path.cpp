// SPDX-License-Identifier: MIT
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
    const PendingClip clip = mPendingClip;
    mPendingClip = PendingClip::kNone;
    // Without any path there is no clip, as readers have agreed; a single point clips all away.
    const bool paints = mPath.HasSegments();
    const bool fill = paints && (flags & kFill) != 0 && MayPaint(true);
    const bool stroke = paints && (flags & kStroke) != 0 && MayPaint(false);
    if (fill || stroke || (!mPath.IsEmpty() && clip != PendingClip::kNone)) {
        HOST::BaseConnectionSpace& space = mContext.space;
        mPath.PlayTo(space);
        if (fill) {
            FillPath((flags & kEvenOdd) != 0);
        }
        if (stroke && mContext.languageLevel < 3 && Top().strokePattern &&
            Top().strokePattern->shading) {
            StrokePathWithShading(*Top().strokePattern);
        } else if (stroke) {
            space.Stroke();
        }
        if (clip != PendingClip::kNone) {
            clip == PendingClip::kEvenOdd ? space.EOClip() : space.Clip();
        }
        space.NewPath();
    }
    mPath.Clear();
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
