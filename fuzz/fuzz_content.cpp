// SPDX-License-Identifier: MIT
#include <cstdint>
#include <string_view>

#include "pdf/contentparser.h"

namespace {

/// Reads every byte that the parser lends, so that a view out of bounds is seen.
std::size_t Touch(std::string_view text) {
    std::size_t sum = 0;
    for (const char byte : text) {
        sum += static_cast<unsigned char>(byte);
    }
    return sum;
}

}  // namespace

/// Splits any bytes into operators.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace VANTIX::PDF;
    const std::string content(data, data + size);
    ContentParser parser(content);
    volatile std::size_t sum = 0;
    while (parser.Next()) {
        sum = sum + Touch(parser.Operator());
        for (const Operand& operand : parser.Operands()) {
            sum = sum + Touch(operand.text);
            if (operand.kind == OperandKind::kName) {
                sum = sum + DecodeName(operand.text).size();
            }
        }
        if (parser.Operator() == "ID") {
            parser.TakeInlineImage(size % 7);
        }
    }
    return 0;
}
