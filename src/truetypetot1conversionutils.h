// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <limits>
#include <span>
#include <vector>

#include "core/fonts/ifontancillaries.h"
#include "core/graphics/pluginhelper/delegateconnectionspace.h"

namespace VANTIX::PS {

/// The encryption of Type 1 fonts (Adobe Type 1 Font Format, 7.1).
class Type1Cipher {
public:
    static constexpr std::uint16_t kEexecKey = 55665;
    static constexpr std::uint16_t kCharStringKey = 4330;

    explicit Type1Cipher(std::uint16_t key) : mKey(key) {}

    /// In place, going on from the bytes before.
    void Encrypt(std::span<std::uint8_t> bytes) { Encrypt(bytes, bytes.data()); }

    /// To where `out` points, going on from the bytes before.
    void Encrypt(std::span<const std::uint8_t> bytes, std::uint8_t* out) {
        std::uint32_t key = mKey;
        for (const std::uint8_t byte : bytes) {
            const auto cipher = static_cast<std::uint8_t>(byte ^ (key >> 8U));
            *out++ = cipher;
            key = ((cipher + key) * 52845U + 22719U) & 0xFFFFU;
        }
        mKey = static_cast<std::uint16_t>(key);
    }

private:
    std::uint16_t mKey;
};

/// Towards zero; within the bounds of a charstring's integers, 0 for NaN.
inline std::int32_t ToInteger(double value) {
    constexpr double kMost = std::numeric_limits<std::int32_t>::max();
    return std::isnan(value) ? 0 : static_cast<std::int32_t>(std::clamp(value, -kMost, kMost));
}

/// Writes an integer of a charstring (Adobe Type 1 Font Format, 6.2), at most five bytes. Answers
/// the end.
inline std::uint8_t* PutInteger(std::uint8_t* out, std::int32_t value) {
    const auto byte = [](std::int32_t bits) { return static_cast<std::uint8_t>(bits & 0xFF); };
    if (value >= -107 && value <= 107) {
        *out++ = byte(value + 139);
    } else if (value >= 108 && value <= 1131) {
        *out++ = byte(247 + ((value - 108) >> 8));
        *out++ = byte(value - 108);
    } else if (value >= -1131 && value <= -108) {
        *out++ = byte(251 + ((-value - 108) >> 8));
        *out++ = byte(-value - 108);
    } else {
        *out++ = 255;
        for (int shift = 24; shift >= 0; shift -= 8) {
            *out++ = byte(value >> shift);
        }
    }
    return out;
}

/// An encrypted charstring that grows.
class T1CharString {
public:
    /// No charstring grows beyond this many bytes.
    static constexpr std::size_t kMostBytes = std::size_t{1} << 20U;

    /// Begins again, with room for a short one. False without memory.
    bool Begin();

    /// Encrypts the bytes. False where it becomes too much: nothing is left then, and nothing more
    /// is taken.
    bool Append(std::span<const std::uint8_t> bytes) {
        if (mBytes.size() - mSize < bytes.size() && !Grow(bytes.size())) {
            return false;
        }
        mCipher.Encrypt(bytes, mBytes.data() + mSize);
        mSize += bytes.size();
        return true;
    }

    /// Nothing is left, and nothing more is taken.
    void GiveUp();

    [[nodiscard]] bool IsGivenUp() const { return mIsGivenUp; }

    [[nodiscard]] std::span<const std::uint8_t> Get() const { return {mBytes.data(), mSize}; }

    static constexpr std::size_t kFirstRoom = 256;

private:
    bool Grow(std::size_t count);

    /// The room; `mSize` bytes of it are in use.
    std::vector<std::uint8_t> mBytes;
    std::size_t mSize = 0;
    Type1Cipher mCipher{Type1Cipher::kCharStringKey};
    bool mIsGivenUp = false;
};

/// Records the outline that a glyph plays as an encrypted Type 1 charstring without leading random
/// bytes (Adobe Type 1 Font Format, chapter 6). Coordinates arrive in ems.
class T1CharStringConnectionspace : public GRAPHICS::DelegateConnectionSpace {
public:
    /// `advanceWidth` in ems; `scale` is the charstring's units for each em.
    T1CharStringConnectionspace(float advanceWidth, float scale);

    /// Plays a glyph; one without points has a width alone. False where it cannot be drawn whole.
    bool Record(const GRAPHICS::IGlyphRecording& glyph);

    void NewPath() override;
    void MoveTo(float x, float y) override;
    void LineTo(const float* points, std::int32_t count) override;
    void QuadCurveTo(const float* points, std::int32_t count) override;
    void CurveTo(const float* points, std::int32_t count) override;
    void ClosePath() override;
    void ResetPath() override;

    /// What was recorded; empty when nothing was, or when it became too much (logged).
    [[nodiscard]] std::span<const std::uint8_t> GetCharString() const { return mCharString.Get(); }

private:
    struct Point {
        float x = 0;
        float y = 0;
    };

    void CurveThrough(Point control1, Point control2, Point end);
    void Append(std::initializer_list<double> operands, std::uint8_t command);
    /// Ems to units of the charstring.
    [[nodiscard]] double Scaled(float from, float to) const;

    T1CharString mCharString;
    float mAdvanceWidth;
    float mScale;
    Point mCurrent;
};

}  // namespace VANTIX::PS
