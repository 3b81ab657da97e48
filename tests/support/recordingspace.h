// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <cstdio>
#include <initializer_list>
#include <string>

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

private:
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
