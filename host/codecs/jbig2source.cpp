// SPDX-License-Identifier: MIT
// JBIG2 (ITU-T T.88) as PDF embeds it: segments without a file header (PDF Reference, 3.3.6).
#include <algorithm>
#include <array>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "host/codecs/codecsupport.h"
#include "host/codecs/jbig2halftones.h"
#include "host/codecs/jbig2symbols.h"
#include "host/codecs/linesource.h"

namespace VANTIX::HOST {

namespace JBIG2 {
namespace {

constexpr std::uint32_t kUnknownLength = 0xFFFFFFFF;

/// Types of segments (ITU-T T.88, 7.3).
enum Type : std::uint32_t {
    kSymbols = 0,
    kPatterns = 16,
    kPageInformation = 48,
    kEndOfPage = 49,
    kEndOfFile = 51,
    kTables = 53,
};

/// Kinds of region segments, each in an intermediate and in two immediate types.
enum class RegionKind : std::uint8_t { kNone, kText, kHalftone, kGeneric, kRefinement };

RegionKind KindOf(std::uint32_t type) {
    switch (type) {
        case 4:
        case 6:
        case 7:
            return RegionKind::kText;
        case 20:
        case 22:
        case 23:
            return RegionKind::kHalftone;
        case 36:
        case 38:
        case 39:
            return RegionKind::kGeneric;
        case 40:
        case 42:
        case 43:
            return RegionKind::kRefinement;
        default:
            return RegionKind::kNone;
    }
}

bool IsIntermediate(std::uint32_t type) {
    return type % 4 == 0;
}

struct Segment {
    std::uint32_t number = 0;
    std::uint32_t type = 0;
    std::vector<std::uint32_t> references;
    Bytes data;
};

/// A region's size and place, and how it is painted.
struct RegionInformation {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::int32_t x = 0;
    std::int32_t y = 0;
    Operator how = Operator::kOr;
};

RegionInformation TakeInformation(Reader& reader) {
    RegionInformation information;
    information.width = reader.Take(4);
    information.height = reader.Take(4);
    information.x = static_cast<std::int32_t>(reader.Take(4));
    information.y = static_cast<std::int32_t>(reader.Take(4));
    information.how = static_cast<Operator>(std::min(reader.Take(1) & 7U, 4U));
    return information;
}

/// The length of a generic region that does not tell it: up to its end mark and a count of rows
/// (ITU-T T.88, 7.2.7).
std::size_t FindLength(Bytes data) {
    constexpr std::size_t kHeader = 18;
    constexpr std::size_t kRowCount = 4;
    if (data.size() < kHeader) {
        return data.size();
    }
    const bool isMmr = (data[kHeader - 1] & 1U) != 0;
    const std::array<std::uint8_t, 2> mark =
        isMmr ? std::array<std::uint8_t, 2>{0x00, 0x00} : std::array<std::uint8_t, 2>{0xFF, 0xAC};
    const auto found = std::search(data.begin() + kHeader, data.end(), mark.begin(), mark.end());
    const auto length = static_cast<std::size_t>(found - data.begin()) + mark.size() + kRowCount;
    return std::min(length, data.size());
}

std::vector<std::uint32_t> TakeReferences(Reader& reader, std::uint32_t number) {
    constexpr std::uint32_t kMostReferences = 1U << 16U;
    std::uint32_t count = reader.Take(1) >> 5U;
    if (count == 7) {
        count = reader.Take(3);
        if (count > kMostReferences) {
            throw Error("a segment refers to too many others");
        }
        reader.TakeBytes((count + 8) / 8);
    }
    const std::size_t size = number <= 256 ? 1 : number <= 65536 ? 2 : 4;
    std::vector<std::uint32_t> references;
    for (std::uint32_t i = 0; i < count; ++i) {
        references.push_back(reader.Take(size));
    }
    return references;
}

Segment TakeSegment(Reader& reader) {
    Segment segment;
    segment.number = reader.Take(4);
    const std::uint32_t flags = reader.Take(1);
    segment.type = flags & 63U;
    segment.references = TakeReferences(reader, segment.number);
    reader.Take((flags & 0x40U) != 0 ? 4 : 1);
    const std::uint32_t length = reader.Take(4);
    // Of a segment that is cut off, what there is is read.
    const std::size_t there = reader.Rest().size();
    segment.data =
        reader.TakeBytes(length == kUnknownLength && KindOf(segment.type) == RegionKind::kGeneric
                             ? FindLength(reader.Rest())
                             : std::min<std::size_t>(length, there));
    return segment;
}

/// Decodes segments onto one page.
class PageDecoder {
public:
    /// `bytes` are all data that will come.
    PageDecoder(std::uint32_t width, std::uint32_t height, std::size_t bytes)
        : mWidth(width),
          mHeight(height),
          mPage(width, height),
          mBudget(std::uint64_t{width} * height, bytes) {}

