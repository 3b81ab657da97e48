// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "core/graphics/igraphicsstate.h"
#include "core/object/tobject.h"

namespace VANTIX::TEST {

/// The mirror of an interpreter's graphics state, as the host keeps it.
class FakeStateStack : public TObject<GRAPHICS::IMutableGraphicsStateStack> {
public:
    struct State {
        std::uint64_t colorSpaceKey = 0;
        /// Empty while no colour is known.
        std::vector<float> color;
        std::array<std::int32_t, 2> intents{-1, -1};
        /// Fill, stroke, mode, the last set of fill or stroke.
        std::array<std::int32_t, 4> overprint{};
        std::string fontName;
        float fontSize = 0;
        std::array<float, 6> textMatrix{1, 0, 0, 1, 0, 0};
    };

    State top;
    std::vector<State> saved;

    void Push() override { saved.push_back(top); }

    void Pop() override {
        if (!saved.empty()) {
            top = std::move(saved.back());
            saved.pop_back();
        }
    }

    void Forget() override {
        top = {};
        top.intents.fill(kUnknown);
        top.overprint.fill(kUnknown);
    }

    std::uint64_t GetColorSpaceKey() const override { return top.colorSpaceKey; }

    void SetColorSpaceKey(std::uint64_t key) override {
        top.colorSpaceKey = key;
        top.color.clear();
    }

    void GetColor(float values[16], std::int32_t& count) const override {
        const std::size_t known = std::min<std::size_t>(top.color.size(), 16);
        std::copy_n(top.color.begin(), known, values);
        count = static_cast<std::int32_t>(known);
    }

    bool SetColor(const float* values, std::int32_t count) override {
        std::vector<float> color(values, values + count);
        const bool same = count <= 16 && color == top.color;
        top.color = std::move(color);
        return !same;
    }

    std::int32_t GetRenderingIntent(std::int32_t index) const override {
        return top.intents.at(static_cast<std::size_t>(index));
    }

    void SetRenderingIntent(std::int32_t index, std::int32_t intent) override {
        top.intents.at(static_cast<std::size_t>(index)) = intent;
    }

    std::int32_t GetOverprint(std::int32_t index) const override {
        return top.overprint.at(static_cast<std::size_t>(index));
    }

    void SetOverprint(std::int32_t index, std::int32_t value) override {
        top.overprint.at(static_cast<std::size_t>(index)) = value;
        if (index < 2) {
            top.overprint[3] = value;
        }
    }

    const char* GetFontName() const override { return top.fontName.c_str(); }

    float GetFontSize() const override { return top.fontSize; }

    void SetFont(const char* name, float size) override {
        top.fontName = name;
        top.fontSize = size;
    }

    void SetTextMatrix(const float matrix[6]) override {
        std::copy_n(matrix, 6, top.textMatrix.begin());
    }

    void PassThrough(const void* /*arguments*/) override {}
};

}  // namespace VANTIX::TEST
