// SPDX-License-Identifier: MIT
#include "pdf/fonts/cmap.h"

#include <algorithm>
#include <optional>
#include <span>

#include "pdf/contentparser.h"
#include "pdf/fonts/stringoperand.h"

namespace VANTIX::PDF {

namespace {

constexpr std::uint32_t kLastCID = 0xFFFF;
/// Each is looked at for each code.
constexpr std::size_t kMostSpaces = 256;

using Operands = std::span<const Operand>;

std::uint32_t ValueOf(std::string_view bytes) {
    std::uint32_t value = 0;
    for (const char byte : bytes) {
        value = value << 8U | static_cast<unsigned char>(byte);
    }
    return value;
}

std::optional<CharCode> CodeOf(const Operand& operand) {
    const std::string bytes = BytesOf(operand);
    if (bytes.empty() || bytes.size() > CMap::kMostCodeBytes) {
        return std::nullopt;
    }
    return CharCode{ValueOf(bytes), static_cast<std::uint32_t>(bytes.size())};
}

std::optional<std::uint32_t> CIDOf(const Operand& operand) {
    const bool isCID = operand.kind == OperandKind::kNumber && operand.number >= 0.0 &&
                       operand.number <= static_cast<double>(kLastCID);
    return isCID ? std::optional(static_cast<std::uint32_t>(operand.number)) : std::nullopt;
}

}  // namespace

/// Takes a CMap in, operator by operator.
class CMapReader {
public:
    CMapReader(CMap& result, const FindCMap& find, bool hasBase)
        : mResult(result), mFind(find), mHasBase(hasBase) {}

    void Execute(std::string_view name, Operands operands);

    [[nodiscard]] bool HasCIDs() const { return mHasCIDs || mHasBase; }

private:
    using Ranges = std::array<RangeMap<std::uint32_t>, CMap::kMostCodeBytes>;

    void UseBase(const Operand& name);
    void Define(const Operand& key, const Operand& value);
    void AddSpaces(Operands operands);
    void AddCharacters(Operands operands, Ranges& ranges);
    void AddRanges(Operands operands, Ranges& ranges);
    void Assign(Ranges& ranges, CharCode first, std::uint32_t last, std::uint32_t cid);

