// SPDX-License-Identifier: MIT
#include <algorithm>
#include <cmath>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "pdf/contentinterpreter.h"
#include "pdf/objects.h"
#include "pdf/shadingpictures.h"
#include "pdf/shadings.h"

namespace VANTIX::PDF {

void ContentInterpreter::FillShading(Numbers) {
    const std::optional<std::string_view> name = LastName();
    if (!name || !MayColor() || IsHidden() || Top().isCollapsed || State().fillAlpha <= 0.0F) {
        return;
    }
    const QPDFObjectHandle object = mFrame.resources->Find("/Shading", *name);
    if (IsNull(object)) {
        mContext.reporter.Warn("missing-resource", "There is no shading " + std::string(*name));
        return;
    }
    const std::shared_ptr<const Shading> shading =
        mContext.shadings.Find(object, *mFrame.resources);
    if (!shading) {
        return;
    }
    PreparePaint();
    if (mContext.languageLevel < 3) {
        DrawShadingRaster(*shading);
        return;
    }
    mContext.colorSpaces.UseWithAlternates(*shading->space);
    const auto [x0, y0, x1, y1] = shading->box.value_or(ClipBounds());
    mContext.space.FillWithColorSpace(shading->shading.Get(), shading->id, ToFloat(x0), ToFloat(y0),
                                      ToFloat(x1 - x0), ToFloat(y1 - y0));
}

// Language level 2 has no shading dictionaries.
void ContentInterpreter::DrawShadingRaster(const Shading& shading) {
    constexpr double kDotsPerUnit = 150.0 / 72.0;
    const std::array<double, 6>& matrix = Top().matrix;
    const double scale = std::sqrt(std::abs(matrix[0] * matrix[3] - matrix[1] * matrix[2]));
    std::vector<ShadingPicture> pictures =
        PicturesOf(*shading.shading, ClipBounds(), scale * kDotsPerUnit,
                   mContext.colorSpaces.Named("DeviceRGB", {})->space);
    const ScopedLevel level(*this);
    if (pictures.empty() || !level.IsSaved()) {
        return;
    }
    mContext.colorSpaces.UseWithAlternates(*shading.space);
    if (shading.box) {
        ClipToBox(*shading.box);
    }
    for (ShadingPicture& picture : pictures) {
        const ScopedLevel place(*this);
        if (!place.IsSaved() || !Concat(picture.place)) {
            continue;
        }
        if (picture.mask) {
            PaintClipped(std::move(picture.image), *picture.mask, "A shading");
        } else {
            PaintRaster(std::move(picture.image), "A shading");
        }
    }
}

void ContentInterpreter::SelectColorOf(const Shading& shading, std::span<const float> values,
                                       bool fill) {
    HOST::CurrentColor& color = ColorOf(fill);
    mContext.colorSpaces.Select(*shading.space, color);
    const auto count = std::min(values.size(), static_cast<std::size_t>(color.count));
    std::copy_n(values.begin(), count, color.values.begin());
}

bool ContentInterpreter::SelectMiddleColor(const Shading& shading, bool fill) {
    const auto values = MiddleColor(*shading.shading);
    if (values) {
        SelectColorOf(shading, *values, fill);
    }
    return values.has_value();
}

void ContentInterpreter::FillPathWithShading(const Pattern& pattern, bool evenOdd) {
    const auto inverse = Inverse(Top().matrix);
    const ScopedLevel level(*this);
    if (!level.IsSaved() || !inverse) {
        return;
    }
    HOST::BaseConnectionSpace& space = mContext.space;
    if (!pattern.shading->background.empty()) {
        SelectColorOf(*pattern.shading, pattern.shading->background, true);
        evenOdd ? space.EOFill() : space.Fill();
    }
    evenOdd ? space.EOClip() : space.Clip();
    space.NewPath();
    const std::array<double, 6> place = Multiply(Multiply(pattern.matrix, mOrigin.page), *inverse);
    if (Concat(place)) {
        DrawShadingRaster(*pattern.shading);
    }
}

void ContentInterpreter::StrokePathWithShading(const Pattern& pattern) {
    mContext.reporter.Warn("pattern-stroke",
                           "What is stroked with a shading is painted in its middle colour: "
                           "language level 2 has no shadings");
    const ScopedLevel level(*this);
    if (level.IsSaved() && SelectMiddleColor(*pattern.shading, false)) {
        mContext.space.Stroke();
    }
}

}  // namespace VANTIX::PDF
