// SPDX-License-Identifier: MIT
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>

#include "core/object/tobject.h"
#include "t2tot1charstringconverter.h"

namespace VANTIX::FUZZ {
namespace {

/// One local and one global subroutine, under all numbers from 0 to 9.
class Subroutines : public TObject<GRAPHICS::ICharStringSubroutines> {
public:
    std::span<const std::uint8_t> local;
    std::span<const std::uint8_t> global;

    std::int32_t GetLocalBias(std::uint16_t /*fontDict*/) const override { return 107; }

    std::int32_t GetGlobalBias() const override { return 107; }

    std::int32_t CopyLocalSubroutine(std::uint16_t /*fontDict*/, std::int32_t number,
                                     std::uint8_t* buffer) const override {
        return Copy(local, number, buffer);
    }

    std::int32_t CopyGlobalSubroutine(std::int32_t number, std::uint8_t* buffer) const override {
        return Copy(global, number, buffer);
    }

private:
    static std::int32_t Copy(std::span<const std::uint8_t> bytes, std::int32_t number,
                             std::uint8_t* buffer) {
        if (number > 9) {
            return 0;
        }
        std::copy(bytes.begin(), bytes.end(), buffer);
        return static_cast<std::int32_t>(bytes.size());
    }
};

/// The first bytes of `data`, whose number comes before them.
std::span<const std::uint8_t> TakePart(std::span<const std::uint8_t>& data) {
    const std::size_t size = data.empty() ? 0 : std::min<std::size_t>(data[0], data.size() - 1);
    const auto part = data.subspan(data.empty() ? 0 : 1, size);
    data = data.subspan(data.empty() ? 0 : 1 + size);
    return part;
}

}  // namespace
}  // namespace VANTIX::FUZZ

/// Converts any bytes as a Type 2 charstring with two subroutines, and reads them as numbers.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace VANTIX;
    std::span<const std::uint8_t> rest(data, size);
    const auto subroutines = MakeObject<FUZZ::Subroutines>();
    subroutines->local = FUZZ::TakePart(rest);
    subroutines->global = FUZZ::TakePart(rest);
    PS::T2ToT1CharStringConverter converter;
    converter.ConvertGlyph({rest.data(), static_cast<std::int32_t>(rest.size()), 500, 600}, 0,
                           subroutines.Get());
    std::int32_t integer = 0;
    float real = 0;
    bool isReal = false;
    for (const std::uint8_t* p = data; p != nullptr && p != data + size;) {
        p = PS::DecodeType2Number(p, data + size, integer, real, isReal);
    }
    return 0;
}
