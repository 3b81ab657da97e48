// SPDX-License-Identifier: MIT
// Images with a palette (PostScript Language Reference, 4.8.4).
#include <algorithm>
#include <array>
#include <cstring>

#include "baseconnectionspacedelegate/baseconnectionspacedelegate.h"
#include "baseconnectionspacedelegate/palettes.h"
#include "baseconnectionspacedelegate/profilepalette.h"
#include "baseconnectionspacedelegate/spacekinds.h"
#include "core/libsupport/vlogger/logmessage.h"
#include "postscriptconnectionspace/colorspacetexts.h"
#include "postscriptdatastream/formattext.h"
#include "postscriptdatastream/workbuffer.h"

namespace VANTIX::RENDERING {

namespace {

constexpr const char* kModule = "src/baseconnectionspacedelegate";

/// Room for the text of a space with a tint procedure of many pieces.
constexpr std::size_t kSpaceTextBytes = 16384;

constexpr std::int32_t kEntriesPerLine = 16;

/// The index channel's samples as they are written.
struct IndexLines {
    std::int32_t width = 0;
    std::int32_t depth = 8;                   ///< as stored
    std::int32_t written = 8;                 ///< bits as written: 1 to 8
    std::array<std::uint8_t, 256> clamped{};  ///< bytes with their indices within the palette

    [[nodiscard]] std::size_t Bytes() const {
        return (static_cast<std::size_t>(width) * static_cast<std::size_t>(written) + 7) / 8;
    }

    /// Lines are written as they are stored.
    [[nodiscard]] bool IsPlain(std::int32_t entries) const {
        return depth == written && entries >= 1 << written;
    }

    void SetEntries(std::int32_t entries) {
        const unsigned most = static_cast<unsigned>(std::max(entries, 1)) - 1;
        const auto bits = static_cast<unsigned>(written);
        const unsigned mask = (1U << bits) - 1;
        for (unsigned byte = 0; byte < clamped.size(); ++byte) {
            unsigned result = 0;
            for (unsigned shift = 0; shift < 8; shift += bits) {
                result |= std::min(byte >> shift & mask, most) << shift;
            }
            clamped[byte] = static_cast<std::uint8_t>(result);
        }
    }

