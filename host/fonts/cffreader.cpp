// SPDX-License-Identifier: MIT
#include "host/fonts/cffreader.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <utility>

#include "host/fonts/cffstandard.h"
#include "host/fonts/glyphnames.h"

namespace VANTIX::HOST {
namespace {

constexpr CffMatrix kThousandths{0.001F, 0, 0, 0.001F, 0, 0};

/// In characters, as PostScript has them.
constexpr std::size_t kLongestName = 127;

/// Numbers one after another; 0 behind the end of the bytes.
class Numbers {
public:
    Numbers(ByteView file, std::size_t offset)
        : mBytes(file.subspan(std::min(offset, file.size()))) {}

    [[nodiscard]] bool AtEnd() const { return mBytes.empty(); }

    std::uint8_t Byte() {
        if (mBytes.empty()) {
            return 0;
        }
        const std::uint8_t byte = mBytes.front();
        mBytes = mBytes.subspan(1);
        return byte;
    }

    std::uint16_t Word() {
        const unsigned high = Byte();
        return static_cast<std::uint16_t>(high << 8U | Byte());
    }

private:
    ByteView mBytes;
};

/// The matrix of a DICT, nothing where it has none that can be used.
std::optional<CffMatrix> MatrixOf(const CffDict& dict) {
    const std::vector<double>* values = dict.Find(CffOperator::kFontMatrix);
    if (values == nullptr || values->size() != 6) {
        return std::nullopt;
    }
    constexpr double kLargest = 1e6;
    CffMatrix matrix{};
    for (std::size_t i = 0; i < matrix.size(); ++i) {
        if (!(std::abs((*values)[i]) < kLargest)) {
            return std::nullopt;
        }
        matrix.at(i) = static_cast<float>((*values)[i]);
    }
    const bool isFlat = matrix[0] * matrix[3] == matrix[1] * matrix[2];
    return isFlat ? std::nullopt : std::optional(matrix);
}

/// First `a`, then `b`.
CffMatrix Product(const CffMatrix& a, const CffMatrix& b) {
    return {a[0] * b[0] + a[1] * b[2],        a[0] * b[1] + a[1] * b[3],
            a[2] * b[0] + a[3] * b[2],        a[2] * b[1] + a[3] * b[3],
            a[4] * b[0] + a[5] * b[2] + b[4], a[4] * b[1] + a[5] * b[3] + b[5]};
}

ByteView Part(ByteView file, std::size_t offset, std::size_t size) {
    return offset > file.size() ? ByteView()
                                : file.subspan(offset, std::min(size, file.size() - offset));
}

/// As long as anything that is read.
std::string TextOf(ByteView bytes) {
    constexpr std::size_t kLongest = 1024;
    const ByteView text = Part(bytes, 0, kLongest);
    return {text.begin(), text.end()};
}

}  // namespace

ByteView FindCff(ByteView file) {
    if (file.size() >= 4 && ReadU32(file, 0) == "OTTO"_cc) {
        return Sfnt(file).Bytes("CFF "_cc);
    }
    return file;
}

bool CffTables::Read(ByteView bytes, std::string& problem) {
    constexpr std::size_t kHeader = 4;
    file = bytes;
    const auto fail = [&](const char* reason) {
        problem = reason;
        return false;
    };
    if (bytes.size() < kHeader || bytes[0] != 1 || bytes[2] < kHeader) {
        return fail("it is no font in CFF");
    }
    nameIndex = bytes[2];
    std::size_t offset = nameIndex;
    CffIndex fontNames;
    CffIndex tops;
    if (!fontNames.Read(bytes, offset) || !tops.Read(bytes, offset)) {
        return fail("its font DICT cannot be read");
    }
    topEnd = offset;
    if (!mStrings.Read(bytes, offset) || !subroutines.Read(bytes, offset)) {
        return fail("its strings or subroutines cannot be read");
    }
    name = TextOf(fontNames[0]);
    top = CffDict(tops[0]);
    std::size_t glyphOffset = top.Offset(CffOperator::kCharStrings);
    if (glyphOffset < offset || !glyphs.Read(bytes, glyphOffset) || glyphs.Count() == 0) {
        return fail("its glyphs cannot be read");
    }
    if (top.Number(CffOperator::kCharstringType, 2) != 2) {
        return fail("its glyphs are of an unknown kind");
    }
    isCidKeyed = top.Find(CffOperator::kRegistryOrdering) != nullptr;
    fontDictOf.assign(glyphs.Count(), 0);
    std::vector<std::uint16_t> charset = ReadCharset();
    if (isCidKeyed) {
        registry = Text(top, CffOperator::kRegistryOrdering, 0);
        ordering = Text(top, CffOperator::kRegistryOrdering, 1);
        cids = std::move(charset);
        ReadFontDicts();
        ReadFontDictSelection();
        return true;
    }
    fontDicts = {ReadFontDict(top)};
    fontDicts[0].name = name;
    std::transform(charset.begin(), charset.end(), std::back_inserter(names),
                   [this](std::uint16_t number) { return String(number).substr(0, kLongestName); });
    names[0] = ".notdef";
    ReadEncoding(charset);
    return true;
}

std::string CffTables::String(std::size_t number) const {
    return number < kCffStandardStrings ? std::string(CffStandardString(number))
                                        : TextOf(mStrings[number - kCffStandardStrings]);
}

std::string CffTables::Text(const CffDict& dict, CffOperator key, std::size_t operand) const {
    constexpr double kMostStrings = 65536;
    const std::vector<double>* values = dict.Find(key);
    if (values == nullptr || operand >= values->size()) {
        return {};
    }
    const double number = (*values)[operand];
    return number >= 0 && number < kMostStrings ? String(static_cast<std::size_t>(number))
                                                : std::string();
}

GRAPHICS::FontBox CffTables::Box() const {
    const std::vector<double>* values = top.Find(CffOperator::kFontBBox);
    if (values == nullptr || values->size() != 4) {
        return {};
    }
    const auto at = [values](std::size_t i) { return static_cast<float>((*values)[i]); };
    return {at(0), at(1), at(2) - at(0), at(3) - at(1)};
}

CffFontDict CffTables::ReadFontDict(const CffDict& dict) const {
    CffFontDict result;
    result.name = Text(dict, CffOperator::kFontName);
    result.matrix = MatrixOf(dict).value_or(kThousandths);
    if (isCidKeyed) {
        if (const auto outer = MatrixOf(top)) {
            result.matrix = MatrixOf(dict) ? Product(result.matrix, *outer) : *outer;
        }
    }
    const std::vector<double>* place = dict.Find(CffOperator::kPrivate);
    if (place == nullptr || place->size() != 2 || !((*place)[0] > 0)) {
        return result;
    }
    const std::size_t offset = dict.Offset(CffOperator::kPrivate);
    const double size = std::min((*place)[0], static_cast<double>(file.size()));
    result.values = CffDict(Part(file, offset, static_cast<std::size_t>(size)));
    result.nominalWidth = result.values.Number(CffOperator::kNominalWidth, 0);
    result.defaultWidth = result.values.Number(CffOperator::kDefaultWidth, 0);
    std::size_t local = result.values.Offset(CffOperator::kSubrs);
    if (local != 0) {
        local += offset;
        result.subroutines.Read(file, local);
    }
    return result;
}

void CffTables::ReadFontDicts() {
    constexpr std::uint32_t kMost = 256;
    std::size_t offset = top.Offset(CffOperator::kFDArray);
    CffIndex dicts;
    if (offset != 0) {
        dicts.Read(file, offset);
    }
    for (std::uint32_t i = 0; i < std::min(dicts.Count(), kMost); ++i) {
        fontDicts.push_back(ReadFontDict(CffDict(dicts[i])));
    }
    if (fontDicts.empty()) {
        fontDicts.push_back(ReadFontDict({}));
    }
}

// Glyphs whose font DICT is not there keep the first one.
void CffTables::ReadFontDictSelection() {
    const std::size_t offset = top.Offset(CffOperator::kFDSelect);
    if (offset == 0) {
        return;
    }
    const auto set = [this](std::size_t glyph, std::uint8_t dict) {
        fontDictOf[glyph] = dict < fontDicts.size() ? dict : std::uint8_t{0};
    };
    Numbers numbers(file, offset);
    const std::uint8_t format = numbers.Byte();
    if (format == 0) {
        for (std::size_t glyph = 0; glyph < fontDictOf.size(); ++glyph) {
            set(glyph, numbers.Byte());
        }
    } else if (format == 3) {
        const unsigned ranges = numbers.Word();
        std::size_t glyph = numbers.Word();
        for (unsigned i = 0; i < ranges && !numbers.AtEnd(); ++i) {
            const std::uint8_t dict = numbers.Byte();
            const std::size_t end = numbers.Word();
            for (; glyph < std::min(end, fontDictOf.size()); ++glyph) {
                set(glyph, dict);
            }
        }
    }
}

std::vector<std::uint16_t> CffTables::ReadCharset() const {
    const std::size_t count = glyphs.Count();
    const std::size_t offset = top.Offset(CffOperator::kCharset);
    std::vector<std::uint16_t> charset;
    if (offset < kCffPredefinedCharsets) {
        charset = isCidKeyed ? charset : CffPredefinedCharset(offset);
        for (std::size_t glyph = 0; isCidKeyed && glyph < count; ++glyph) {
            charset.push_back(static_cast<std::uint16_t>(glyph));
        }
        charset.resize(count);
        return charset;
    }
    Numbers numbers(file, offset);
    const std::uint8_t format = numbers.Byte();
    charset.push_back(0);
    while (charset.size() < count && !numbers.AtEnd() && format <= 2) {
        const std::uint16_t first = numbers.Word();
        const std::size_t more = format == 0 ? 0 : (format == 1 ? numbers.Byte() : numbers.Word());
        for (std::size_t i = 0; i <= more && charset.size() < count; ++i) {
            charset.push_back(static_cast<std::uint16_t>(first + i));
        }
    }
    charset.resize(count);
    return charset;
}

void CffTables::ReadEncoding(const std::vector<std::uint16_t>& charset) {
    const std::size_t offset = top.Offset(CffOperator::kEncoding);
    if (offset > 1) {
        ReadOwnEncoding(offset, charset);
        return;
    }
    const std::array<std::uint16_t, kSimpleCodes> expert = CffExpertEncoding();
    const auto& standard = NamesOf(BaseEncoding::kStandard);
    for (std::size_t code = 0; code < kSimpleCodes; ++code) {
        const std::string_view glyph =
            offset == 0 ? standard.at(code)
                        : (expert.at(code) == 0 ? "" : CffStandardString(expert.at(code)));
        if (!glyph.empty() && std::find(names.begin(), names.end(), glyph) != names.end()) {
            encoding.at(code) = glyph;
        }
    }
}

void CffTables::ReadOwnEncoding(std::size_t offset, const std::vector<std::uint16_t>& charset) {
    constexpr unsigned kHasSupplement = 0x80;
    Numbers numbers(file, offset);
    const unsigned format = numbers.Byte();
    const unsigned count = numbers.Byte();
    std::size_t glyph = 1;
    for (unsigned i = 0; i < count && !numbers.AtEnd(); ++i) {
        const std::size_t code = numbers.Byte();
        const std::size_t more = (format & ~kHasSupplement) == 1 ? numbers.Byte() : 0;
        for (std::size_t next = code; next <= code + more; ++next, ++glyph) {
            if (next < kSimpleCodes && glyph < names.size()) {
                encoding.at(next) = names[glyph];
            }
        }
    }
    const unsigned supplements = (format & kHasSupplement) == 0 ? 0 : numbers.Byte();
    for (unsigned i = 0; i < supplements && !numbers.AtEnd(); ++i) {
        const std::size_t code = numbers.Byte();
        const auto found = std::find(charset.begin(), charset.end(), numbers.Word());
        if (found != charset.end()) {
            encoding.at(code) = names[static_cast<std::size_t>(found - charset.begin())];
        }
    }
}

}  // namespace VANTIX::HOST