    /// Throws `Error` where it cannot go on; what was painted until then stays.
    void Run(Bytes bytes) {
        Reader reader(bytes);
        while (!reader.Rest().empty() && !mHasEnded) {
            const Segment segment = TakeSegment(reader);
            try {
                Decode(segment);
            } catch (const Error& error) {
                throw Error("segment " + std::to_string(segment.number) + " of type " +
                            std::to_string(segment.type) + ": " + error.what());
            }
        }
    }

    Bitmap TakePage() { return std::move(mPage); }

    /// Whether data of a region ended early.
    [[nodiscard]] bool IsCut() const { return mIsCut; }

private:
    void Decode(const Segment& segment) {
        if (KindOf(segment.type) != RegionKind::kNone) {
            DecodeRegion(segment);
        } else if (segment.type == kSymbols) {
            DecodeSymbols(segment);
        } else if (segment.type == kPatterns) {
            mPatterns[segment.number] = DecodePatterns(segment.data, mBudget);
        } else if (segment.type == kPageInformation) {
            BeginPage(segment.data);
        } else if (segment.type == kTables) {
            throw Error("tables of codes are not read");
        } else {
            mHasEnded = segment.type == kEndOfPage || segment.type == kEndOfFile;
        }
    }

    /// Of the page, what the image shows is kept.
    void BeginPage(Bytes data) {
        constexpr std::size_t kSizeAndResolution = 16;
        Reader reader(data);
        reader.TakeBytes(kSizeAndResolution);
        const bool isBlack = (reader.Take(1) & 4U) != 0;
        mPage = Bitmap(mWidth, mHeight, isBlack);
    }

    void DecodeSymbols(const Segment& segment) {
        const SymbolDictionary* last = nullptr;
        for (const std::uint32_t number : segment.references) {
            const auto found = mDictionaries.find(number);
            last = found == mDictionaries.end() ? last : &found->second;
        }
        mDictionaries[segment.number] =
            DecodeSymbolDictionary(segment.data, SymbolsOf(segment), last, mBudget);
    }

    [[nodiscard]] Symbols SymbolsOf(const Segment& segment) const {
        Symbols symbols;
        for (const std::uint32_t number : segment.references) {
            const auto found = mDictionaries.find(number);
            if (found != mDictionaries.end()) {
                const Symbols& own = found->second.symbols;
                symbols.insert(symbols.end(), own.begin(), own.end());
            }
        }
        return symbols;
    }

    void DecodeRegion(const Segment& segment) {
        Reader reader(segment.data);
        const RegionInformation information = TakeInformation(reader);
        Bitmap region;
        switch (KindOf(segment.type)) {
            case RegionKind::kText:
                region = DecodeTextRegion(reader.Rest(), SymbolsOf(segment), information.width,
                                          information.height, mBudget);
                break;
            case RegionKind::kHalftone:
                region = DecodeHalftone(reader.Rest(), PatternsOf(segment), information.width,
                                        information.height, mBudget);
                break;
            case RegionKind::kGeneric:
                region = DecodeGenericRegion(reader, information);
                break;
            default:
                region = DecodeRefinementRegion(reader, segment, information);
                break;
        }
        if (IsIntermediate(segment.type)) {
            mRegions[segment.number] = std::move(region);
        } else {
            mPage.Paint(region, information.x, information.y, information.how);
        }
    }

    [[nodiscard]] Symbols PatternsOf(const Segment& segment) const {
        const auto found = segment.references.empty() ? mPatterns.end()
                                                      : mPatterns.find(segment.references.front());
        return found == mPatterns.end() ? Symbols() : found->second;
    }

