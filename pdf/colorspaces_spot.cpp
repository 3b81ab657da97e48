// SPDX-License-Identifier: MIT
#include <algorithm>
#include <cstddef>
#include <qpdf/QUtil.hh>

#include "host/color/inks.h"
#include "pdf/colorspaces.h"
#include "pdf/objects.h"

namespace VANTIX::PDF {

namespace {

using Values = std::array<float, COLOR::kMaxComponents>;

// Names of colorants should be UTF-8; older files hold single-byte text.
std::string Utf8Name(const std::string& name) {
    bool has8Bit = false;
    bool isUtf8 = false;
    bool isUtf16 = false;
    QUtil::analyze_encoding(name, has8Bit, isUtf8, isUtf16);
    return has8Bit && !isUtf8 ? QUtil::pdf_doc_to_utf8(name) : name;
}

bool Fits(const HOST::FunctionPtr& tint, std::int32_t inputs, const ColorSpaceEntry& alternate) {
    return tint && tint->GetInputCount() == inputs &&
           tint->GetOutputCount() == alternate.components;
}

bool CanBeAlternate(const ColorSpaceEntry& entry) {
    return entry.kind == ColorSpaceEntry::Kind::kSpace && !entry.special;
}

// The ink whose full tint is `values` (in PDF form) of `space`.
HOST::InkDescription DescribeInk(const std::string& name, const ColorSpaceEntry& space,
                                 const Values& values) {
    HOST::InkDescription ink;
    ink.name = name;
    const bool isLab = space.ranges[0].high > 1.0F;
    ink.signatureCount = std::min(space.components, 4);
    std::copy_n(values.begin(), ink.signatureCount, ink.signatureValues.begin());
    if (space.components == 4) {
        ink.kind = COLOR::InkColorKind::kCMYK;
        ink.signature = "CMYK"_cc;
        std::transform(values.begin(), values.begin() + 4, ink.color.begin(),
                       [](float v) { return 1.0F - v; });
    } else if (space.components == 3 && !isLab) {
        ink.kind = COLOR::InkColorKind::kRGB;
        ink.signature = "RGB "_cc;
        std::copy_n(values.begin(), 3, ink.color.begin());
    } else {
        ink.kind = COLOR::InkColorKind::kOther;
        ink.signature = isLab ? "Lab "_cc : "GRAY"_cc;
        std::copy_n(values.begin(), ink.signatureCount, ink.color.begin());
    }
    return ink;
}

}  // namespace

const ColorSpaceEntry& ColorSpaces::MakeSeparation(const Request& request) {
    const std::string name = Utf8Name(NameOf(request.Item(1)));
    if (name == "All") {
        return MakeRegistration();
    }
    std::string error;
    const Entry& alternate = ResolveNested(request.Item(2), {}, request.depth + 1);
    const HOST::FunctionPtr tint = mFunctions.Read(request.Item(3), error, 1);
    if (!CanBeAlternate(alternate) || !Fits(tint, 1, alternate)) {
        return MakeFallbackSeparation(name, error.empty() ? "the tint function does not fit the "
                                                            "alternate space"
                                                          : error);
    }
    const HOST::ColorSpacePtr alternateSpace =
        name == "None" ? mFactory.NoneSpace() : alternate.space;
    Entry entry;
    entry.name = "Separation " + name;
    entry.components = 1;
    entry.special = true;
    entry.space = mFactory.SeparationSpace(
        name, alternateSpace, HOST::NormaliseTintFunction(tint, alternate.complemented), error);
    if (!entry.space) {
        return MakeFallbackSeparation(name, error);
    }
    entry.id = mNextId++;
    return Add(std::move(entry));
}

// Keeps the plate of a Separation whose description is broken: its tints look like black ink.
const ColorSpaceEntry& ColorSpaces::MakeFallbackSeparation(const std::string& name,
                                                           const std::string& reason) {
    mReporter.Warn("color-space", "Separation " + name + " is shown as tints of black: " + reason);
    std::string error;
    const HOST::FunctionPtr tint =
        HOST::MakeExponentialFunction({{0, 1}, {}}, {0, 0, 0, 0}, {0, 0, 0, 1}, 1.0F, error);
    Entry entry;
    entry.name = "Separation " + name;
    entry.components = 1;
    entry.special = true;
    entry.space = mFactory.SeparationSpace(name, Device("cmyk"_cc).space, tint, error);
    if (!entry.space) {
        return Black();
    }
    entry.id = mNextId++;
    return Add(std::move(entry));
}

const ColorSpaceEntry& ColorSpaces::MakeRegistration() {
    std::string error;
    const HOST::FunctionPtr tint =
        HOST::MakeExponentialFunction({{0, 1}, {}}, {0, 0, 0, 0}, {1, 1, 1, 1}, 1.0F, error);
    Entry entry;
    entry.name = "Separation All";
    entry.components = 1;
    entry.special = true;
    entry.space = mFactory.SeparationSpace("All", mFactory.RegistrationSpace(4), tint, error);
    if (!entry.space) {
        return Broken("Separation All: " + error, 0);
    }
    entry.id = mNextId++;
    return Add(std::move(entry));
}

const ColorSpaceEntry& ColorSpaces::MakeDeviceN(const Request& request) {
    QPDFObjectHandle list = request.Item(1);
    const std::int32_t count = list.isArray() ? list.getArrayNItems() : 0;
    if (count < 1 || count > COLOR::kMaxComponents) {
        return Broken("DeviceN with too many or no colorants", 0);
    }
    std::vector<std::string> names;
    names.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
        names.push_back(Utf8Name(NameOf(list.getArrayItem(i))));
    }
    std::string error = "DeviceN with an unfit tint function";
    const Entry& alternate = ResolveNested(request.Item(2), {}, request.depth + 1);
    const HOST::FunctionPtr tint = mFunctions.Read(request.Item(3), error, count);
    if (!CanBeAlternate(alternate) || !Fits(tint, count, alternate)) {
        return Broken(error, 0);
    }
    Entry entry;
    entry.name = "DeviceN";
    entry.components = count;
    entry.special = true;
    if (mOptions.languageLevel < 3) {
        entry.kind = Entry::Kind::kReplaced;
        entry.tint = tint;
        entry.alternate = &alternate;
        return Add(std::move(entry));
    }
    entry.space = mFactory.DeviceNSpace(names, alternate.space,
                                        HOST::NormaliseTintFunction(tint, alternate.complemented),
                                        MakeInks(request, names), error);
    if (!entry.space) {
        return Broken("DeviceN: " + error, 0);
    }
    entry.id = mNextId++;
    return Add(std::move(entry));
}

