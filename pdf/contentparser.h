// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace VANTIX::PDF {

enum class OperandKind : std::uint8_t {
    kNumber,
    kName,
    kString,
    kHexString,
    kArray,
    kDictionary,
    kOther  ///< true, false, null
};

/// One operand as it stands in the content. Arrays and dictionaries are followed in the list by
/// their `extent` operands of all depths.
struct Operand {
    OperandKind kind = OperandKind::kOther;
    std::uint32_t extent = 0;
    double number = 0.0;
    std::string_view text;  ///< raw bytes of a name (without slash), string (without delimiters)
};

/// Splits decoded content into operators with their operands (PDF Reference, 3.7.1). Keeps views of
/// the content; storage is used again from operator to operator.
class ContentParser {
public:
    static constexpr std::size_t kMaxOperands = 65536;
    static constexpr std::size_t kMaxNesting = 64;

    /// `content` must outlive the parser. More may follow it unless it is complete.
    explicit ContentParser(std::string_view content, bool isComplete = true)
        : mContent(content), mIsComplete(isComplete) {}

    /// Goes on to the next operator; false at the end of the content. Operands without an operator
    /// are dropped there. An operator that what follows may change, and an inline image, wait for
    /// the complete content.
    bool Next();

    /// Bytes of the content that are done with; what follows them waits.
    [[nodiscard]] std::size_t Consumed() const { return mConsumed; }

    [[nodiscard]] std::string_view Operator() const { return mOperator; }

    [[nodiscard]] const std::vector<Operand>& Operands() const { return mOperands; }

    /// Whether the operands are all plain: no arrays and dictionaries among them.
    [[nodiscard]] bool OperandsAreFlat() const { return mFlat; }

    /// After the operator ID: steps over the image data and their EI, and answers the data.
    /// `length` is the number of their bytes, or 0 when it is not known and EI has to be searched
    /// for.
    std::string_view TakeInlineImage(std::size_t length);

    /// The text from the first operand, a name, to the operator; empty when it is none.
    [[nodiscard]] std::string_view OperandText() const;

private:
    void SkipSpace();
    bool ReadOperand(char first);
    void ReadNumberOrKeyword();
    void ReadName();
    void ReadString();
    void ReadHexString();
    void Open(OperandKind kind);
    void Close(OperandKind kind);
    void Add(OperandKind kind, double number, std::string_view text);
    std::string_view TakeRegular();
    [[nodiscard]] bool IsEndOfImage(std::size_t position) const;

    std::string_view mContent;
    bool mIsComplete;
    std::size_t mPosition = 0;
    std::size_t mConsumed = 0;
    std::string_view mOperator;
    std::vector<Operand> mOperands;
    std::vector<std::size_t> mOpen;  // indices of the containers not yet closed
    std::size_t mTooDeep = 0;        // containers open beyond the limit of nesting
    bool mFlat = true;
};

/// The number that `text` spells in the forgiving way of PDF readers: doubled signs and whatever
/// follows a second dot are passed over. False when it is no number at all.
bool ParseNumber(std::string_view text, double& value);

/// A name with its #xx codes resolved.
std::string DecodeName(std::string_view raw);

}  // namespace VANTIX::PDF
