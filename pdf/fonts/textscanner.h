// SPDX-License-Identifier: MIT
#pragma once

#include <bitset>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <tuple>
#include <unordered_set>
#include <vector>

#include "host/fonts/simplefont.h"
#include "pdf/contentparser.h"
#include "pdf/fonts/cmap.h"
#include "pdf/qpdfheaders.h"

namespace VANTIX::PDF {

using CodeSet = std::bitset<HOST::kSimpleCodes>;

/// The codes that a font shows.
class ShownCodes {
public:
    /// `cmap` (borrowed) parts the text of a composite font into codes; null for a simple one.
    explicit ShownCodes(const CMap* cmap) : mCMap(cmap) {}

    /// `isSeen` is false for invisible text.
    void Add(std::string_view text, bool isSeen);

    /// Of a simple font.
    [[nodiscard]] const CodeSet& Simple() const { return mSimple; }

    /// Of a composite font.
    [[nodiscard]] std::set<CharCode> Composite() const;

    /// Whether any is shown otherwise than invisible.
    [[nodiscard]] bool AreSeen() const { return mAreSeen; }

private:
    const CMap* mCMap;
    bool mAreSeen = false;
    CodeSet mSimple;
    std::unordered_set<CharCode, CharCodeHash> mComposite;
};

/// The CMap of the font with a `FontKey`; null for one that is not composite.
using CMapOfFont = std::function<const CMap*(const std::string& key)>;

/// Reads content for its text alone: which codes are shown in which fonts. Takes in more than is
/// printed rather than less: hidden content, patterns and soft masks that are only selected.
class TextScanner {
public:
    explicit TextScanner(CMapOfFont cmapOf = {}) : mCMapOf(std::move(cmapOf)) {}

    /// Reads the content (a stream or an array of them) of a page.
    void ScanPage(QPDFObjectHandle contents, const QPDFObjectHandle& resources);
    /// Reads a form that is drawn with the resources of a page.
    void ScanForm(const QPDFObjectHandle& form, const QPDFObjectHandle& resources);

    /// False when content was too large to be read whole: nothing is known then of what is shown.
    [[nodiscard]] bool IsComplete() const { return mIsComplete; }

    /// By `FontKey`.
    [[nodiscard]] const std::map<std::string, ShownCodes>& Shown() const { return mShown; }

private:
    /// What of the graphics state counts.
    struct Text {
        ShownCodes* font = nullptr;
        bool isHidden = false;

        // What the operator expands to is not ours.
        // NOLINTNEXTLINE(modernize-use-nullptr,readability-implicit-bool-conversion)
        auto operator<=>(const Text&) const = default;
    };

    /// One stream of content, or several that make one.
    struct Frame {
        QPDFObjectHandle resources;
        std::size_t resourcesId = 0;  ///< tells direct resource dictionaries apart
        Text text;
        std::vector<Text> saved;
        std::map<std::string, ShownCodes*, std::less<>> fonts;  ///< by their names in the content
    };

    void Add(Frame& frame, const QPDFObjectHandle& stream, std::string& pending);
    void Run(Frame& frame, std::string& pending, bool isComplete);
    void Execute(Frame& frame, ContentParser& parser);
    static void Show(Frame& frame, const std::vector<Operand>& operands);
    void Select(Frame& frame, std::string_view name);
    void ApplyState(Frame& frame, std::string_view name);
    static void SetRendering(Frame& frame, const std::vector<Operand>& operands);
    /// A form, or the cell of a pattern, where `stream` is one, which starts with `text`.
    void Draw(const Frame& outer, const QPDFObjectHandle& stream, const Text& text);
    void DrawGlyphs(const Frame& outer, const QPDFObjectHandle& font);
    ShownCodes* SetOf(const QPDFObjectHandle& font);

    static constexpr std::size_t kMaxDepth = 28;
    static constexpr std::size_t kMaxDrawn = 200000;

    CMapOfFont mCMapOf;
    std::map<std::string, ShownCodes> mShown;
    std::set<std::tuple<QPDFObjGen, std::size_t, Text>> mDrawn;
    std::set<std::string> mType3;  ///< fonts whose glyphs were read
    std::size_t mDepth = 0;
    std::size_t mResourcesIds = 0;
    std::size_t mRoom = std::size_t{4} << 30U;  // bytes of all content
    bool mIsComplete = true;
};

}  // namespace VANTIX::PDF
