// SPDX-License-Identifier: MIT
#include "host/color/identifiers.h"

#include <bit>
#include <map>
#include <mutex>
#include <set>

#include "core/types.h"

namespace VANTIX::HOST {

namespace {

/// Spreads every bit of `x` over the whole word.
std::uint64_t Mix(std::uint64_t x) {
    x = (x ^ (x >> 33U)) * 0xFF51AFD7ED558CCDU;
    x = (x ^ (x >> 33U)) * 0xC4CEB9FE1A85EC53U;
    return x ^ (x >> 33U);
}

/// First words given so far. The plug-in keys its graphics state by them and by families' codes.
class WordRegistry {
public:
    std::uint32_t WordFor(const GUID& digest) {
        const std::lock_guard lock(mMutex);
        const auto known = mWords.find(digest);
        if (known != mWords.end()) {
            return known->second;
        }
        std::uint32_t word = digest.Data1 & kMask;
        while (word == 0 || !mTaken.insert(word).second) {
            word = (word + 1) & kMask;
        }
        mWords.emplace(digest, word);
        return word;
    }

private:
    static constexpr std::uint32_t kMask = 0x7FFFFFFF;

    std::mutex mMutex;
    std::map<GUID, std::uint32_t> mWords;
    std::set<std::uint32_t> mTaken{"gray"_cc, "rgb "_cc, "cmyk"_cc, "cgry"_cc,
                                   "crgb"_cc, "clab"_cc, "RGST"_cc, "None"_cc};
};

}  // namespace

void Digest::AddByte(std::uint8_t byte) {
    mFirst = (mFirst ^ byte) * 0x100000001B3U;
    mSecond = std::rotl(mSecond + byte, 23) * 0x9E3779B97F4A7C15U;
}

Digest& Digest::Add(std::span<const std::uint8_t> bytes) {
    Add(static_cast<std::uint32_t>(bytes.size()));
    for (const std::uint8_t byte : bytes) {
        AddByte(byte);
    }
    return *this;
}

Digest& Digest::Add(std::string_view text) {
    Add(static_cast<std::uint32_t>(text.size()));
    for (const char c : text) {
        AddByte(static_cast<std::uint8_t>(c));
    }
    return *this;
}

Digest& Digest::Add(std::span<const float> values) {
    Add(static_cast<std::uint32_t>(values.size()));
    for (const float value : values) {
        Add(std::bit_cast<std::uint32_t>(value));
    }
    return *this;
}

Digest& Digest::Add(std::uint32_t value) {
    for (std::uint32_t shift = 0; shift < 32; shift += 8) {
        AddByte(static_cast<std::uint8_t>(value >> shift));
    }
    return *this;
}

Digest& Digest::Add(const GUID& identifier) {
    for (const std::uint32_t word : identifier.Words()) {
        Add(word);
    }
    return *this;
}

Digest& Digest::Add(const COLOR::IColorFunction* function) {
    if (function == nullptr) {
        return Add("no function");
    }
    const auto inputs = static_cast<std::size_t>(function->GetInputCount());
    const auto outputs = static_cast<std::size_t>(function->GetOutputCount());
    const auto addFloats = [this](const float* values, std::size_t count) {
        Add(std::span(values, values == nullptr ? 0 : count));
    };
    addFloats(function->GetDomain(), 2 * inputs);
    addFloats(function->GetRange(), 2 * outputs);
    if (const auto* exponential =
            FindInterface<COLOR::IExponentialFunction>(function, COLOR::IID_IEXPONENTIALFUNCTION)) {
        addFloats(exponential->GetC0(), outputs);
        addFloats(exponential->GetC1(), outputs);
        return Add(std::bit_cast<std::uint32_t>(exponential->GetExponent()));
    }
    if (const auto* stitching =
            FindInterface<COLOR::IStitchingFunction>(function, COLOR::IID_ISTITCHINGFUNCTION)) {
        const std::int32_t count = stitching->GetFunctionCount();
        addFloats(stitching->GetBounds(), static_cast<std::size_t>(count - 1));
        for (std::int32_t i = 0; i < count; ++i) {
            float encode[2] = {};
            stitching->GetEncode(i, encode[0], encode[1]);
            Add(std::span<const float>(encode)).Add(stitching->GetFunction(i));
        }
        return *this;
    }
    if (const auto* sampled =
            FindInterface<COLOR::ISampledFunction>(function, COLOR::IID_ISAMPLEDFUNCTION)) {
        for (std::size_t i = 0; i < inputs; ++i) {
            Add(static_cast<std::uint32_t>(sampled->GetSizes()[i]));
        }
        addFloats(sampled->GetEncode(), 2 * inputs);
        addFloats(sampled->GetDecode(), 2 * outputs);
        return Add(static_cast<std::uint32_t>(sampled->GetBitsPerSample()))
            .Add(std::span<const std::uint8_t>(sampled->GetSamples()));
    }
    if (const auto* calculator =
            FindInterface<COLOR::ICalculatorFunction>(function, COLOR::IID_ICALCULATORFUNCTION)) {
        return Add(std::string_view(calculator->GetProgram()));
    }
    const auto* array = FindInterface<COLOR::IFunctionArray>(function, COLOR::IID_IFUNCTIONARRAY);
    for (std::int32_t i = 0; array != nullptr && i < array->GetFunctionCount(); ++i) {
        Add(array->GetFunction(i));
    }
    return *this;
}

GUID Digest::Identifier() const {
    static WordRegistry registry;
    const std::uint64_t first = Mix(mFirst);
    const std::uint64_t second = Mix(mSecond ^ first);
    GUID identifier;
    identifier.Data1 = static_cast<std::uint32_t>(first >> 32U);
    identifier.Data2 = static_cast<std::uint16_t>(first >> 16U);
    identifier.Data3 = static_cast<std::uint16_t>(first);
    identifier.Data4 = std::bit_cast<std::array<std::uint8_t, 8>>(second);
    identifier.Data1 = registry.WordFor(identifier);
    return identifier;
}

}  // namespace VANTIX::HOST
