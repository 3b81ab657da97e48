// SPDX-License-Identifier: MIT
#include "postscriptconnectionspace/colorroute.h"

#include <algorithm>

namespace VANTIX {

namespace {

void Complement(const COLOR::IConnectionColorSpace& space, float* values) {
    if (space.StoresComponentsInverted()) {
        std::transform(values, values + space.GetComponentCount(), values,
                       [](float value) { return 1 - value; });
    }
}

}  // namespace

bool ColorRoute::Converts() const {
    return destination != nullptr && destination != &source &&
           destination->GetIdentifier() != source.GetIdentifier();
}

bool ColorRoute::ApplyToHostForm(float* values) const {
    float pcs[3];
    if (!IsComponentCount(source.GetComponentCount()) ||
        !IsComponentCount(Target().GetComponentCount()) ||
        (Converts() &&
         !(source.ToPCS(values, pcs, first) && destination->FromPCS(pcs, values, second)))) {
        return false;
    }
    Complement(Target(), values);
    return true;
}

bool ColorRoute::Apply(float* values) const {
    if (IsComponentCount(source.GetComponentCount())) {
        Complement(source, values);
    }
    return ApplyToHostForm(values);
}

}  // namespace VANTIX