    CMap& mResult;
    const FindCMap& mFind;
    bool mHasBase;
    bool mHasCIDs = false;
};

void CMapReader::Execute(std::string_view name, Operands operands) {
    if (name == "endcodespacerange") {
        AddSpaces(operands);
    } else if (name == "endcidchar") {
        AddCharacters(operands, mResult.mCIDs);
    } else if (name == "endcidrange") {
        AddRanges(operands, mResult.mCIDs);
    } else if (name == "endnotdefchar") {
        AddCharacters(operands, mResult.mUndefined);
    } else if (name == "endnotdefrange") {
        AddRanges(operands, mResult.mUndefined);
    } else if (name == "usecmap" && !operands.empty()) {
        UseBase(operands.back());
    } else if (name == "def" && operands.size() >= 2) {
        Define(operands[operands.size() - 2], operands.back());
    }
}

// Only one: work is then bounded by what CMaps start from each other.
void CMapReader::UseBase(const Operand& name) {
    if (mHasBase || mHasCIDs || name.kind != OperandKind::kName) {
        return;
    }
    if (const auto base = mFind(name.text)) {
        mResult = *base;
        mHasBase = true;
    }
}

void CMapReader::Define(const Operand& key, const Operand& value) {
    if (key.kind != OperandKind::kName) {
        return;
    }
    if (key.text == "WMode" && value.kind == OperandKind::kNumber) {
        mResult.mIsVertical = value.number == 1.0;
    } else if (key.text == "Ordering") {
        mResult.mOrdering = BytesOf(value);
    }
}

// <low> <high> …
void CMapReader::AddSpaces(Operands operands) {
    for (std::size_t i = 0; i + 1 < operands.size(); i += 2) {
        const std::string low = BytesOf(operands[i]);
        const std::string high = BytesOf(operands[i + 1]);
        if (low.empty() || low.size() > CMap::kMostCodeBytes || low.size() != high.size() ||
            mResult.mSpaces.size() >= kMostSpaces) {
            continue;
        }
        CMap::CodeSpace& space = mResult.mSpaces.emplace_back();
        space.bytes = low.size();
        std::copy(low.begin(), low.end(), space.low.begin());
        std::copy(high.begin(), high.end(), space.high.begin());
    }
}

// <code> cid …
void CMapReader::AddCharacters(Operands operands, Ranges& ranges) {
    for (std::size_t i = 0; i + 1 < operands.size(); i += 2) {
        const auto code = CodeOf(operands[i]);
        const auto cid = CIDOf(operands[i + 1]);
        if (code && cid) {
            Assign(ranges, *code, code->value, *cid);
        }
    }
}

// <first> <last> cid …
void CMapReader::AddRanges(Operands operands, Ranges& ranges) {
    for (std::size_t i = 0; i + 2 < operands.size(); i += 3) {
        const auto first = CodeOf(operands[i]);
        const auto last = CodeOf(operands[i + 1]);
        const auto cid = CIDOf(operands[i + 2]);
        if (first && last && cid && first->bytes == last->bytes) {
            Assign(ranges, *first, last->value, *cid);
        }
    }
}

void CMapReader::Assign(Ranges& ranges, CharCode first, std::uint32_t last, std::uint32_t cid) {
    ranges.at(first.bytes - 1).Assign(first.value, last, cid);
    mHasCIDs = true;
}

std::size_t CMap::CodeSpace::Matches(std::string_view text) const {
    const std::size_t most = std::min(bytes, text.size());
    for (std::size_t i = 0; i < most; ++i) {
        const auto byte = static_cast<std::uint8_t>(text[i]);
        if (byte < low.at(i) || byte > high.at(i)) {
            return i;
        }
    }
    return most;
}

CMap CMap::Identity(bool isVertical) {
    CMap map;
    map.mSpaces.push_back({2, {}, {0xFF, 0xFF, 0, 0}});
    map.mCIDs[1].Assign(0, kLastCID, 0);
    map.mIsVertical = isVertical;
    return map;
}

CharCode CMap::FirstOf(std::string_view text) const {
    constexpr std::size_t kUsual = 2;
    std::size_t bytes = 0;
    std::size_t matched = 0;
    for (const CodeSpace& space : mSpaces) {
        const std::size_t matches = space.Matches(text);
        const bool isWhole = matches == space.bytes;
        if (isWhole || bytes == 0 || matches > matched ||
            (matches == matched && space.bytes < bytes)) {
            bytes = space.bytes;
            matched = matches;
        }
        if (isWhole) {
            break;
        }
    }
    bytes = std::min(bytes == 0 ? kUsual : bytes, text.size());
    return {ValueOf(text.substr(0, bytes)), static_cast<std::uint32_t>(bytes)};
}

std::uint16_t CMap::CIDOf(CharCode code) const {
    if (const auto* range = mCIDs.at(code.bytes - 1).Find(code.value)) {
        const std::uint32_t distance = code.value - range->origin;
        return distance <= kLastCID - range->value
                   ? static_cast<std::uint16_t>(range->value + distance)
                   : std::uint16_t{0};
    }
    const auto* range = mUndefined.at(code.bytes - 1).Find(code.value);
    return range == nullptr ? std::uint16_t{0} : static_cast<std::uint16_t>(range->value);
}

bool ReadCMap(std::string_view text, const std::shared_ptr<const CMap>& base, const FindCMap& find,
              CMap& result) {
    if (base) {
        result = *base;
    }
    CMapReader reader(result, find, base != nullptr);
    ContentParser parser(text);
    while (parser.Next()) {
        reader.Execute(parser.Operator(), parser.Operands());
    }
    return reader.HasCIDs();
}

}  // namespace VANTIX::PDF
