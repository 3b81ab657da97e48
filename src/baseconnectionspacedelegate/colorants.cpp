// SPDX-License-Identifier: MIT
#include "baseconnectionspacedelegate/colorants.h"

#include <algorithm>

#include "baseconnectionspacedelegate/baseconnectionspacedelegate.h"
#include "core/libsupport/vlogger/logmessage.h"
#include "postscriptdatastream/workbuffer.h"

namespace VANTIX::RENDERING {

namespace {

constexpr const char* kModule = "src/baseconnectionspacedelegate";

constexpr std::int32_t kSpaceTextBytes = 16384;

/// Prints a colorant over c m y k; its tint lies below them.
constexpr const char* kOverInks =
    "\n5 -1 roll dup 5 index 1.0 exch sub mul %.8g\nmul 6 -1 roll add exch "
    "dup 5 index 1.0 exch sub mul %.8g\nmul 6 -1 roll add exch "
    "dup 5 index 1.0 exch sub mul %.8g\nmul 6 -1 roll add exch "
    "4 index 1.0 exch sub mul %.8g\nmul 5 -1 roll add\n";

/// Takes what a colorant absorbs from r g b; its tint lies below them.
constexpr const char* kOverLights =
    "4 -1 roll\n"
    "dup %.8g mul 5 -1 roll dup 1 exch sub 3 -2 roll mul add 1 exch sub exch\n"
    "dup %.8g mul 5 -1 roll dup 1 exch sub 3 -2 roll mul add 1 exch sub exch\n"
    "%.8g mul 4 -1 roll dup 1 exch sub 3 -2 roll mul add 1 exch sub\n";

}  // namespace

void Colorants::Add(std::string_view name, const char* range, const std::array<float, 4>& amount) {
    names.AppendString(name);
    decode += range;
    amounts.push_back(amount);
}

void Colorants::AddUnit(std::string_view name, const char* range, std::size_t index) {
    std::array<float, 4> unit{};
    unit.at(index) = 1;
    Add(name, range, unit);
}

// Each snippet takes the topmost tint, so the last colorant's comes first.
PS::TextBuffer Colorants::Program(std::string_view paper, std::size_t outputs) const {
    PS::TextBuffer text;
    text.Append(paper);
    for (std::size_t i = amounts.size(); i-- > 0;) {
        const auto& [a, b, c, d] = amounts[i];
        if (outputs == 4) {
            text.Format(kOverInks, a, b, c, d);
        } else {
            text.Format(kOverLights, a, b, c);
        }
    }
    return text;
}

bool BaseConnectionSpaceDelegate::AppendColorantSpace(std::string& out, const Colorants& colorants,
                                                      IConnectionColorSpace& alternate,
                                                      bool colourManaged) {
    PS::IPostScriptOutputContext* context = OutputContext();
    const auto functions =
        CreateObject<COLOR::IColorFunctionFactory>(mFactory, COLOR::CLSID_COLORFUNCTIONFACTORY);
    if (!functions) {
        LogError(kModule) << "Could not create colour function factory.";
        return false;
    }
    PS::WorkBuffer<char> space(kSpaceTextBytes);
    if (context == nullptr || space.Data() == nullptr) {
        LogError(kModule) << "Insufficient mem to create buffer of " << kSpaceTextBytes
                          << " bytes.";
        return false;
    }
    const bool inInks = GetOwnFamily(&alternate) == "cmyk"_cc;
    const std::size_t outputs = inInks ? 4 : 3;
    const std::size_t inputs = colorants.amounts.size();
    std::vector<float> units;
    for (std::size_t i = 0; i < std::max(inputs, outputs); ++i) {
        units.insert(units.end(), {0, 1});
    }
    const std::string program(
        colorants.Program(inInks ? "0.0 0.0 0.0 0.0 " : "1 1 1\n", outputs).View());
    const auto tint =
        TInterfacePtr<COLOR::IColorFunction>::Adopt(functions->CreateCalculatorFunction(
            program.c_str(), units.data(), static_cast<std::int32_t>(inputs), units.data(),
            static_cast<std::int32_t>(outputs)));
    if (!tint) {
        LogError(kModule) << "Could not create postscript tint function.";
    }
    const std::int32_t length =
        tint ? context->WriteAlternativeColorSpaceAndTintTransformProcToBuffer(
                   &alternate, tint.Get(), space.Data(), kSpaceTextBytes, colourManaged)
             : 0;
    if (length > 0) {
        out.append("[/DeviceN [").append(colorants.names.View()).append("] ");
        out.append(space.Data(), static_cast<std::size_t>(length)).append("] \n");
    }
    return length > 0;
}

}  // namespace VANTIX::RENDERING