    void Convert(const std::uint8_t* line, std::uint8_t* out) const {
        if (depth == 8 && written == 1) {
            PackLowestBits(line, out);
            return;
        }
        for (std::size_t i = 0; i < Bytes(); ++i) {
            // Of 16-bit indices the high byte counts.
            std::uint16_t word = 0;
            if (depth == 16) {
                std::memcpy(&word, line + 2 * i, sizeof word);
            }
            out[i] = clamped[depth == 16 ? static_cast<std::size_t>(word >> 8U) : line[i]];
        }
    }

private:
    void PackLowestBits(const std::uint8_t* line, std::uint8_t* out) const {
        const auto count = static_cast<std::size_t>(width);
        for (std::size_t i = 0; i < Bytes(); ++i) {
            unsigned byte = 0;
            for (std::size_t bit = 0; bit < 8; ++bit) {
                const std::size_t x = 8 * i + bit;
                byte = byte << 1U | (x < count ? line[x] & 1U : 0U);
            }
            out[i] = static_cast<std::uint8_t>(byte);
        }
    }
};

void WriteIndexLines(IChannelData& data, std::int32_t height, const IndexLines& lines,
                     std::int32_t entries, PS::IPostScriptOutputContext& out) {
    const std::size_t bytes = lines.Bytes();
    PS::WorkBuffer<std::uint8_t> buffer(bytes + 16);
    if (buffer.Data() == nullptr) {
        LogError(kModule) << "Could not create intermediary buffer of " << bytes << " bytes.";
        return;
    }
    for (std::int32_t y = 0; y < height; ++y) {
        const std::uint8_t* line = data.GetLine(y);
        if (line == nullptr) {
            LogError(kModule) << "Line " << y << " is missing.";
            break;
        }
        if (!lines.IsPlain(entries)) {
            lines.Convert(line, buffer.Data());
            line = buffer.Data();
        }
        out.WriteStreamData(line, static_cast<std::int32_t>(bytes));
    }
}

void AppendMaskColour(std::string& out, const std::uint8_t* entry, std::int32_t components,
                      bool complement) {
    for (std::int32_t i = 0; i < components; ++i) {
        const int value = complement ? 255 - entry[i] : entry[i];
        char text[16];
        PS::FormatText(text, sizeof text, "%.3f ", value / 255.0);
        out += text;
    }
    out += ' ';
}

/// The texts of a calibrated palette's space; false (logged) for a kind without one.
bool AppendCalibratedSpace(std::string& out, COLOR::ICalibratedConnectionColorSpace& space) {
    PS::TextBuffer text;
    const PS::WhitePoint white = PS::WhitePointOf(space);
    switch (space.GetFamily()) {
        case "cgry"_cc:
            PS::AppendCalibratedGray(text, white);
            break;
        case "clab"_cc:
            PS::AppendLab(text, white, "\n");
            break;
        case "crgb"_cc:
            PS::AppendCalibratedRGB(text, space, white, "\n");
            break;
        default:
            LogError(kModule) << "Do not handle this calibrated color type.";
            return false;
    }
    out += text.View();
    return true;
}

}  // namespace

void BaseConnectionSpaceDelegate::AppendPalette(std::string& out, const Palette& palette) {
    constexpr const char* kDigits = "0123456789ABCDEF";
    const std::uint8_t* byte = palette.bytes;
    for (std::int32_t entry = 0; entry < palette.entries; ++entry) {
        for (std::int32_t i = 0; i < palette.components; ++i, ++byte) {
            const unsigned value = palette.complement ? *byte ^ 0xFFU : *byte;
            out += kDigits[value >> 4U];
            out += kDigits[value & 15U];
        }
        out += entry % kEntriesPerLine == kEntriesPerLine - 1 ? '\n' : ' ';
    }
    out += ">] ";
}

bool BaseConnectionSpaceDelegate::BuildIndexedColourString(std::string& out,
                                                           IConnectionColorSpace* base,
                                                           IConnectionColorSpace* target,
                                                           std::int32_t& count,
                                                           bool withoutPrefix) {
    PS::IPostScriptOutputContext* context = OutputContext();
    if (context == nullptr || base == nullptr || target == nullptr) {
        return false;
    }
    if (!withoutPrefix) {
        out += "[/Indexed ";
    }
    if (const FourCC key = GetOwnFamily(target); key != 0) {
        const bool staysGray = !mPromoteGray && GetOwnFamily(base) == "gray"_cc;
        const char* name = PS::DeviceSpaceName(
            staysGray && (key == "cmyk"_cc || key == "rgb "_cc) ? FourCC{"gray"_cc} : key);
        if (name == nullptr) {
            LogError(kModule) << "Do not handle this device color type.";
            return false;
        }
        out.append(name).append(" ");
        return true;
    }
    if (auto* calibrated = AsCalibrated(target)) {
        return AppendCalibratedSpace(out, *calibrated);
    }
    return AppendSpotSpace(out, *target, count, false);
}

bool BaseConnectionSpaceDelegate::AppendSpotSpace(std::string& out, IConnectionColorSpace& space,
                                                  std::int32_t& count, bool colourManaged) {
    PS::IPostScriptOutputContext* context = OutputContext();
    std::int32_t length = 0;
    PS::WorkBuffer<char> text(kSpaceTextBytes);
    if (context == nullptr || text.Data() == nullptr) {
        return false;
    }
    const auto size = static_cast<std::int32_t>(text.Size());
    if (auto* separation = AsSeparation(&space)) {
        length =
            context->WriteSeparationSpaceToBuffer(separation, text.Data(), size, colourManaged);
    } else if (auto* deviceN = AsDeviceN(&space)) {
        length = context->WriteDeviceNSpaceToBuffer(deviceN, text.Data(), size, false, count,
                                                    colourManaged);
    } else {
        LogError(kModule) << "Do not handle this indexed color type.";
    }
    out.append(text.Data(), static_cast<std::size_t>(std::max(length, 0)));
    return length > 0;
}

bool BaseConnectionSpaceDelegate::ConvertPaletteToTarget(const Raster& raster,
                                                         IConnectionColorSpace& base,
                                                         IConnectionColorSpace& target,
                                                         Palette& palette, std::string& storage) {
    const auto* device = AsDevice(&target);
    const FourCC key = device == nullptr ? 0 : device->GetFamily();
    const std::int32_t components = ComponentsOfFamily(key);
    if (components == 0) {
        LogError(kModule) << (device == nullptr
                                  ? "something wrong with the logic. tempLUT is NULL but we still "
                                    "think things are OK?"
                                  : "Do not handle this device color type.");
        return false;
    }
    const std::int32_t from = PaletteComponents(base);
    if (from == 0) {
        return false;
    }
    palette.components = from;
    const FourCC baseKey = GetOwnFamily(&base);
    const bool isBlackAndWhite = raster.GetBitsPerSample() == 1 && baseKey == "gray"_cc &&
                                 !mPromoteGray && palette.entries >= 2 &&
                                 palette.bytes[0] + palette.bytes[1] == 0xFF &&
                                 (palette.bytes[0] == 0 || palette.bytes[0] == 0xFF);
    if (isBlackAndWhite) {
        palette.entries = 2;
        return true;
    }
    if (baseKey == key && !mColorManaged) {
        palette.complement = key == "cmyk"_cc;
        return true;
    }
    if (!mPromoteGray && baseKey == "gray"_cc && key != "gray"_cc) {
        return true;
    }
    storage.resize(static_cast<std::size_t>(palette.entries) *
                   static_cast<std::size_t>(components));
    auto* converted = reinterpret_cast<std::uint8_t*>(storage.data());
    if (!ConvertPalette(base, from, palette.bytes, palette.entries, target, components, converted,
                        RenderingIntents(COLOR::TRenderingIntent::kAbsoluteColorimetric))) {
        return false;
    }
    if (baseKey == "gray"_cc && key == "cmyk"_cc) {
        PromoteToBlack(converted, palette.entries);
    }
    palette.bytes = converted;
    palette.components = components;
    palette.complement = key == "cmyk"_cc;
    return true;
}

bool BaseConnectionSpaceDelegate::KeepPalette(IConnectionColorSpace& base, Palette& palette,
                                              std::string& storage) {
    palette.components = PaletteComponents(base);
    if (palette.components == 0) {
        return false;
    }
    palette.complement = GetOwnFamily(&base) == "cmyk"_cc;
    auto* profile = AsProfileBased(&base);
    if (profile == nullptr || !mColorManaged) {
        return true;
    }
    const auto factory = CreateObject<COLOR::IConnectionColorSpaceFactory>(
        mFactory, COLOR::IID_ICONNECTIONCOLORSPACEFACTORY);
    if (!factory) {
        LogError(kModule) << "Could not create colorspace factory.";
        return false;
    }
    storage.resize(static_cast<std::size_t>(palette.entries) *
                   static_cast<std::size_t>(palette.components));
    const auto intents = RenderingIntents(COLOR::TRenderingIntent::kAbsoluteColorimetric);
    palette.components =
        WriteProfileColorSpaceLUT(factory.Get(), nullptr, profile, palette.bytes, storage.data(),
                                  palette.entries, intents.first, intents.second);
    palette.bytes = reinterpret_cast<const std::uint8_t*>(storage.data());
    return palette.components != 0;
}

void BaseConnectionSpaceDelegate::InjectIndexedRaster(Raster& raster, float /*x*/, float /*y*/,
                                                      float /*width*/, float /*height*/,
                                                      COLOR::IIndexedConnectionColorSpace* indexed,
                                                      IConnectionColorSpace* alternative,
                                                      bool imagemask) {
    if (indexed == nullptr) {
        LogError(kModule) << "indexedCSpace cannot be NULL.";
        return;
    }
    IConnectionColorSpace* base = indexed->GetBaseSpace();
    if (base == nullptr) {
        LogError(kModule) << "alternativeColorSpace cannot be NULL.";
        return;
    }
    Palette palette;
    palette.entries = indexed->GetEntryCount();
    if (imagemask && palette.entries > 2) {
        LogError(kModule) << "imagemask can be output only for 1-Bit depth images";
        return;
    }
    std::string colour;
    std::int32_t count = 0;
    if (!BuildIndexedColourString(colour, base, alternative == nullptr ? base : alternative, count,
                                  imagemask)) {
        return;
    }
    palette.bytes = indexed->GetLUT();
    if (palette.bytes == nullptr || palette.entries <= 0) {
        LogError(kModule) << "indexedCSpace->GetLUT() returned NULL.";
        return;
    }
    std::string storage;
    const bool isReady =
        alternative == nullptr
            ? KeepPalette(*base, palette, storage)
            : ConvertPaletteToTarget(raster, *base, *alternative, palette, storage);
    if (isReady) {
        const bool isUnpainted = raster.GetBitsPerSample() == 1 && HasMaskChannel(raster);
        WriteIndexedImage(raster, colour, palette, imagemask, isUnpainted ? 0 : 1);
    }
}

void BaseConnectionSpaceDelegate::WriteIndexedImage(Raster& raster, std::string& colour,
                                                    const Palette& palette, bool imagemask,
                                                    std::int32_t maskEntry) {
    PS::IPostScriptOutputContext* out = OutputContext();
    const IChannelDesc* channel = raster.GetPrimary(0);
    if (out == nullptr) {
        return;
    }
    if (channel == nullptr) {
        LogError(kModule) << "The raster has no descriptor for channel zero.";
        return;
    }
    IChannelData* data = channel->GetData();
    if (data == nullptr) {
        LogError(kModule) << "No index channel data.";
        return;
    }
    if (imagemask) {
        colour += "setcolorspace ";
        const std::ptrdiff_t entry = std::clamp(maskEntry, 0, palette.entries - 1);
        AppendMaskColour(colour, palette.bytes + entry * palette.components, palette.components,
                         palette.complement);
    } else {
        colour += std::to_string(palette.entries - 1) + " <\n";
        AppendPalette(colour, palette);
    }
    IndexLines lines;
    lines.width = raster.GetWidth();
    lines.depth = raster.GetBitsPerSample();
    lines.written =
        lines.depth == 8 && palette.entries == 2 ? 1 : std::min<std::int32_t>(lines.depth, 8);
    lines.SetEntries(palette.entries);
    char decode[16];
    PS::FormatText(decode, sizeof decode, imagemask ? "[%i 0]" : "[0 %i]",
                   (1 << lines.written) - 1);
    out->WriteImageDictionary(lines.width, raster.GetHeight(), lines.written, colour.data(),
                              static_cast<std::int32_t>(colour.size()), decode, imagemask);
    WriteIndexLines(*data, raster.GetHeight(), lines, palette.entries, *out);
    out->FlushStreamData();
}

}  // namespace VANTIX::RENDERING
