// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <functional>
#include <set>
#include <string>
#include <vector>

#include "core/graphics/igraphicsstate.h"
#include "core/object/tobject.h"
#include "host/export.h"

namespace VANTIX::HOST {

/// The mirror of the interpreter's graphics state. Levels are plain values, so that a push costs a
/// copy; font names are kept once for all levels.
class NORVANE_HOST_API GraphicsStateStack : public TObject<GRAPHICS::IMutableGraphicsStateStack> {
public:
    void Push() override;
    void Pop() override;
    void Forget() override;
    std::uint64_t GetColorSpaceKey() const override;
    void SetColorSpaceKey(std::uint64_t key) override;
    void GetColor(float values[16], std::int32_t& count) const override;
    /// False for the colour that is there already, and for no colour at all.
    bool SetColor(const float* values, std::int32_t count) override;
    /// -1 for any other `index` too.
    std::int32_t GetRenderingIntent(std::int32_t index) const override;
    void SetRenderingIntent(std::int32_t index, std::int32_t intent) override;
    std::int32_t GetOverprint(std::int32_t index) const override;
    void SetOverprint(std::int32_t index, std::int32_t value) override;
    /// Empty while no font is set.
    const char* GetFontName() const override;
    float GetFontSize() const override;
    void SetFont(const char* name, float size) override;
    void SetTextMatrix(const float matrix[6]) override;
    void PassThrough(const void* arguments) override;

private:
    static constexpr std::int32_t kMaxKnown = 16;

    struct Level {
        std::uint64_t key = 0;
        std::array<float, kMaxKnown> color{};
        std::int32_t colorCount = 0;
        std::array<std::int32_t, 2> intents{-1, -1};
        std::array<std::int32_t, 4> overprint{};  // fill, stroke, mode, the last of fill or stroke
        const char* fontName = "";
        float fontSize = 0.0F;
        std::array<float, 6> textMatrix{1, 0, 0, 1, 0, 0};
    };

    Level mTop;
    std::vector<Level> mSaved;
    std::set<std::string, std::less<>> mFontNames;
};

}  // namespace VANTIX::HOST
