// SPDX-License-Identifier: MIT
#include "pdf/textpieces.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "pdf/fonts/fonts.h"
#include "pdf/objects.h"

namespace VANTIX::PDF {

namespace {

// Strings and arrays of this length are taken by all interpreters.
constexpr std::size_t kMaxPiece = 255;

constexpr double kTolerance = 0.01;  // ems

constexpr char kSpace = ' ';

// Beyond these sizes the numbers of interpreters run over.
constexpr double kLargestSize = 1e6;
constexpr double kSmallestArea = 1e-12;

bool IsUsable(const std::array<double, 4>& em) {
    const double area = std::abs(em[0] * em[3] - em[1] * em[2]);
    return area >= kSmallestArea &&
           std::all_of(em.begin(), em.end(), [](double v) { return std::abs(v) <= kLargestSize; });
}

// As "%.3g" writes it.
double RoundToThreeDigits(double value) {
    if (value == 0.0) {
        return 0.0;
    }
    const double unit = std::pow(10.0, std::floor(std::log10(std::abs(value))) - 2.0);
    return std::round(value / unit) * unit;
}

// Adds up what rounding moves the glyphs along one direction of user space.
class Rounding {
public:
    Rounding(const TextPlace& place, std::size_t direction)
        : mFactor(static_cast<double>(place.selection.linear[direction])) {}

    double Add(double advance) {
        const double exact = advance * mFactor;
        mSum += RoundToThreeDigits(exact) - exact;
        return mSum;
    }

private:
    double mFactor;
    double mSum = 0.0;
};

// The characters of host text.
struct Characters {
    const HOST::DocumentFont& font;
    std::string_view text;

    [[nodiscard]] std::size_t Count() const { return text.size() / font.CodeBytes(); }

    std::uint16_t operator[](std::size_t index) const {
        const auto byte = [this](std::size_t i) {
            return static_cast<unsigned>(static_cast<std::uint8_t>(text[i]));
        };
        return static_cast<std::uint16_t>(
            font.CodeBytes() == 1 ? byte(index) : byte(2 * index) << 8U | byte(2 * index + 1));
    }

    // Whether word spacing follows the character.
    [[nodiscard]] bool IsSpace(std::size_t index) const {
        return font.CodeBytes() == 1 && text[index] == kSpace;
    }
};

// Each glyph's own advance goes out, in three digits. Interpreters take them for vertical ones,
// too, where the first glyph has none, which therefore stands alone.
std::size_t PositionedCount(const TextPlace& place, const Characters& characters,
                            const std::array<float, kMaxPiece>& advances) {
    const SelectedFont& selection = place.selection;
    const std::size_t direction = characters.font.IsVertical() ? 2 : 0;
    if (advances[0] == 0.0F && selection.linear.at(direction + 1) != 0.0F) {
        return 1;
    }
    Rounding x(place, direction);
    Rounding y(place, direction + 1);
    const double tolerance = kTolerance * static_cast<double>(selection.size) *
                             std::hypot(static_cast<double>(selection.linear.at(direction)),
                                        static_cast<double>(selection.linear.at(direction + 1)));
    for (std::size_t i = 0; i < characters.Count(); ++i) {
        const double advance =
            static_cast<double>(direction == 0 ? std::abs(advances[i]) : advances[i]) *
                static_cast<double>(selection.size) +
            static_cast<double>(place.charSpacing) +
            (characters.IsSpace(i) ? static_cast<double>(place.wordSpacing) : 0.0);
        const double dx = x.Add(advance);
        const double dy = y.Add(advance);
        if (std::hypot(dx, dy) > tolerance) {
            return i + 1;
        }
    }
    return characters.Count();
}

// The font's own advances count: up to where they lead away.
std::size_t DriftCount(const Characters& characters) {
    double drift = 0.0;
    for (std::size_t i = 0; i < characters.Count(); ++i) {
        const std::uint16_t code = characters[i];
        const std::optional<float> written = characters.font.WrittenAdvanceAt(code);
        drift += static_cast<double>(written.value_or(0.0F) - characters.font.AdvanceAt(code));
        if (!written || std::abs(drift) > kTolerance) {
            return i + 1;
        }
    }
    return characters.Count();
}

}  // namespace

std::optional<TextPlace> Place(const TextState& text, const std::array<double, 6>& matrix) {
    const auto size = static_cast<double>(text.size);
    const auto scaling = static_cast<double>(text.scaling);
    const auto rise = static_cast<double>(text.rise);
    const std::array<double, 4> linear = {scaling * matrix[0], scaling * matrix[1], matrix[2],
                                          matrix[3]};
    std::array<double, 4> em{};
    std::transform(linear.begin(), linear.end(), em.begin(), [&](double v) { return v * size; });
    if (!IsUsable(em)) {
        return std::nullopt;
    }
    const bool isUpright =
        em[1] == 0.0 && em[2] == 0.0 && ToFloat(em[0]) == ToFloat(em[3]) && em[0] >= 1.0;
    const double handedSize = isUpright ? em[0] : std::max(size, 1.0);
    const double unit = size / handedSize;  // of the matrix that is handed over, in text space
    TextPlace place;
    place.selection.font = text.font;
    place.selection.size = ToFloat(handedSize);
    if (!isUpright) {
        std::transform(linear.begin(), linear.end(), place.selection.linear.begin(),
                       [&](double v) { return ToFloat(v * unit); });
    }
    place.origin = {ToFloat(matrix[4] + rise * matrix[2]), ToFloat(matrix[5] + rise * matrix[3])};
    place.charSpacing = ToFloat(static_cast<double>(text.charSpacing) / unit);
    place.wordSpacing = ToFloat(static_cast<double>(text.wordSpacing) / unit);
    return place;
}

double AdvanceOf(const TextState& text, std::string_view codes) {
    const Characters characters{*text.font->handler, codes};
    double ems = 0.0;
    double spaces = 0.0;
    for (std::size_t i = 0; i < characters.Count(); ++i) {
        ems += static_cast<double>(characters.font.AdvanceAt(characters[i]));
        spaces += characters.IsSpace(i) ? 1.0 : 0.0;
    }
    return (ems * static_cast<double>(text.size) +
            static_cast<double>(characters.Count()) * static_cast<double>(text.charSpacing) +
            spaces * static_cast<double>(text.wordSpacing)) *
           ScalingAlong(text);
}

double ScalingAlong(const TextState& text) {
    const bool isVertical = text.font != nullptr && text.font->handler->IsVertical();
    return isVertical ? 1.0 : static_cast<double>(text.scaling);
}

std::size_t PieceLength(const TextPlace& place, std::string_view codes) {
    const Font& font = *place.selection.font;
    const std::size_t step = font.handler->CodeBytes();
    codes = codes.substr(0, kMaxPiece / step * step);
    const Characters characters{*font.handler, codes};
    std::array<float, kMaxPiece> horizontal{};
    std::array<float, kMaxPiece> vertical{};
    auto count = static_cast<std::int32_t>(kMaxPiece);
    const bool isPositioned =
        !font.isResident &&
        font.handler->GetAdvances(codes.data(), static_cast<std::int32_t>(codes.size()),
                                  horizontal.data(), vertical.data(), &count) &&
        count == static_cast<std::int32_t>(characters.Count());
    const auto& advances = font.handler->IsVertical() ? vertical : horizontal;
    return step *
           (isPositioned ? PositionedCount(place, characters, advances) : DriftCount(characters));
}

}  // namespace VANTIX::PDF
