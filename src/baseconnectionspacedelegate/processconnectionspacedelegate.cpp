// SPDX-License-Identifier: MIT
#include "baseconnectionspacedelegate/processconnectionspacedelegate.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "baseconnectionspacedelegate/spacekinds.h"
#include "core/libsupport/vlogger/logmessage.h"

namespace VANTIX::RENDERING {

namespace {

IChannelData* DataOf(const Raster& raster, std::int32_t index) {
    const IChannelDesc* channel =
        index < raster.GetPrimaryCount() ? raster.GetPrimary(index) : nullptr;
    return channel == nullptr ? nullptr : channel->GetData();
}

}  // namespace

void ProcessConnectionSpaceDelegate::Init(bool setDefaultColour) {
    BaseConnectionSpaceDelegate::Init(setDefaultColour);
    if (!setDefaultColour) {
        return;
    }
    if (PS::IPostScriptOutputContext* out = OutputContext(); out != nullptr) {
        out->SetDefaultColour(mModel.family, false);
    }
}

bool ProcessConnectionSpaceDelegate::SelectFamily(IConnectionColorSpace* space) {
    const bool staysGray = GetOwnFamily(space) == "gray"_cc && !mPromoteGray;
    return SetDeviceColorSpaceByKey(space, staysGray ? FourCC{"gray"_cc} : mModel.family);
}

void ProcessConnectionSpaceDelegate::FillWithColorSpace(IConnectionColorSpace* shading,
                                                        ResourceId /*id*/, float /*x*/, float /*y*/,
                                                        float /*width*/, float /*height*/,
                                                        bool paint) {
    FillConverted(shading, mDestination.Get(), paint, [this](IConnectionColorSpace* space) {
        const auto* device = AsDevice(space);
        return !mColorManaged && device != nullptr && device->GetFamily() == mModel.family;
    });
}

bool ProcessConnectionSpaceDelegate::SetPlateSelection(IConnectionColorSpace* space,
                                                       const float* values) {
    auto* separation = AsSeparation(space);
    if (separation == nullptr ||
        (!SetRegistrationSpace(separation) && !SetNoneColorSpace(separation))) {
        return false;
    }
    OutputContext()->SetColor(values, 1);
    return true;
}

bool ProcessConnectionSpaceDelegate::SetColor(const float* values, std::int32_t count, bool fill) {
    if (OutputContext() == nullptr || values == nullptr || count <= 0) {
        return false;
    }
    IConnectionColorSpace* source = CurrentColorSpace(fill);
    if (source == nullptr && count > 1) {
        LogError(mModel.module) << (fill ? mModel.noFill : mModel.noStroke);
        return false;
    }
    if (SetPlateSelection(source, values)) {
        return true;
    }
    const auto kept = KeptColor(source, values, count);
    if (!kept) {
        return SetColorWithConversion(source, mDestination.Get(), values, count);
    }
    return WriteColor(kept);
}

bool ProcessConnectionSpaceDelegate::SetManagedColor(const float* values, std::int32_t count,
                                                     bool fill, const char* module) {
    IConnectionColorSpace* source = CurrentColorSpace(fill);
    if (source == nullptr) {
        LogError(module) << "There is No Source Connection Color Space.";
        return false;
    }
    if (values == nullptr || count <= 0) {
        return false;
    }
    if (SetPlateSelection(source, values)) {
        return true;
    }
    if (GetOwnFamily(source) != "gray"_cc || count != 1 || mPromoteGray) {
        return SetColorWithConversion(source, mDestination.Get(), values, count);
    }
    PS::IPostScriptOutputContext* out = OutputContext();
    if (out != nullptr) {
        out->SetColor(values, count);
    }
    return out != nullptr;
}

std::optional<bool> ProcessConnectionSpaceDelegate::IsOutputProfile(
    COLOR::IProfileBasedConnectionColorSpace& profile, const char* module) const {
    if (!mDestination) {
        LogError(module) << "Output connection colorspace is not valid.";
        return std::nullopt;
    }
    if (FindInterface<IObject>(mDestination.Get(), COLOR::IID_IDEVICECOLORSPACE) == nullptr) {
        LogError(module) << "Output connection colorspace is not DeviceXXX color space.";
        return std::nullopt;
    }
    const auto* output = AsProfileBased(mDestination->GetProfileForm());
    const char* outputName = output == nullptr ? nullptr : output->GetProfileName();
    const char* name = profile.GetProfileName();
    return outputName != nullptr && name != nullptr &&
           std::string_view(outputName) == std::string_view(name);
}

TInterfacePtr<IConnectionColorSpace> ProcessConnectionSpaceDelegate::MakeDeviceSpace() const {
    const auto colors = CreateObject<COLOR::IConnectionColorSpaceFactory>(
        mFactory, COLOR::IID_ICONNECTIONCOLORSPACEFACTORY);
    if (!colors) {
        LogError(mModel.module) << "Could not create colour factory.";
        return nullptr;
    }
    auto space = TInterfacePtr<IConnectionColorSpace>::Adopt((colors.Get()->*mModel.create)());
    if (!space) {
        LogError(mModel.module) << "Could not create colour space.";
    }
    return space;
}

void ProcessConnectionSpaceDelegate::InjectIndexedImage(
    Raster& raster, float x, float y, float width, float height,
    COLOR::IIndexedConnectionColorSpace* indexed) {
    if (indexed == nullptr) {
        LogError(mModel.module) << "Indexed Raster didn't have indexed colorspace..";
        return;
    }
    TInterfacePtr<IConnectionColorSpace> target = mDestination;
    if (!target) {
        target = MakeDeviceSpace();
    }
    if (target) {
        InjectIndexedRaster(raster, x, y, width, height, indexed, target.Get(),
                            BecomesImageMask(raster));
    }
}

ProcessConnectionSpaceDelegate::LineReader ProcessConnectionSpaceDelegate::ReaderOf(
    ConvertedLines& lines, bool tellsStatus) const {
    return [this, &lines, tellsStatus](std::int32_t y, InterleavedLine::Planes& planes) {
        ConvertedLines::Planes converted{};
        const Status status = lines.Convert(y, converted);
        std::copy(converted.begin(), converted.end(), planes.begin());
        if (status != STATUS::kOk && tellsStatus) {
            LogError(mModel.module)
                << "Connection Color Space Conversion Failed. Error = " << status;
        } else if (status != STATUS::kOk) {
            LogError(mModel.module) << "Failed to encode the image at line " << y;
        }
        return status == STATUS::kOk;
    };
}

ProcessConnectionSpaceDelegate::LineReader ProcessConnectionSpaceDelegate::ReaderOf(
    const Raster& raster, std::int32_t count, MissingPlaneLog logMissing) {
    return [&raster, count, logMissing = std::move(logMissing)](std::int32_t y,
                                                                InterleavedLine::Planes& planes) {
        for (std::int32_t i = 0; i < count; ++i) {
            const auto index = static_cast<std::size_t>(i);
            planes.at(index) = DataOf(raster, i)->GetLine(y);
            if (planes.at(index) == nullptr) {
                logMissing(y, index);
                return false;
            }
        }
        return true;
    };
}

bool ProcessConnectionSpaceDelegate::HasPrimaries(const Raster& raster, std::int32_t count,
                                                  const char* message) const {
    std::int32_t found = 0;
    while (found < count && DataOf(raster, found) != nullptr) {
        ++found;
    }
    if (found < count) {
        LogError(mModel.module) << message;
    }
    return found == count;
}

}  // namespace VANTIX::RENDERING
