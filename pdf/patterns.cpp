// SPDX-License-Identifier: MIT
#include "pdf/patterns.h"

#include <algorithm>
#include <utility>

#include "host/color/patternspaces.h"
#include "pdf/objects.h"

namespace VANTIX::PDF {

namespace {

constexpr std::int32_t kUncolored = 2;  // PaintType

std::array<float, 6> ToFloats(const std::array<double, 6>& matrix) {
    std::array<float, 6> floats{};
    std::transform(matrix.begin(), matrix.end(), floats.begin(), ToFloat);
    return floats;
}

}  // namespace

void Patterns::BeginPage(const PageGeometry& page) {
    std::array<float, 8> key{page.width, page.height};
    std::copy(page.matrix.begin(), page.matrix.end(), key.begin() + 2);
    if (std::exchange(mPage, key) != key) {
        mPatterns.clear();
    }
    mNested = 0;
}

std::shared_ptr<Pattern> Patterns::Find(const Use& use) {
    QPDFObjectHandle definition = use.object;
    std::string key = definition.isIndirect() ? definition.getObjGen().unparse(' ')
                                              : definition.unparseResolved();
    key += ' ' + std::to_string(use.resources.DefaultsKey()) + ' ' +
           std::to_string(use.outer == nullptr ? 0 : use.outer->id) + ' ' +
           std::to_string(use.underlying == nullptr ? 0 : use.underlying->id);
    const auto append = [&](const std::array<double, 6>& matrix) {
        for (const double number : matrix) {
            key += ' ' + std::to_string(number);
        }
    };
    append(use.parent);
    append(use.page);
    if (use.body != nullptr) {
        append(*use.body);
    }
    const auto known = mPatterns.find(key);
    return known != mPatterns.end() ? known->second
                                    : mPatterns.emplace(key, Make(use)).first->second;
}

std::shared_ptr<Pattern> Patterns::Make(const Use& use) {
    constexpr std::int32_t kShadingPattern = 2;
    auto pattern = std::make_shared<Pattern>();
    pattern->id = mNextId++;
    pattern->matrix = Multiply(MatrixOf(Get(use.object, "/Matrix")), use.parent);
    const bool isShading =
        IntegerOf(Get(use.object, "/PatternType")).value_or(1) == kShadingPattern;
    return (isShading ? MakeShading(use, *pattern) : MakeTiling(use, *pattern)) ? pattern : nullptr;
}

bool Patterns::MakeShading(const Use& use, Pattern& pattern) {
    pattern.shading = mShadings.Find(Get(use.object, "/Shading"), use.resources);
    if (pattern.shading) {
        pattern.space =
            HOST::MakeShadingPattern(pattern.shading->shading, ToFloats(pattern.matrix));
    }
    return pattern.shading != nullptr;
}

bool Patterns::Refuse(const char* reason) {
    mReporter.Warn("pattern",
                   std::string("What is painted with a tiling pattern is left out: ") + reason);
    return false;
}

std::shared_ptr<PatternCell> Patterns::MakeCell(const Use& use, const Pattern& pattern) {
    const auto form = mForms.Find(use.object, "The cell of a pattern");
    if (!form->box) {
        return nullptr;
    }
    auto cell = std::make_shared<PatternCell>();
    cell->stream = use.object;
    cell->content = form;
    cell->resources = form->resources ? std::shared_ptr<Resources>(form, form->resources.get())
                                      : std::make_shared<Resources>(use.resources);
    cell->isColored = IntegerOf(Get(use.object, "/PaintType")).value_or(1) != kUncolored;
    cell->box = *form->box;
    cell->matrix = Multiply(pattern.matrix, use.page);
    cell->id = pattern.id;
    return cell;
}

bool Patterns::MakeTiling(const Use& use, Pattern& pattern) {
    const QPDFObjectHandle& stream = use.object;
    if (!QPDFObjectHandle(stream).isStream()) {
        return Refuse("it is no stream");
    }
    if (use.outer != nullptr && ++mNested > kMaxNested) {
        return Refuse("there are too many within one another");
    }
    const auto cell = MakeCell(use, pattern);
    if (!cell) {
        return Refuse("it has no box");
    }
    const auto& [x0, y0, x1, y1] = cell->box;
    HOST::TilingPattern tiling;
    tiling.number = pattern.id;
    tiling.tilingType = IntegerOf(Get(stream, "/TilingType")).value_or(1);
    tiling.bounds = {ToFloat(x0), ToFloat(y0), ToFloat(x1 - x0), ToFloat(y1 - y0)};
    tiling.xStep = ToFloat(NumberOf(Get(stream, "/XStep")).value_or(x1 - x0));
    tiling.yStep = ToFloat(NumberOf(Get(stream, "/YStep")).value_or(y1 - y0));
    tiling.matrix =
        ToFloats(use.body == nullptr ? pattern.matrix : Multiply(pattern.matrix, *use.body));
    if (!(x0 < x1) || !(y0 < y1) || tiling.xStep == 0.0F || tiling.yStep == 0.0F ||
        !IsInvertible(pattern.matrix)) {
        return Refuse("its cells have no area");
    }
    if (!cell->isColored) {
        pattern.underlying = use.underlying;
        if (pattern.underlying == nullptr) {
            return Refuse("it has no colour");
        }
        tiling.paintType = kUncolored;
        tiling.underlying = pattern.underlying->space;
    }
    tiling.play = [this, cell](HOST::BaseConnectionSpace& recording) {
        mColorSpaces.ServeRecording(recording);
        cell->wasPlayed = true;
        mPlayer(*cell, recording);
    };
    pattern.cell = cell;
    pattern.space = HOST::MakeTilingPattern(std::move(tiling));
    return true;
}

}  // namespace VANTIX::PDF
