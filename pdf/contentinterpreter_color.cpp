// SPDX-License-Identifier: MIT
#include <span>

#include "pdf/contentinterpreter.h"
#include "pdf/objects.h"

namespace VANTIX::PDF {

void ContentInterpreter::Select(bool fill, const ColorSpaceEntry& space) {
    mContext.colorSpaces.Select(space, ColorOf(fill));
    (fill ? Top().fillSpace : Top().strokeSpace) = &space;
    (fill ? Top().fillPattern : Top().strokePattern) = nullptr;
}

void ContentInterpreter::SelectSpace(bool fill) {
    const std::optional<std::string_view> name = LastName();
    if (!name || !MayColor()) {
        return;
    }
    const ColorSpaceEntry* space = mFrame.resources->FindColorSpace(*name);
    if (space == nullptr) {
        mContext.reporter.Warn("missing-resource",
                               "There is no colour space " + std::string(*name));
        return;
    }
    Select(fill, *space);
}

void ContentInterpreter::SetColor(bool fill) {
    if (!MayColor()) {
        return;
    }
    const ColorSpaceEntry& space = fill ? *Top().fillSpace : *Top().strokeSpace;
    if (space.kind == ColorSpaceEntry::Kind::kPattern) {
        SelectPattern(fill);
        return;
    }
    SetColorValues(fill, space);
}

// Of too many values the last count, of too few the missing are 0.
void ContentInterpreter::SetColorValues(bool fill, const ColorSpaceEntry& space) {
    mValues.clear();
    for (const Operand& operand : Operands()) {
        if (operand.kind == OperandKind::kNumber) {
            mValues.push_back(ToFloat(operand.number));
        }
    }
    const auto wanted = static_cast<std::size_t>(space.components);
    if (mValues.size() != wanted) {
        BadOperands();
    }
    const std::size_t surplus = mValues.size() > wanted ? mValues.size() - wanted : 0;
    mContext.colorSpaces.SetValues(space, std::span<const float>(mValues).subspan(surplus),
                                   ColorOf(fill));
}

void ContentInterpreter::SetDeviceColor(bool fill, std::size_t device, Numbers v) {
    constexpr std::array<std::size_t, 3> kComponents = {1, 3, 4};
    if (!MayColor()) {
        return;
    }
    const ColorSpaceEntry& space = mFrame.resources->DeviceSpace(device);
    if ((fill ? Top().fillSpace : Top().strokeSpace) != &space || !space.used) {
        Select(fill, space);
    }
    mContext.colorSpaces.SetValues(space, {v, kComponents[device]}, ColorOf(fill));
}

}  // namespace VANTIX::PDF
