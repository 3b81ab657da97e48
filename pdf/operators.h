// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "pdf/contentinterpreter.h"

namespace VANTIX::PDF {

/// All operators of page content (PDF Reference, appendix A).
struct Operators {
    using CI = ContentInterpreter;

    struct Entry {
        std::string_view name;
        std::size_t numbers;  ///< operands that must be numbers; a handler of others takes them
        void (CI::*handler)(const float*);
    };

    static constexpr auto kEntries = std::to_array<Entry>({
        // Graphics state
        {"q", 0, &CI::SaveLevel},
        {"Q", 0, &CI::RestoreLevel},
        {"cm", 6, &CI::ConcatMatrix},
        {"w", 1, &CI::LineWidth},
        {"J", 1, &CI::LineCap},
        {"j", 1, &CI::LineJoin},
        {"M", 1, &CI::MiterLimit},
        {"d", 0, &CI::Dash},
        {"ri", 0, &CI::RenderingIntent},
        {"i", 1, &CI::Flatness},
        {"gs", 0, &CI::GraphicsStateDictionary},
        // Paths
        {"m", 2, &CI::MoveTo},
        {"l", 2, &CI::LineTo},
        {"c", 6, &CI::CurveTo},
        {"v", 4, &CI::CurveFromCurrent},
        {"y", 4, &CI::CurveToEnd},
        {"h", 0, &CI::ClosePath},
        {"re", 4, &CI::Rectangle},
        {"S", 0, &CI::PaintPath<CI::kStroke>},
        {"s", 0, &CI::PaintPath<CI::kClose | CI::kStroke>},
        {"f", 0, &CI::PaintPath<CI::kFill>},
        {"F", 0, &CI::PaintPath<CI::kFill>},
        {"f*", 0, &CI::PaintPath<CI::kFill | CI::kEvenOdd>},
        {"B", 0, &CI::PaintPath<CI::kFill | CI::kStroke>},
        {"B*", 0, &CI::PaintPath<CI::kFill | CI::kEvenOdd | CI::kStroke>},
        {"b", 0, &CI::PaintPath<CI::kClose | CI::kFill | CI::kStroke>},
        {"b*", 0, &CI::PaintPath<CI::kClose | CI::kFill | CI::kEvenOdd | CI::kStroke>},
        {"n", 0, &CI::PaintPath<0>},
        {"W", 0, &CI::ClipNonZero},
        {"W*", 0, &CI::ClipEvenOdd},
        // Colour
        {"CS", 0, &CI::ColorSpace<false>},
        {"cs", 0, &CI::ColorSpace<true>},
        {"SC", 0, &CI::Color<false>},
        {"SCN", 0, &CI::Color<false>},
        {"sc", 0, &CI::Color<true>},
        {"scn", 0, &CI::Color<true>},
        {"G", 1, &CI::DeviceColor<false, 0>},
        {"g", 1, &CI::DeviceColor<true, 0>},
        {"RG", 3, &CI::DeviceColor<false, 1>},
        {"rg", 3, &CI::DeviceColor<true, 1>},
        {"K", 4, &CI::DeviceColor<false, 2>},
        {"k", 4, &CI::DeviceColor<true, 2>},
        {"sh", 0, &CI::FillShading},
        // XObjects, images, marked content
        {"Do", 0, &CI::XObject},
        {"BI", 0, &CI::Ignore},
        {"ID", 0, &CI::InlineImage},
        {"EI", 0, &CI::Ignore},
        {"MP", 0, &CI::Ignore},
        {"DP", 0, &CI::Ignore},
        {"BMC", 0, &CI::BeginMark},
        {"BDC", 0, &CI::BeginMarkWithProperties},
        {"EMC", 0, &CI::EndMark},
        {"BX", 0, &CI::BeginCompatibility},
        {"EX", 0, &CI::EndCompatibility},
        // Text
        {"BT", 0, &CI::BeginText},
        {"ET", 0, &CI::EndText},
        {"Tc", 1, &CI::TextNumber<&TextState::charSpacing>},
        {"Tw", 1, &CI::TextNumber<&TextState::wordSpacing>},
        {"Tz", 1, &CI::HorizontalScaling},
        {"TL", 1, &CI::TextNumber<&TextState::leading>},
        {"Tf", 0, &CI::SelectFont},
        {"Tr", 1, &CI::RenderingMode},
        {"Ts", 1, &CI::TextNumber<&TextState::rise>},
        {"Td", 2, &CI::MoveLine},
        {"TD", 2, &CI::MoveLineWithLeading},
        {"Tm", 6, &CI::TextMatrix},
        {"T*", 0, &CI::NextLine},
        {"Tj", 0, &CI::ShowString},
        {"TJ", 0, &CI::ShowStrings},
        {"'", 0, &CI::ShowStringOnNextLine},
        {"\"", 0, &CI::ShowStringWithSpacing},
        // Type 3 glyph descriptions: known before they are played, and without meaning elsewhere
        {"d0", 0, &CI::Ignore},
        {"d1", 0, &CI::Ignore},
    });
};

/// Operators are found by a perfect hash of their characters, made when this is compiled.
namespace OPERATORHASH {

inline constexpr std::size_t kCount = Operators::kEntries.size();
inline constexpr std::size_t kMaxLength = 3;
inline constexpr unsigned kBits = 10;
using Table = std::array<std::uint8_t, std::size_t{1} << kBits>;

constexpr std::uint32_t Pack(std::string_view name) {
    std::uint32_t code = 0;
    for (const char c : name) {
        code = (code << 8U) | static_cast<unsigned char>(c);
    }
    return code;
}

constexpr std::size_t Hash(std::uint32_t code, std::uint32_t multiplier) {
    return (code * multiplier) >> (32U - kBits);
}

inline constexpr std::array<std::uint32_t, kCount> kCodes = [] {
    std::array<std::uint32_t, kCount> codes{};
    for (std::size_t i = 0; i < kCount; ++i) {
        codes[i] = Pack(Operators::kEntries[i].name);
    }
    return codes;
}();

// The first factor under which no two operators meet in a slot.
inline constexpr std::uint32_t kMultiplier = [] {
    for (std::uint32_t candidate = 0x9E3779B1U;; candidate += 2) {
        std::array<bool, std::tuple_size_v<Table>> taken{};
        bool perfect = true;
        for (std::size_t i = 0; perfect && i < kCount; ++i) {
            bool& slot = taken[Hash(kCodes[i], candidate)];
            perfect = !slot;
            slot = true;
        }
        if (perfect) {
            return candidate;
        }
    }
}();

inline constexpr Table kTable = [] {
    Table table{};
    for (std::size_t i = 0; i < kCount; ++i) {
        table[Hash(kCodes[i], kMultiplier)] = static_cast<std::uint8_t>(i);
    }
    return table;
}();

}  // namespace OPERATORHASH

/// Null for what is no operator.
inline const Operators::Entry* FindOperator(std::string_view name) {
    if (name.size() > OPERATORHASH::kMaxLength) {
        return nullptr;
    }
    const std::uint32_t code = OPERATORHASH::Pack(name);
    const std::uint8_t index =
        OPERATORHASH::kTable[OPERATORHASH::Hash(code, OPERATORHASH::kMultiplier)];
    return OPERATORHASH::kCodes[index] == code ? &Operators::kEntries[index] : nullptr;
}

}  // namespace VANTIX::PDF
