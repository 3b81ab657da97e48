// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <span>
#include <vector>

#include "core/graphics/pluginhelper/delegateconnectionspace.h"

namespace VANTIX::PS {

/// The encryption of Type 1 fonts (Adobe Type 1 Font Format, 7.1).
class Type1Cipher {
public:
    static constexpr std::uint16_t kEexecKey = 55665;
    static constexpr std::uint16_t kCharStringKey = 4330;

    explicit Type1Cipher(std::uint16_t key) : mKey(key) {}

    /// In place, going on from the bytes before.
    void Encrypt(std::span<std::uint8_t> bytes) {
        std::uint32_t key = mKey;
        for (std::uint8_t& byte : bytes) {
            byte ^= static_cast<std::uint8_t>(key >> 8U);
            key = ((byte + key) * 52845U + 22719U) & 0xFFFFU;
        }
        mKey = static_cast<std::uint16_t>(key);
    }

private:
    std::uint16_t mKey;
};

/// Records the outline that a glyph plays as an encrypted Type 1 charstring without leading random
/// bytes (Adobe Type 1 Font Format, chapter 6). Coordinates arrive in ems.
class T1CharStringConnectionspace : public GRAPHICS::DelegateConnectionSpace {
public:
    /// `advanceWidth` in ems; `scale` is the charstring's units for each em.
    T1CharStringConnectionspace(float advanceWidth, float scale);

    void NewPath() override;
    void MoveTo(float x, float y) override;
    void LineTo(const float* points, std::int32_t count) override;
    void QuadCurveTo(const float* points, std::int32_t count) override;
    void CurveTo(const float* points, std::int32_t count) override;
    void ClosePath() override;
    void ResetPath() override;

    /// What was recorded; empty when nothing was, or when it became too much (logged).
    [[nodiscard]] std::span<const std::uint8_t> GetCharString() const { return mCharString; }

    /// No charstring grows beyond this many bytes.
    static constexpr std::size_t kMostBytes = std::size_t{1} << 20U;

private:
    struct Point {
        float x = 0;
        float y = 0;
    };

    void CurveThrough(Point control1, Point control2, Point end);
    void Append(std::initializer_list<double> operands, std::uint8_t command);
    void AppendEncrypted(std::span<std::uint8_t> bytes);
    /// Ems to units of the charstring.
    [[nodiscard]] double Scaled(float from, float to) const;

    std::vector<std::uint8_t> mCharString;
    float mAdvanceWidth;
    float mScale;
    Point mCurrent;
    Type1Cipher mCipher{Type1Cipher::kCharStringKey};
    bool mFailed = false;
};

}  // namespace VANTIX::PS
