// SPDX-License-Identifier: MIT
#include <algorithm>
#include <array>
#include <vector>

#include "core/color/iink.h"
#include "core/libsupport/vlogger/logmessage.h"
#include "postscriptconnectionspace/postscriptoutputcontext.h"
#include "postscriptconnectionspace/spotnames.h"

namespace VANTIX::PS {

namespace {

// How the procedures see inks that are printed over one another: of the paper that the inks below
// leave free, an ink of tint t and component v covers t v.

// t c m y k => c' m' y' k'
constexpr const char* kCMYKInk =
    "\n5 -1 roll dup 5 index 1.0 exch sub mul %.8g\n"
    "mul 6 -1 roll add exch dup 5 index 1.0 exch sub mul %.8g\n"
    "mul 6 -1 roll add exch dup 5 index 1.0 exch sub mul %.8g\n"
    "mul 6 -1 roll add exch 4 index 1.0 exch sub mul %.8g\n"
    "mul 5 -1 roll add\n";

// t r g b => r' g' b'
constexpr const char* kRGBInk =
    "4 -1 roll\n"
    "dup %.3g mul 5 -1 roll dup 1 exch sub 3 -2 roll mul add 1 exch sub exch\n"
    "dup %.3g mul 5 -1 roll dup 1 exch sub 3 -2 roll mul add 1 exch sub exch\n"
    "%.3g mul 4 -1 roll dup 1 exch sub 3 -2 roll mul add 1 exch sub\n";

COLOR::IInkCollection* InksOf(const COLOR::IDeviceNConnectionColorSpace& space) {
    COLOR::IInkCollection* inks = space.GetInkCollection();
    if (inks == nullptr) {
        LogError("src/postscriptconnectionspace")
            << "The deviceN space doesn't have any colour names or an ink collection. Bailing.";
        return nullptr;
    }
    if (inks->GetInkCount() <= 0) {
        LogError("src/postscriptconnectionspace")
            << "The deviceN space has an empty ink collection.";
        return nullptr;
    }
    return inks;
}

/// Ink `index`, or null (logged).
COLOR::IInk* InkAt(const COLOR::IInkCollection& inks, std::int32_t index) {
    const COLOR::IInkInstance* instance = inks.GetInkInstance(index);
    if (instance == nullptr) {
        LogError("src/postscriptconnectionspace")
            << "Could not get ink instance [" << index << "].";
        return nullptr;
    }
    COLOR::IInk* ink = instance->GetInk();
    if (ink == nullptr) {
        LogError("src/postscriptconnectionspace") << "The ink instance doesn't have an ink.";
    }
    return ink;
}

/// The ink's name as a string literal; false (logged) without one.
bool AppendInkName(TextBuffer& text, const COLOR::IInk& ink) {
    const CoreString* name = ink.GetName();
    if (name == nullptr) {
        LogError("src/postscriptconnectionspace") << "The ink has to have a name.";
        return false;
    }
    const auto utf8 = name->GetUTF8String();
    if (!utf8) {
        LogError("src/postscriptconnectionspace")
            << "Could not get a UTF8 representation of the ink colour name.";
        return false;
    }
    text.AppendString(*utf8);
    return true;
}

/// How much of each component ink `index` covers; nothing (logged) when its colour is of another
/// kind, so that its tint is taken from the stack all the same.
std::array<float, 4> CoverageOf(const COLOR::IInkCollection& inks, std::int32_t index,
                                COLOR::InkColorKind kind) {
    std::array<float, 4> coverage{};
    const COLOR::IInk* ink = InkAt(inks, index);
    if (ink == nullptr) {
        return coverage;
    }
    if (ink->GetColorKind() != kind) {
        LogError("src/postscriptconnectionspace")
            << "Alternate colorspace " << static_cast<std::int32_t>(ink->GetColorKind())
            << " not handled.";
        return coverage;
    }
    const std::int32_t count = kind == COLOR::InkColorKind::kCMYK ? 4 : 3;
    for (std::int32_t i = 0; i < count; ++i) {
        coverage[static_cast<std::size_t>(i)] = 1 - ink->GetColorComponent(i);
    }
    return coverage;
}

}  // namespace

void PostScriptOutputContext::AppendDeviceNWithInks(TextBuffer& text,
                                                    COLOR::IDeviceNConnectionColorSpace& space,
                                                    bool colourManaged) {
    const COLOR::IInkCollection* inks = InksOf(space);
    if (inks == nullptr) {
        return;
    }
    const std::int32_t count = inks->GetInkCount();
    const bool single = count == 1;
    text.Append(single ? "[\n/Separation " : "[\n/DeviceN [\n");
    COLOR::InkColorKind kind{};
    for (std::int32_t i = 0; i < count; ++i) {
        const COLOR::IInk* ink = InkAt(*inks, i);
        if (ink == nullptr || !AppendInkName(text, *ink)) {
            return;
        }
        kind = ink->GetColorKind();
    }
    text.Append(single ? "" : "]\n");
    AppendInkAlternate(text, space, single ? COLOR::InkColorKind::kCMYK : kind, colourManaged);
}

void PostScriptOutputContext::AppendInkAlternate(TextBuffer& text,
                                                 COLOR::IDeviceNConnectionColorSpace& space,
                                                 COLOR::InkColorKind kind, bool colourManaged) {
    const bool cmyk = kind == COLOR::InkColorKind::kCMYK;
    if (!cmyk && kind != COLOR::InkColorKind::kRGB) {
        if (kind != COLOR::InkColorKind::kOther) {
            LogError("src/postscriptconnectionspace")
                << "Do not support this colorspace in DeviceN substitution.";
        }
        LogError("src/postscriptconnectionspace") << "Don't have color function for DeviceN.";
        return;
    }
    const auto factory = CreateColorFactory();
    if (factory == nullptr) {
        LogError("src/postscriptconnectionspace") << "Could not create colour factory.";
        return;
    }
    const auto alternate = TInterfacePtr<COLOR::IConnectionColorSpace>::Adopt(
        factory->CreateDefaultProfileColorSpace(cmyk ? "cmyk"_cc : "rgb "_cc));
    const auto tint = TInterfacePtr<COLOR::IColorFunction>::Adopt(
        cmyk ? CreateTintfunctionForCMYKColorspace(&space)
             : CreateTintfunctionForRGBColorspace(&space));
    AppendAlternateAndTint(text, alternate.Get(), tint.Get(), colourManaged);
    text.Append("]");
}

COLOR::IColorFunction* PostScriptOutputContext::CreateTintfunctionForCMYKColorspace(
    COLOR::IDeviceNConnectionColorSpace* space) {
    const COLOR::IInkCollection* inks = space == nullptr ? nullptr : InksOf(*space);
    if (inks == nullptr) {
        return nullptr;
    }
    TextBuffer program;
    program.Append("0.0 0.0 0.0 0.0 ");
    // The tint of the last ink lies on top.
    for (std::int32_t i = inks->GetInkCount() - 1; i >= 0; --i) {
        const auto v = CoverageOf(*inks, i, COLOR::InkColorKind::kCMYK);
        program.Format(kCMYKInk, v[0], v[1], v[2], v[3]);
    }
    return CreateInkFunction(program, inks->GetInkCount(), 4);
}

COLOR::IColorFunction* PostScriptOutputContext::CreateTintfunctionForRGBColorspace(
    COLOR::IDeviceNConnectionColorSpace* space) {
    const COLOR::IInkCollection* inks = space == nullptr ? nullptr : InksOf(*space);
    if (inks == nullptr) {
        return nullptr;
    }
    TextBuffer program;
    program.Append("\n 1 1 1\n");
    for (std::int32_t i = inks->GetInkCount() - 1; i >= 0; --i) {
        const auto v = CoverageOf(*inks, i, COLOR::InkColorKind::kRGB);
        program.Format(kRGBInk, v[0], v[1], v[2]);
    }
    return CreateInkFunction(program, inks->GetInkCount(), 3);
}

COLOR::IColorFunction* PostScriptOutputContext::CreateInkFunction(const TextBuffer& program,
                                                                  std::int32_t inks,
                                                                  std::int32_t outputs) const {
    const auto factory =
        CreateObject<COLOR::IColorFunctionFactory>(mFactory, COLOR::CLSID_COLORFUNCTIONFACTORY);
    if (factory == nullptr) {
        return nullptr;
    }
    std::vector<float> unit(2 * static_cast<std::size_t>(std::max(inks, outputs)));
    for (std::size_t i = 1; i < unit.size(); i += 2) {
        unit[i] = 1;
    }
    return factory->CreateCalculatorFunction(std::string(program.View()).c_str(), unit.data(), inks,
                                             unit.data(), outputs);
}

}  // namespace VANTIX::PS
