// SPDX-License-Identifier: MIT
#include "host/fonts/glyphrecording.h"

#include <freetype/ftoutln.h>

#include <array>
#include <cmath>

#include "core/graphics/iconnectionspace.h"

namespace VANTIX::HOST {
namespace {

/// Draws contours in ems, rounded to thousandths: charstrings count in those, and a writer that cut
/// fractions off step by step would drift. What draws nothing stays away: contours of one point,
/// and the line to the start, which closing draws.
class Pen {
public:
    Pen(GRAPHICS::IConnectionSpace& space, float unitsPerEm)
        : mSpace(space), mUnitsPerEm(unitsPerEm) {}

    void MoveTo(const FT_Vector& to) {
        Close();
        mStart = to;
    }

    void LineTo(const FT_Vector& to) {
        DrawLine();
        mLine = to;
        mHasLine = true;
    }

    void QuadTo(const FT_Vector& control, const FT_Vector& to) {
        DrawLine();
        Open();
        // The cubic segment with the same curve (PostScript Language Reference, curveto).
        const std::array points{Third(mAt.x, control.x), Third(mAt.y, control.y),
                                Third(to.x, control.x),  Third(to.y, control.y),
                                Ems(Units(to.x)),        Ems(Units(to.y))};
        mSpace.CurveTo(points.data(), 1);
        mAt = to;
    }

    void Close() {
        if (mLine.x != mStart.x || mLine.y != mStart.y) {
            DrawLine();
        }
        mHasLine = false;
        if (mIsOpen) {
            mSpace.ClosePath();
            mIsOpen = false;
        }
    }

private:
    static float Units(FT_Pos position) { return static_cast<float>(position); }

    [[nodiscard]] float Third(FT_Pos end, FT_Pos control) const {
        return Ems(Units(end + 2 * control) / 3.0F);
    }

    [[nodiscard]] float Ems(float units) const {
        return std::nearbyint(units * 1000.0F / mUnitsPerEm) / 1000.0F;
    }

    void Open() {
        if (!mIsOpen) {
            mSpace.MoveTo(Ems(Units(mStart.x)), Ems(Units(mStart.y)));
            mIsOpen = true;
            mAt = mStart;
        }
    }

    void DrawLine() {
        if (mHasLine) {
            Open();
            const std::array point{Ems(Units(mLine.x)), Ems(Units(mLine.y))};
            mSpace.LineTo(point.data(), 1);
            mHasLine = false;
            mAt = mLine;
        }
    }

    GRAPHICS::IConnectionSpace& mSpace;
    float mUnitsPerEm;
    FT_Vector mStart{};
    FT_Vector mAt{};  // the end of what is drawn
    FT_Vector mLine{};
    bool mHasLine = false;
    bool mIsOpen = false;
};

/// Points between two control points lie on halves of units: outlines are drawn in half units.
constexpr int kHalfUnits = 1;

constexpr FT_Outline_Funcs kFunctions{
    [](const FT_Vector* to, void* pen) {
        static_cast<Pen*>(pen)->MoveTo(*to);
        return 0;
    },
    [](const FT_Vector* to, void* pen) {
        static_cast<Pen*>(pen)->LineTo(*to);
        return 0;
    },
    [](const FT_Vector* control, const FT_Vector* to, void* pen) {
        static_cast<Pen*>(pen)->QuadTo(*control, *to);
        return 0;
    },
    // TrueType has no cubic segments.
    [](const FT_Vector*, const FT_Vector*, const FT_Vector*, void*) { return 1; }, kHalfUnits, 0};

}  // namespace

bool LoadOutline(FT_Face face, std::uint32_t glyph) {
    return FT_Load_Glyph(face, glyph, FT_LOAD_NO_SCALE | FT_LOAD_NO_HINTING) == 0 &&
           face->glyph->format == FT_GLYPH_FORMAT_OUTLINE;
}

void GlyphRecording::Load(std::uint16_t glyph, float advance, bool isDrawable) {
    mAdvance = advance;
    mHasOutline = isDrawable && LoadOutline(mFace, glyph);
}

bool GlyphRecording::Play(GRAPHICS::IConnectionSpace& space) const {
    space.NewPath();
    FT_Error error = 0;
    if (mHasOutline) {
        Pen pen(space, 2.0F * static_cast<float>(mFace->units_per_EM));
        error = FT_Outline_Decompose(&mFace->glyph->outline, &kFunctions, &pen);
        pen.Close();
    }
    space.ResetPath();
    return error == 0;
}

std::int32_t GlyphRecording::GetPointCount() const {
    return mHasOutline ? mFace->glyph->outline.n_points : 0;
}

}  // namespace VANTIX::HOST
