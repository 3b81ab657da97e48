// SPDX-License-Identifier: MIT
#include "truetypetot1conversionutils.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <exception>

#include "core/libsupport/vlogger/logmessage.h"

namespace VANTIX::PS {
namespace {

constexpr const char* kModule = "src/truetypetot1conversionutils";
/// Six operands of at most eight bytes, and a command.
constexpr std::size_t kLongestCommand = 6 * 8 + 1;
/// With more units than this for each em, coordinates are whole.
constexpr float kFractionalScale = 1000;
/// Coordinates come in single precision: what they are off by, in ten thousandths of an em.
constexpr double kNoise = 1.0 / 256;

enum Command : std::uint8_t {
    kRLineTo = 5,
    kRRCurveTo = 8,
    kClosePath = 9,
    kEscape = 12,
    kHsbw = 13,
    kEndChar = 14,
    kRMoveTo = 21,
};

constexpr std::uint8_t kDiv = 12;  // behind kEscape

/// Away from zero by what it may lack of its true value.
double WithoutNoise(double value) {
    return value + std::copysign(kNoise, value);
}

/// With one decimal place, cut towards zero, by "div".
std::uint8_t* PutFraction(std::uint8_t* out, double value) {
    const double whole = std::round(value);
    if (!(std::abs(value - whole) > kNoise / 10)) {
        return PutInteger(out, ToInteger(whole));
    }
    out = PutInteger(out, ToInteger(WithoutNoise(value * 10)));
    out = PutInteger(out, 10);
    *out++ = kEscape;
    *out++ = kDiv;
    return out;
}

}  // namespace

bool T1CharString::Begin() {
    mSize = 0;
    mCipher = Type1Cipher(Type1Cipher::kCharStringKey);
    mIsGivenUp = false;
    return mBytes.size() >= kFirstRoom || Grow(0);
}

bool T1CharString::Grow(std::size_t count) {
    const std::size_t size = mSize + count;
    try {
        if (mIsGivenUp || size > kMostBytes) {
            throw std::bad_alloc();
        }
        mBytes.resize(std::max({size, kFirstRoom, 2 * mBytes.size()}));
    } catch (const std::exception&) {
        GiveUp();
    }
    return !mIsGivenUp;
}

void T1CharString::GiveUp() {
    mBytes.clear();
    mSize = 0;
    mIsGivenUp = true;
}

T1CharStringConnectionspace::T1CharStringConnectionspace(float advanceWidth, const float scale)
    : mAdvanceWidth(advanceWidth), mScale(scale) {}

double T1CharStringConnectionspace::Scaled(float from, float to) const {
    return (static_cast<double>(to) - static_cast<double>(from)) * static_cast<double>(mScale);
}

bool T1CharStringConnectionspace::Record(const GRAPHICS::IGlyphRecording& glyph) {
    if (glyph.GetPointCount() != 0) {
        return glyph.Play(*this);
    }
    NewPath();
    ResetPath();
    return true;
}

void T1CharStringConnectionspace::NewPath() {
    Append({0, Scaled(0, mAdvanceWidth)}, kHsbw);
}

void T1CharStringConnectionspace::MoveTo(float x, float y) {
    Append({Scaled(mCurrent.x, x), Scaled(mCurrent.y, y)}, kRMoveTo);
    mCurrent = {x, y};
}

void T1CharStringConnectionspace::LineTo(const float* points, std::int32_t count) {
    for (std::int32_t i = 0; i < count; ++i, points += 2) {
        Append({Scaled(mCurrent.x, points[0]), Scaled(mCurrent.y, points[1])}, kRLineTo);
        mCurrent = {points[0], points[1]};
    }
}

void T1CharStringConnectionspace::CurveTo(const float* points, std::int32_t count) {
    for (std::int32_t i = 0; i < count; ++i, points += 6) {
        CurveThrough({points[0], points[1]}, {points[2], points[3]}, {points[4], points[5]});
    }
}

void T1CharStringConnectionspace::QuadCurveTo(const float* points, std::int32_t count) {
    constexpr float kThird = 0.33333334F;
    for (std::int32_t i = 0; i < count; ++i, points += 4) {
        const Point twice = {2 * points[0], 2 * points[1]};
        const Point end = {points[2], points[3]};
        CurveThrough({(twice.x + mCurrent.x) * kThird, (twice.y + mCurrent.y) * kThird},
                     {(twice.x + end.x) * kThird, (twice.y + end.y) * kThird}, end);
    }
}

void T1CharStringConnectionspace::CurveThrough(Point control1, Point control2, Point end) {
    Append({Scaled(mCurrent.x, control1.x), Scaled(mCurrent.y, control1.y),
            Scaled(control1.x, control2.x), Scaled(control1.y, control2.y),
            Scaled(control2.x, end.x), Scaled(control2.y, end.y)},
           kRRCurveTo);
    mCurrent = end;
}

void T1CharStringConnectionspace::ClosePath() {
    Append({}, kClosePath);
}

void T1CharStringConnectionspace::ResetPath() {
    Append({}, kEndChar);
}

void T1CharStringConnectionspace::Append(std::initializer_list<double> operands,
                                         std::uint8_t command) {
    std::array<std::uint8_t, kLongestCommand> bytes;
    std::uint8_t* end = bytes.data();
    for (const double operand : operands) {
        end = mScale > kFractionalScale
                  ? PutInteger(end, ToInteger(std::round(WithoutNoise(operand))))
                  : PutFraction(end, operand);
    }
    *end++ = command;
    const bool wasWhole = !mCharString.IsGivenUp();
    const std::size_t size =
        mCharString.Get().size() + static_cast<std::size_t>(end - bytes.data());
    if (!mCharString.Append({bytes.data(), end}) && wasWhole) {
        LogError(kModule) << "Unable to get heap memory for " << size << "bytes";
    }
}

}  // namespace VANTIX::PS