TInterfacePtr<COLOR::IInkCollection> ColorSpaces::MakeInks(const Request& request,
                                                           const std::vector<std::string>& names) {
    std::vector<HOST::InkDescription> inks;
    for (std::size_t i = 0; i < names.size(); ++i) {
        const auto index = static_cast<int>(i);
        const std::string raw = NameOf(request.Item(1).getArrayItem(index));
        Values values{};
        const Entry* space = ProcessColor(request, raw, values);
        if (space == nullptr) {
            space = ColorantColor(request, raw, values);
        }
        if (space == nullptr) {
            Values single{};
            single[i] = 1.0F;
            std::string error;
            const auto count = static_cast<std::int32_t>(names.size());
            mFunctions.Read(request.Item(3), error, count)->Evaluate(single.data(), values.data());
            space = &ResolveNested(request.Item(2), {}, request.depth + 1);
        }
        inks.push_back(DescribeInk(names[i], *space, values));
    }
    return HOST::MakeInkCollection(std::move(inks));
}

const ColorSpaceEntry* ColorSpaces::ProcessColor(const Request& request, const std::string& name,
                                                 std::array<float, COLOR::kMaxComponents>& values) {
    const QPDFObjectHandle process = Get(request.Item(4), "/Process");
    QPDFObjectHandle components = Get(process, "/Components");
    const int count = components.isArray() ? std::min(components.getArrayNItems(), 4) : 0;
    for (int k = 0; k < count; ++k) {
        if (NameOf(components.getArrayItem(k)) == name) {
            values[static_cast<std::size_t>(k)] = 1.0F;
            return &ResolveNested(Get(process, "/ColorSpace"), {}, request.depth + 1);
        }
    }
    return nullptr;
}

const ColorSpaceEntry* ColorSpaces::ColorantColor(
    const Request& request, const std::string& name,
    std::array<float, COLOR::kMaxComponents>& values) {
    QPDFObjectHandle colorant = Get(Get(request.Item(4), "/Colorants"), "/" + name);
    if (!colorant.isArray() || colorant.getArrayNItems() < 4) {
        return nullptr;
    }
    std::string error;
    const Entry& alternate = ResolveNested(colorant.getArrayItem(2), {}, request.depth + 1);
    const HOST::FunctionPtr tint = mFunctions.Read(colorant.getArrayItem(3), error, 1);
    if (!CanBeAlternate(alternate) || !Fits(tint, 1, alternate)) {
        return nullptr;
    }
    const float full = 1.0F;
    tint->Evaluate(&full, values.data());
    return &alternate;
}

}  // namespace VANTIX::PDF
