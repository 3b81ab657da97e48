// SPDX-License-Identifier: MIT
#include <algorithm>
#include <string>

#include "core/libsupport/vlogger/logmessage.h"
#include "postscriptconnectionspace/colorspacetexts.h"
#include "postscriptconnectionspace/postscriptoutputcontext.h"
#include "postscriptconnectionspace/spotnames.h"
#include "postscriptdatastream/formattext.h"

namespace VANTIX::PS {

namespace {

std::string ReadAll(IO::IDataProvider& provider) {
    std::string bytes(static_cast<std::size_t>(std::max(provider.GetSize(), 0)), '\0');
    provider.SetPosition(0, IO::Offset::kBegin);
    std::size_t filled = 0;
    while (filled < bytes.size()) {
        auto count = static_cast<std::int32_t>(bytes.size() - filled);
        if (provider.Read(bytes.data() + filled, &count) != STATUS::kOk || count <= 0) {
            break;
        }
        filled += static_cast<std::size_t>(count);
    }
    bytes.resize(filled);
    return bytes;
}

}  // namespace

TInterfacePtr<COLOR::IConnectionColorSpaceFactory> PostScriptOutputContext::CreateColorFactory()
    const {
    return CreateObject<COLOR::IConnectionColorSpaceFactory>(
        mFactory, COLOR::IID_ICONNECTIONCOLORSPACEFACTORY);
}

TInterfacePtr<COLOR::IConnectionColorSpace> PostScriptOutputContext::DefaultProfileSpace(
    FourCC family) const {
    const auto factory = CreateColorFactory();
    if (factory == nullptr) {
        return nullptr;
    }
    const auto space = TInterfacePtr<COLOR::IConnectionColorSpace>::Adopt(
        factory->CreateDefaultProfileColorSpace(family));
    return TInterfacePtr<COLOR::IConnectionColorSpace>(space == nullptr ? nullptr
                                                                        : space->GetProfileForm());
}

std::string PostScriptOutputContext::ProfileResourceName(COLOR::IConnectionColorSpace& space) {
    std::string name;
    GetColorSpaceResourceName(space.GetProfileForm(), FirstIntent(), name);
    return name;
}

std::uint64_t PostScriptOutputContext::KeyOfResource(const COLOR::IConnectionColorSpace& space,
                                                     COLOR::TRenderingIntent intent) {
    return (std::uint64_t{static_cast<std::uint32_t>(intent)} << 32U) | space.GetIdentifier().Data1;
}

void PostScriptOutputContext::GetColorSpaceResourceName(COLOR::IConnectionColorSpace* space,
                                                        COLOR::TRenderingIntent intent,
                                                        std::string& name) {
    name.clear();
    if (space == nullptr) {
        return;
    }
    const DefinedNames::Meaning key{space->GetIdentifier(), static_cast<std::int32_t>(intent)};
    const auto number = static_cast<std::int32_t>(key.first.Data1);
    char resource[32];
    FormatText(resource, sizeof resource, "GCSA%d", number);
    if (mNames->IsTaken(resource, key)) {
        FormatText(resource, sizeof resource, "GCSA%d_%d", number, key.second);
    }
    // The intents of a space share one name: it stands for what was defined under it last.
    const DefinedNames::Meaning* known = mNames->FindLasting(resource);
    if (known == nullptr || *known != key) {
        const auto provider = CreateObject<IO::IDataProvider>(mFactory, IO::IID_IDATAPROVIDER);
        if (provider == nullptr || CurrentFilters() == nullptr ||
            space->WritePostScriptArray(intent, *provider) != STATUS::kOk) {
            return;
        }
        WriteText(std::string(" /") + resource + " ");
        WriteText(ReadAll(*provider));
        WriteText("def\n");
        mNames->Define(resource, key);
    }
    name = resource;
    name += ' ';
}

void PostScriptOutputContext::WriteColorSpaceResourceName(const std::string& name,
                                                          bool setColorSpace) {
    char text[256];
    FormatText(text, sizeof text, setColorSpace ? " %s setcolorspace\n" : " %s ", name.c_str());
    WriteText(text);
}

bool PostScriptOutputContext::WriteDeviceColorSpace(FourCC family, bool setColorSpace,
                                                    bool colourManaged) {
    const char* device = DeviceSpaceName(family);
    if (device == nullptr) {
        LogError("src/postscriptconnectionspace")
            << "Unhandled device color space encountered: " << family;
        return false;
    }
    mText.Clear();
    if (!colourManaged) {
        mText.Format("%s%s\n", device, setColorSpace ? " setcolorspace" : "");
    } else {
        std::string name;
        GetColorSpaceResourceName(DefaultProfileSpace(family).Get(), FirstIntent(), name);
        if (name.empty()) {
            return false;
        }
        mText.Format(" %s %s\n", name.c_str(), setColorSpace ? "setcolorspace" : "");
    }
    WriteText(mText.View());
    return true;
}

void PostScriptOutputContext::WriteCalibratedColorSpace(
    COLOR::ICalibratedConnectionColorSpace* space, bool setColorSpace) {
    if (space == nullptr) {
        return;
    }
    const WhitePoint white = WhitePointOf(*space);
    mText.Clear();
    switch (space->GetFamily()) {
        case "cgry"_cc:
            AppendCalibratedGray(mText, white);
            mText.Append(setColorSpace ? "setcolorspace\n" : "");
            break;
        case "crgb"_cc:
            AppendCalibratedRGB(mText, *space, white, setColorSpace ? "setcolorspace\n" : "\n");
            break;
        case "clab"_cc:
            AppendLab(mText, white, setColorSpace ? " setcolorspace\n" : " \n");
            break;
        default:
            LogError("src/postscriptconnectionspace") << "Do not support this colorspace.";
            return;
    }
    WriteText(mText.View());
}

void PostScriptOutputContext::WriteColorSpaceToPostScript(COLOR::IConnectionColorSpace& space,
                                                          bool colourManaged) {
    const auto* device =
        FindInterface<COLOR::IDeviceConnectionColorSpace>(&space, COLOR::IID_IDEVICECOLORSPACE);
    const auto* profile = FindInterface<COLOR::IProfileBasedConnectionColorSpace>(
        &space, COLOR::IID_IPROFILEBASEDCOLORSPACE);
    if (device != nullptr || profile != nullptr) {
        const std::string name = colourManaged ? ProfileResourceName(space) : std::string();
        if (!name.empty()) {
            WriteColorSpaceResourceName(name, false);
        } else {
            WriteDeviceColorSpace(device != nullptr ? device->GetFamily() : profile->GetFamily(),
                                  false, false);
        }
        return;
    }
    if (auto* deviceN = FindInterface<COLOR::IDeviceNConnectionColorSpace>(
            &space, COLOR::IID_IDEVICENCOLORSPACE)) {
        WriteDeviceNColorSpace(nullptr, *deviceN, false, colourManaged);
        return;
    }
    if (auto* separation = FindInterface<COLOR::ISeparationConnectionColorSpace>(
            &space, COLOR::IID_ISEPARATIONCOLORSPACE)) {
        WriteSeparationColorSpace(nullptr, ColorantOf(*separation), *separation, false,
                                  colourManaged);
        return;
    }
    if (auto* calibrated = FindInterface<COLOR::ICalibratedConnectionColorSpace>(
            &space, COLOR::IID_ICALIBRATEDCOLORSPACE)) {
        WriteCalibratedColorSpace(calibrated, false);
        return;
    }
    LogError("src/postscriptconnectionspace") << "Unhandled colorspace.";
}

}  // namespace VANTIX::PS
