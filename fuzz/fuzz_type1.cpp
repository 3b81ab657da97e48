// SPDX-License-Identifier: MIT
#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "host/fonts/type1program.h"

namespace {

/// The eexec encryption (Adobe Type 1 Font Format, 7.2): a change of encrypted bytes would garble
/// all that follows, so the inputs hold this part in the clear.
std::string Encrypted(std::string_view plain) {
    std::uint32_t key = 55665;
    std::string cipher;
    for (const char each : plain) {
        const std::uint32_t byte = (static_cast<std::uint8_t>(each) ^ (key >> 8U)) & 0xFFU;
        cipher += static_cast<char>(byte);
        key = ((byte + key) * 52845U + 22719U) & 0xFFFFU;
    }
    return cipher;
}

}  // namespace

/// Reads any bytes as a Type 1 program, then with what follows "eexec" encrypted, and writes it.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using VANTIX::HOST::Type1Program;
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    constexpr std::string_view kMark = "eexec\n";
    const std::size_t split = std::min(input.find(kMark), size - std::min(size, kMark.size())) +
                              std::min(size, kMark.size());
    const std::string encrypted =
        std::string(input.substr(0, split)) + Encrypted("RAND" + std::string(input.substr(split)));
    for (const std::string_view bytes : {input, std::string_view(encrypted)}) {
        std::string problem;
        const auto program = Type1Program::Open({bytes.begin(), bytes.end()}, problem);
        if (program != nullptr) {
            program->Rename("Other");
            program->UseGlyph(program->Encoding()[65]);
            program->UseText((size & 1U) != 0);
            program->Data();
        }
    }
    return 0;
}
