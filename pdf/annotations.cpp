// SPDX-License-Identifier: MIT
#include "pdf/annotations.h"

#include <optional>
#include <string>

#include "pdf/objects.h"

namespace VANTIX::PDF {

namespace {

constexpr std::int32_t kHidden = 1 << 1;
constexpr std::int32_t kPrint = 1 << 2;

bool IsPrinted(const QPDFObjectHandle& annotation, OptionalContent& optionalContent) {
    // NoView speaks of the screen alone.
    const std::int32_t flags = IntegerOf(Get(annotation, "/F")).value_or(0);
    return (flags & kPrint) != 0 && (flags & kHidden) == 0 &&
           NameOf(Get(annotation, "/Subtype")) != "Popup" &&
           optionalContent.IsVisible(Get(annotation, "/OC"));
}

// The normal appearance, or the one of the annotation's state.
QPDFObjectHandle NormalAppearance(const QPDFObjectHandle& annotation) {
    QPDFObjectHandle normal = Get(Get(annotation, "/AP"), "/N");
    if (normal.isDictionary()) {
        normal = Get(normal, "/" + NameOf(Get(annotation, "/AS")));
    }
    return normal;
}

// Leads the form's transformed bounding box onto the annotation's rectangle (algorithm 8.1).
std::optional<std::array<double, 6>> Placement(const QPDFObjectHandle& form,
                                               const std::array<double, 4>& rectangle) {
    const std::optional<std::array<double, 4>> box = RectangleOf(Get(form, "/BBox"));
    if (!box) {
        return std::nullopt;
    }
    const std::array<double, 4> bounds = TransformBox(MatrixOf(Get(form, "/Matrix")), *box);
    const double width = bounds[2] - bounds[0];
    const double height = bounds[3] - bounds[1];
    if (!(width > 0) || !(height > 0)) {
        return std::nullopt;
    }
    const double sx = (rectangle[2] - rectangle[0]) / width;
    const double sy = (rectangle[3] - rectangle[1]) / height;
    return std::array<double, 6>{
        sx, 0, 0, sy, rectangle[0] - bounds[0] * sx, rectangle[1] - bounds[1] * sy};
}

}  // namespace

std::vector<Appearance> PrintedAppearances(QPDFObjectHandle annotations,
                                           OptionalContent& optionalContent) {
    std::vector<Appearance> appearances;
    const int count = annotations.isArray() ? annotations.getArrayNItems() : 0;
    for (int i = 0; i < count; ++i) {
        const QPDFObjectHandle annotation = annotations.getArrayItem(i);
        QPDFObjectHandle form = NormalAppearance(annotation);
        const std::optional<std::array<double, 4>> rectangle =
            RectangleOf(Get(annotation, "/Rect"));
        if (!form.isStream() || !rectangle || !IsPrinted(annotation, optionalContent) ||
            !optionalContent.IsVisible(Get(form, "/OC"))) {
            continue;
        }
        const std::optional<std::array<double, 6>> matrix = Placement(form, *rectangle);
        if (matrix) {
            appearances.push_back({form, *matrix});
        }
    }
    return appearances;
}

}  // namespace VANTIX::PDF
