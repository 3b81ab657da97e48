// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <cstdio>
#include <initializer_list>
#include <string>

#include "core/color/iconnectioncolorspace.h"
#include "core/graphics/irastercomponent.h"
#include "core/graphics/pluginhelper/delegateconnectionspace.h"

namespace VANTIX::TESTS {

/// A delegate space that writes every drawing call as a line, and at painting the colour in force:
/// "fill gray 0.5".
class RecordingSpace : public GRAPHICS::DelegateConnectionSpace {
public:
    std::string calls;

    void SaveGraphicsState() override { Write("save", {}); }

    void RestoreGraphicsState() override { Write("restore", {}); }

    void Concat(float a, float b, float c, float d, float e, float f) override {
        Write("concat", {a, b, c, d, e, f});
    }

    void NewPath() override { Write("newpath", {}); }

    void RegisterColorSpaceUse(ResourceId id) override { Write("use", {static_cast<float>(id)}); }

    void MoveTo(float x, float y) override { Write("move", {x, y}); }

    void LineTo(const float* points, std::int32_t count) override {
        Write("line", points, 2 * count);
    }

    void CurveTo(const float* points, std::int32_t count) override {
        Write("curve", points, 6 * count);
    }

    void ClosePath() override { Write("close", {}); }

    void Clip() override { Write("clip", {}); }

    void EOClip() override { Write("eoclip", {}); }

    void Fill() override { Paint("fill", true); }

    void EOFill() override { Paint("eofill", true); }

    void Stroke() override { Paint("stroke", false); }

    void SetLineWidth(float width) override { Write("width", {width}); }

    void SetLineCap(std::int32_t cap) override { Write("cap", {static_cast<float>(cap)}); }

    void SetLineJoin(std::int32_t join) override { Write("join", {static_cast<float>(join)}); }

    void SetDash(float phase, const float* lengths, std::int32_t count) override {
        Write("dash", lengths, count);
        calls.back() = ' ';
        Write("phase", {phase});
    }

    void SetMiterLimit(float limit) override { Write("miter", {limit}); }

    void SetFlatness(float flatness) override { Write("flat", {flatness}); }

    void SelectRenderingIntent(COLOR::TRenderingIntent intent) override {
        Write("intent", {static_cast<float>(intent)});
    }

    void SaveInitialPageMatrix() override { Write("initialmatrix", {}); }

    /// "image rgb 2x1x8 ff00 80ff 0000": the planes in hexadecimal, lines parted by strokes. The
    /// palette of an Indexed space stands in angles; extra channels follow under their types.
    void DrawImage(GRAPHICS::IRasterComponent* raster, float x, float y, float width,
                   float height) override {
        calls += "image " + SpaceText(raster->GetColorSpace()) + ' ' +
                 std::to_string(raster->GetWidth()) + 'x' + std::to_string(raster->GetHeight()) +
                 'x' + std::to_string(raster->GetBitsPerSample());
        for (std::int32_t i = 0; i < raster->GetPrimaryCount(); ++i) {
            calls += ' ' + PlaneText(*raster, *raster->GetPrimary(i));
        }
        for (std::int32_t i = 0; i < raster->GetExtraCount(); ++i) {
            const GRAPHICS::IChannelDesc* extra = raster->GetExtra(i);
            calls += extra->GetType() == "LPHA"_cc ? " alpha" : " spot";
            calls += extra->GetData()->IsFullyOpaque() ? "" : "*";
            calls += std::to_string(extra->GetBits()) + ' ' + PlaneText(*raster, *extra);
        }
        const bool isUnit = x == 0.0F && y == 0.0F && width == 1.0F && height == 1.0F;
        calls += isUnit ? "\n" : " elsewhere\n";
    }

private:
    static std::string Hex(const std::uint8_t* bytes, std::size_t count) {
        std::string text;
        for (std::size_t i = 0; i < count; ++i) {
            char digits[3];
            std::snprintf(digits, sizeof digits, "%02x", static_cast<unsigned>(bytes[i]));
            text += digits;
        }
        return text;
    }

    static std::string SpaceText(COLOR::IConnectionColorSpace* space) {
        const auto* indexed = FindInterface<COLOR::IIndexedConnectionColorSpace>(
            space, COLOR::IID_IINDEXEDCOLORSPACE);
        if (indexed != nullptr) {
            const auto bytes =
                static_cast<std::size_t>(indexed->GetEntryCount()) *
                static_cast<std::size_t>(indexed->GetBaseSpace()->GetComponentCount());
            return SpaceText(indexed->GetBaseSpace()) + '<' + Hex(indexed->GetLUT(), bytes) + '>';
        }
        const auto* device =
            FindInterface<COLOR::IDeviceConnectionColorSpace>(space, COLOR::IID_IDEVICECOLORSPACE);
        const FourCC family = device == nullptr ? 0 : device->GetFamily();
        const char* name = family == "gray"_cc ? "gray" : (family == "cmyk"_cc ? "cmyk" : "rgb");
        return family == 0 ? '#' + std::to_string(space->GetComponentCount()) : name;
    }

    static std::string PlaneText(const GRAPHICS::IRasterComponent& raster,
                                 const GRAPHICS::IChannelDesc& channel) {
        const std::int32_t bytes = (raster.GetWidth() * channel.GetBits() + 7) / 8;
        std::string text;
        for (std::int32_t y = 0; y < raster.GetHeight(); ++y) {
            const std::uint8_t* line = channel.GetData()->GetLine(y);
            text += y > 0 ? "/" : "";
            text += line == nullptr ? "missing" : Hex(line, static_cast<std::size_t>(bytes));
        }
        return text;
    }

    void Write(const char* name, const float* numbers, std::int32_t count) {
        calls += name;
        for (std::int32_t i = 0; i < count; ++i) {
            char text[32];
            std::snprintf(text, sizeof text, " %.4g", static_cast<double>(numbers[i]));
            calls += text;
        }
        calls += '\n';
    }

    void Write(const char* name, std::initializer_list<float> numbers) {
        Write(name, numbers.begin(), static_cast<std::int32_t>(numbers.size()));
    }

    void Paint(const char* name, bool fill) {
        const COLOR::IConnectionColorSpace* space = mGraphicsState->GetColorSpace(fill);
        const std::int32_t count = space == nullptr ? 0 : space->GetComponentCount();
        float values[COLOR::kMaxComponents] = {};
        mGraphicsState->GetColor(fill, values, count);
        const ResourceId id = mGraphicsState->GetColorSpaceID(fill);
        std::string label(name);
        if (id >= "    "_cc) {
            label += ' ';
            for (int shift = 24; shift >= 0; shift -= 8) {
                const auto c = static_cast<char>((id >> static_cast<unsigned>(shift)) & 0xFFU);
                label += c == ' ' ? "" : std::string(1, c);
            }
        } else {
            label += " #" + std::to_string(id);
        }
        Write(label.c_str(), values, count);
    }
};

}  // namespace VANTIX::TESTS
