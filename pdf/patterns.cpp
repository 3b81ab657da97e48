// SPDX-License-Identifier: MIT
#include "pdf/patterns.h"

#include <algorithm>

#include "host/color/patternspaces.h"
#include "pdf/objects.h"

namespace VANTIX::PDF {

std::shared_ptr<const Pattern> Patterns::Find(const QPDFObjectHandle& object, Resources& resources,
                                              const std::array<double, 6>& parent) {
    QPDFObjectHandle definition = object;
    std::string key = definition.isIndirect() ? definition.getObjGen().unparse(' ')
                                              : definition.unparseResolved();
    key += ' ' + std::to_string(resources.DefaultsKey());
    for (const double number : parent) {
        key += ' ' + std::to_string(number);
    }
    const auto known = mPatterns.find(key);
    return known != mPatterns.end()
               ? known->second
               : mPatterns.emplace(key, Make(object, resources, parent)).first->second;
}

std::shared_ptr<const Pattern> Patterns::Make(const QPDFObjectHandle& object, Resources& resources,
                                              const std::array<double, 6>& parent) {
    constexpr std::int32_t kShadingPattern = 2;
    if (IntegerOf(Get(object, "/PatternType")).value_or(0) != kShadingPattern) {
        mReporter.Warn("pattern", "What is painted with a tiling pattern is left out");
        return nullptr;
    }
    auto pattern = std::make_shared<Pattern>();
    pattern->shading = mShadings.Find(Get(object, "/Shading"), resources);
    if (!pattern->shading) {
        return nullptr;
    }
    pattern->matrix = Multiply(MatrixOf(Get(object, "/Matrix")), parent);
    std::array<float, 6> matrix{};
    std::transform(pattern->matrix.begin(), pattern->matrix.end(), matrix.begin(), ToFloat);
    pattern->space = HOST::MakeShadingPattern(pattern->shading->shading, matrix);
    pattern->id = mNextId++;
    return pattern;
}

}  // namespace VANTIX::PDF
