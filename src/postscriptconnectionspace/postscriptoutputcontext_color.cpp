// SPDX-License-Identifier: MIT
#include <algorithm>
#include <bit>

#include "core/libsupport/vlogger/logmessage.h"
#include "postscriptconnectionspace/colorspacetexts.h"
#include "postscriptconnectionspace/postscriptoutputcontext.h"
#include "postscriptconnectionspace/standardhashie.h"

namespace VANTIX::PS {

namespace {

struct DeviceBlack {
    FourCC family;
    const char* text;
    std::int32_t count;
    float color[4];
};

constexpr DeviceBlack kBlacks[] = {
    {"gray"_cc, "/DeviceGray setcolorspace %set default colour to Gray black\n", 1, {0}},
    {"rgb "_cc, "/DeviceRGB setcolorspace %set default colour to RGB black\n", 3, {0, 0, 0}},
    {"cmyk"_cc, "/DeviceCMYK setcolorspace %set default colour to CMYK black\n", 4, {0, 0, 0, 1}},
};

/// Key of a CIE-based space: a family alone would not tell two of its spaces apart.
std::uint64_t CalibratedKey(FourCC family, std::uint32_t variant) {
    return (std::uint64_t{variant} << 32U) | family;
}

std::uint32_t HashOf(const WhitePoint& white) {
    std::uint32_t hash = 0;
    for (const float value : white) {
        hash = std::rotl(hash, 11) ^ std::bit_cast<std::uint32_t>(value);
    }
    return hash;
}

}  // namespace

bool PostScriptOutputContext::SelectSpace(std::uint64_t key) {
    if (mState == nullptr || mState->GetColorSpaceKey() == key) {
        return false;
    }
    mState->SetColorSpaceKey(key);
    return true;
}

void PostScriptOutputContext::StoreColor(const float* components, std::int32_t count) {
    if (mState != nullptr) {
        mState->SetColor(components, count);
    }
}

void PostScriptOutputContext::SetDefaultColour(FourCC family, bool colourManaged) {
    const auto* const black =
        std::find_if(std::begin(kBlacks), std::end(kBlacks),
                     [family](const DeviceBlack& entry) { return entry.family == family; });
    if (black == std::end(kBlacks) || mState == nullptr) {
        return;
    }
    if (!colourManaged) {
        WriteText(black->text);
        mState->SetColorSpaceKey(family);
        mState->SetColor(black->color, black->count);
        return;
    }
    const auto space = DefaultProfileSpace(family);
    std::string name;
    GetColorSpaceResourceName(space.Get(), FirstIntent(), name);
    if (name.empty()) {
        return;
    }
    name += "%%set default colour with black color\n";
    WriteColorSpaceResourceName(name, true);
    mState->SetColorSpaceKey(KeyOfResource(*space, FirstIntent()));
    // A CIE-based space starts with zeros, which is black in all but four inks.
    if (family != "cmyk"_cc) {
        mState->SetColor(black->color, black->count);
    }
}

void PostScriptOutputContext::SetDeviceColorSpace(FourCC family) {
    if (mState != nullptr && mState->GetColorSpaceKey() != family &&
        WriteDeviceColorSpace(family, true, false)) {
        mState->SetColorSpaceKey(family);
    }
}

void PostScriptOutputContext::SetLabColorSpace(const float white[3]) {
    if (white == nullptr) {
        return;
    }
    const WhitePoint point{white[0], white[1], white[2]};
    if (SelectSpace(CalibratedKey("clab"_cc, HashOf(point)))) {
        mText.Clear();
        AppendLab(mText, point, " setcolorspace\n");
        WriteText(mText.View());
    }
}

void PostScriptOutputContext::SetCalibratedGrayColorSpace(float x, float y, float z) {
    if (!SelectSpace(CalibratedKey("cgry"_cc, HashOf({x, y, z})))) {
        return;
    }
    mText.Clear();
    mText.Format(
        "[ /CIEBasedA\n<< /MatrixA [%.8g %.8g %.8g]\n"
        "/RangeLMN [0.0  %.8g  0.0  %.8g  0.0  %.8g]\n"
        "/WhitePoint [%.8g  %.8g  %.8g]\n"
        ">>\n] setcolorspace ",
        x, y, z, x, y, z, x, y, z);
    WriteText(mText.View());
}

bool PostScriptOutputContext::SetCalibratedColorSpace(
    COLOR::ICalibratedConnectionColorSpace* space) {
    if (space == nullptr) {
        return false;
    }
    if (SelectSpace(CalibratedKey(space->GetFamily(), space->GetIdentifier().Data1))) {
        WriteCalibratedColorSpace(space, true);
    }
    return true;
}

void PostScriptOutputContext::SetColor(const float* components, std::int32_t count) {
    if (mState == nullptr || components == nullptr || count <= 0) {
        return;
    }
    float current[16];
    std::int32_t known = 0;
    mState->GetColor(current, known);
    if ((known == count && std::equal(components, components + count, current)) ||
        !mState->SetColor(components, count)) {
        return;
    }
    mText.Clear();
    for (std::int32_t i = 0; i < count; ++i) {
        mText.Format("%.8g ", components[i]);
    }
    mText.Append("setcolor\n");
    WriteText(mText.View());
}

void PostScriptOutputContext::SetRegistrationColorSpace() {
    if (SelectSpace("RGST"_cc)) {
        WriteText(
            "[/Separation (All) /DeviceGray {1 exch sub}] setcolorspace 1 setcolor "
            "%% Registration\n");
        const float fullTint = 1;
        StoreColor(&fullTint, 1);
    }
}

void PostScriptOutputContext::SetNoneColorSpace() {
    if (SelectSpace("None"_cc)) {
        WriteText("[/Separation (None) /DeviceGray {1 exch sub}] setcolorspace 0 setcolor\n");
    }
}

void PostScriptOutputContext::SetDeviceNColorSpace(const char* name,
                                                   COLOR::IDeviceNConnectionColorSpace* space,
                                                   bool colourManaged) {
    if (name != nullptr && space != nullptr && SelectSpace(StandardHashie(name))) {
        mNames->Define(name);
        WriteDeviceNColorSpace(name, *space, true, colourManaged);
    }
}

void PostScriptOutputContext::SetSeparationColorSpace(const char* name, const char* colorant,
                                                      COLOR::ISeparationConnectionColorSpace* space,
                                                      bool colourManaged) {
    if (name != nullptr && space != nullptr && SelectSpace(StandardHashie(name))) {
        mNames->Define(name);
        WriteSeparationColorSpace(name, colorant == nullptr ? "" : colorant, *space, true,
                                  colourManaged);
    }
}

bool PostScriptOutputContext::SetNamedColorSpace(const char* name) {
    if (name == nullptr || mNames->Find(name) == nullptr) {
        return false;
    }
    if (SelectSpace(StandardHashie(name))) {
        mText.Clear();
        mText.Format("%s setcolorspace\n", name);
        WriteText(mText.View());
    }
    return true;
}

void PostScriptOutputContext::SetColorSpace(COLOR::IConnectionColorSpace* space,
                                            COLOR::TRenderingIntent intent) {
    std::string name;
    GetColorSpaceResourceName(space, intent, name);
    if (!name.empty() && SelectSpace(KeyOfResource(*space, intent))) {
        WriteColorSpaceResourceName(name, true);
    }
}

bool PostScriptOutputContext::SetPatternColor(const char* name,
                                              COLOR::IConnectionColorSpace* underlying,
                                              const float* components) {
    if (name == nullptr || mState == nullptr) {
        return false;
    }
    const std::uint64_t key = StandardHashie(name);
    mText.Clear();
    if (underlying == nullptr) {
        if (SelectSpace(key)) {
            mText.Format(
                "\n/%s where  {/%s get /Pattern setcolorspace setcolor} { stopped } "
                "ifelse\n",
                name, name);
            WriteText(mText.View());
        }
        return true;
    }
    if (components == nullptr) {
        return false;
    }
    mState->SetColorSpaceKey(key);
    mText.Append("\n[/Pattern currentcolorspace] setcolorspace\n");
    const std::int32_t count = std::min(underlying->GetComponentCount(), COLOR::kMaxComponents);
    for (std::int32_t i = 0; i < count; ++i) {
        mText.Format(" %g", components[i]);
    }
    mText.Format("/%s where  {/%s get setcolor} { stopped } ifelse\n", name, name);
    WriteText(mText.View());
    return true;
}

}  // namespace VANTIX::PS