    Bitmap DecodeGenericRegion(Reader& reader, const RegionInformation& information) {
        const std::uint32_t flags = reader.Take(1);
        if ((flags & 1U) != 0) {
            Bytes data = reader.Rest();
            return DecodeMmr(data, information.width, information.height, mBudget);
        }
        if ((flags & 0x10U) != 0) {
            throw Error("a template of twelve adaptive pixels is not read");
        }
        GenericCoding coding;
        coding.templateNumber = static_cast<std::uint8_t>(flags >> 1U & 3U);
        coding.isTypical = (flags & 8U) != 0;
        reader.TakePlaces(coding);
        ArithmeticDecoder decoder(reader.Rest());
        Contexts contexts(kGenericContexts);
        Bitmap region = DecodeGeneric(decoder, contexts, coding, information.width,
                                      information.height, mBudget);
        mIsCut = mIsCut || decoder.IsExhausted();
        return region;
    }

    /// Refines a region that was kept, or the page where the region will lie.
    Bitmap DecodeRefinementRegion(Reader& reader, const Segment& segment,
                                  const RegionInformation& information) {
        const std::uint32_t flags = reader.Take(1);
        RefinementCoding coding{static_cast<std::uint8_t>(flags & 1U), (flags & 2U) != 0};
        reader.TakePlaces(coding);
        const auto kept =
            segment.references.empty() ? mRegions.end() : mRegions.find(segment.references.front());
        const Bitmap reference =
            kept != mRegions.end()
                ? kept->second
                : mPage.Part(information.x, information.y, information.width, information.height);
        coding.reference = &reference;
        ArithmeticDecoder decoder(reader.Rest());
        Contexts contexts(kRefinementContexts);
        return DecodeRefinement(decoder, contexts, coding, information.width, information.height,
                                mBudget);
    }

    std::uint32_t mWidth;
    std::uint32_t mHeight;
    Bitmap mPage;
    Budget mBudget;
    std::map<std::uint32_t, SymbolDictionary> mDictionaries;
    std::map<std::uint32_t, Symbols> mPatterns;
    std::map<std::uint32_t, Bitmap> mRegions;
    bool mHasEnded = false;
    bool mIsCut = false;
};

/// Lines of a decoded page, with black as 0.
class Jbig2Source final : public LineSource {
public:
    Jbig2Source(Bitmap page, const ImageFormat& format, std::string error)
        : LineSource(format), mPage(std::move(page)), mLine(format.LineBytes()) {
        mError = std::move(error);
    }

    const std::uint8_t* NextLine() override {
        if (mY >= mFormat.height) {
            return nullptr;
        }
        const std::uint8_t* row = mPage.Row(mY++);
        std::transform(row, row + mLine.size(), mLine.begin(),
                       [](std::uint8_t bits) { return static_cast<std::uint8_t>(~bits); });
        return mLine.data();
    }

    void Rewind() override { mY = 0; }

private:
    Bitmap mPage;
    std::vector<std::uint8_t> mLine;
    std::int32_t mY = 0;
};

Bytes BytesOf(const CodedData& data) {
    const std::string_view bytes = data ? data->Bytes() : std::string_view();
    // Bytes of a text are read as what they are.
    return {reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()};
}

}  // namespace
}  // namespace JBIG2

LineSourcePtr MakeJbig2Source(const CodedData& data, const CodedData& globals, std::int32_t width,
                              std::int32_t height, std::string& error) {
    const ImageFormat format{width, height, 1, 1};
    if (!data || data->Bytes().empty()) {
        error = "no data";
        return nullptr;
    }
    if (!IsServable(format, error)) {
        return nullptr;
    }
    std::string problem;
    try {
        const JBIG2::Bytes shared = JBIG2::BytesOf(globals);
        const JBIG2::Bytes own = JBIG2::BytesOf(data);
        JBIG2::PageDecoder decoder(static_cast<std::uint32_t>(width),
                                   static_cast<std::uint32_t>(height), shared.size() + own.size());
        try {
            decoder.Run(shared);
            decoder.Run(own);
            problem = decoder.IsCut() ? "JBIG2 data end early" : "";
        } catch (const JBIG2::Error& reason) {
            problem = std::string("JBIG2 data: ") + reason.what();
        }
        return std::make_unique<JBIG2::Jbig2Source>(decoder.TakePage(), format, std::move(problem));
    } catch (const JBIG2::Error& reason) {
        error = std::string("JBIG2 data: ") + reason.what();
        return nullptr;
    }
}

}  // namespace VANTIX::HOST
