// SPDX-License-Identifier: MIT
#include "host/codecs/jbig2symbols.h"

#include <algorithm>
#include <utility>

#include "host/codecs/jbig2text.h"

namespace VANTIX::HOST::JBIG2 {

namespace {

/// More symbols than these have no use on a page.
constexpr std::size_t kMostSymbols = std::size_t{1} << 20U;

/// Decodes the symbols of a dictionary, class by class of their height (ITU-T T.88, 6.5.5).
class SymbolDecoder {
public:
    SymbolDecoder(Bytes data, Symbols known, const SymbolDictionary* last, Budget& budget)
        : mBudget(budget), mReader(data), mSymbols(std::move(known)) {
        const std::uint32_t flags = mReader.Take(2);
        if ((flags & 1U) != 0) {
            throw Error("symbols coded by Huffman are not read");
        }
        mIsRefined = (flags & 2U) != 0;
        mIsContextUsed = (flags & 0x100U) != 0;
        mIsContextKept = (flags & 0x200U) != 0;
        mCoding.templateNumber = static_cast<std::uint8_t>(flags >> 10U & 3U);
        mReader.TakePlaces(mCoding);
        mText.refinementTemplate = static_cast<std::uint8_t>(flags >> 12U & 1U);
        mText.isRefined = true;
        if (mIsRefined) {
            RefinementCoding refinement{mText.refinementTemplate};
            mReader.TakePlaces(refinement);
            mText.places = refinement.places;
        }
        mExported = mReader.Take(4);
        mNew = mReader.Take(4);
        if (mNew > kMostSymbols || mExported > kMostSymbols || mSymbols.size() > kMostSymbols) {
            throw Error("a dictionary has too many symbols");
        }
        const bool isKept = mIsContextUsed && last != nullptr && !last->generic.empty();
        mGeneric = isKept ? last->generic : Contexts(kGenericContexts);
        mRefinement = isKept ? last->refinement : Contexts(kRefinementContexts);
    }

    SymbolDictionary Run() {
        ArithmeticDecoder decoder(mReader.Rest());
        TextContexts text(BitsFor(mSymbols.size() + mNew));
        const std::size_t all = mSymbols.size() + mNew;
        mSymbols.reserve(all);
        std::uint32_t height = 0;
        while (mSymbols.size() < all) {
            height = Changed(height, TakeInteger(mHeightStep, decoder));
            DecodeClass(decoder, text, height, all);
        }
        SymbolDictionary dictionary;
        dictionary.symbols = Export(decoder);
        if (mIsContextKept) {
            dictionary.generic = std::move(mGeneric);
            dictionary.refinement = std::move(mRefinement);
        }
        return dictionary;
    }

private:
    void DecodeClass(ArithmeticDecoder& decoder, TextContexts& text, std::uint32_t height,
                     std::size_t all) {
        std::uint32_t width = 0;
        while (const auto step = mWidthStep.Decode(decoder)) {
            if (mSymbols.size() >= all || decoder.IsExhausted()) {
                throw Error("symbols end early");
            }
            width = Changed(width, *step);
            mBudget.Spend(64);
            mSymbols.push_back(std::make_shared<const Bitmap>(
                mIsRefined ? DecodeAggregate(decoder, text, width, height)
                           : DecodeGeneric(decoder, mGeneric, mCoding, width, height, mBudget)));
        }
    }

    /// A symbol made of others: one that is refined, or a text of several.
    Bitmap DecodeAggregate(ArithmeticDecoder& decoder, TextContexts& text, std::uint32_t width,
                           std::uint32_t height) {
        const std::int32_t instances = TakeInteger(mInstances, decoder);
        if (instances != 1) {
            mText.instances = static_cast<std::uint32_t>(std::max(instances, 0));
            return DecodeText({decoder, text, mRefinement, mSymbols, mBudget}, mText, width,
                              height);
        }
        const std::uint32_t number = text.symbol.Decode(decoder);
        if (number >= mSymbols.size()) {
            throw Error("a symbol is not there");
        }
        RefinementCoding refinement{mText.refinementTemplate, false, mText.places,
                                    mSymbols[number].get()};
        refinement.dx = Limited(TakeInteger(text.dx, decoder));
        refinement.dy = Limited(TakeInteger(text.dy, decoder));
        return DecodeRefinement(decoder, mRefinement, refinement, width, height, mBudget);
    }

    /// Runs of symbols that are left out and exported take turns (ITU-T T.88, 6.5.10).
    Symbols Export(ArithmeticDecoder& decoder) {
        Symbols exported;
        bool isExported = false;
        std::size_t at = 0;
        std::size_t emptyRuns = 0;
        while (at < mSymbols.size()) {
            const std::int32_t run = TakeInteger(mExportRun, decoder);
            if (run < 0 || static_cast<std::size_t>(run) > mSymbols.size() - at ||
                (run == 0 && ++emptyRuns > 4)) {
                throw Error("symbols are exported that are not there");
            }
            const auto first = mSymbols.begin() + static_cast<std::ptrdiff_t>(at);
            if (isExported) {
                exported.insert(exported.end(), first, first + run);
            }
            at += static_cast<std::size_t>(run);
            isExported = !isExported;
        }
        if (exported.size() != mExported) {
            throw Error("other symbols are exported than are announced");
        }
        return exported;
    }

    Budget& mBudget;
    Reader mReader;
    Symbols mSymbols;  // the known ones, then the new
    GenericCoding mCoding;
    TextCoding mText;
    Contexts mGeneric;
    Contexts mRefinement;
    IntegerDecoder mHeightStep;
    IntegerDecoder mWidthStep;
    IntegerDecoder mInstances;
    IntegerDecoder mExportRun;
    std::uint32_t mExported = 0;
    std::uint32_t mNew = 0;
    bool mIsRefined = false;
    bool mIsContextUsed = false;
    bool mIsContextKept = false;
};

}  // namespace

SymbolDictionary DecodeSymbolDictionary(Bytes data, Symbols known, const SymbolDictionary* last,
                                        Budget& budget) {
    return SymbolDecoder(data, std::move(known), last, budget).Run();
}

Bitmap DecodeTextRegion(Bytes data, const Symbols& symbols, std::uint32_t width,
                        std::uint32_t height, Budget& budget) {
    Reader reader(data);
    const std::uint32_t flags = reader.Take(2);
    if ((flags & 1U) != 0) {
        throw Error("text coded by Huffman is not read");
    }
    TextCoding coding;
    coding.isRefined = (flags & 2U) != 0;
    coding.logStrips = flags >> 2U & 3U;
    coding.corner = static_cast<Corner>(flags >> 4U & 3U);
    coding.isTransposed = (flags & 0x40U) != 0;
    coding.how = static_cast<Operator>(flags >> 7U & 3U);
    coding.isBlack = (flags & 0x200U) != 0;
    coding.offset = static_cast<std::int32_t>(flags >> 10U & 31U);
    coding.offset -= coding.offset > 15 ? 32 : 0;
    RefinementCoding refinement{static_cast<std::uint8_t>(flags >> 15U & 1U)};
    if (coding.isRefined) {
        reader.TakePlaces(refinement);
    }
    coding.refinementTemplate = refinement.templateNumber;
    coding.places = refinement.places;
    coding.instances = reader.Take(4);
    ArithmeticDecoder decoder(reader.Rest());
    TextContexts contexts(BitsFor(symbols.size()));
    Contexts refined(kRefinementContexts);
    return DecodeText({decoder, contexts, refined, symbols, budget}, coding, width, height);
}

}  // namespace VANTIX::HOST::JBIG2
