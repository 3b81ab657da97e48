// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>

#include "host/graphics/baseconnectionspace.h"
#include "pdf/forms.h"
#include "pdf/pdfdocument.h"
#include "pdf/qpdfheaders.h"
#include "pdf/reporter.h"
#include "pdf/resources.h"
#include "pdf/shadings.h"

namespace VANTIX::PDF {

/// The cell of a tiling pattern (PDF Reference, 4.6.2), to be played into a recording.
struct PatternCell {
    QPDFObjectHandle stream;
    std::shared_ptr<const Form> content;
    std::shared_ptr<Resources> resources;
    bool isColored = true;
    std::array<double, 4> box{};     ///< x0 y0 x1 y1 in its own space
    std::array<double, 6> matrix{};  ///< from its space to default user space
    ResourceId id = 0;               ///< of the pattern
    mutable bool wasPlayed = false;
};

/// A pattern as a colour.
struct Pattern {
    HOST::ColorSpacePtr space;
    ResourceId id = 0;
    std::array<double, 6> matrix{};               ///< from its space to that of the page
    std::shared_ptr<const Shading> shading;       ///< of a shading pattern, or null
    std::shared_ptr<const PatternCell> cell;      ///< of a tiling pattern, or null
    const ColorSpaceEntry* underlying = nullptr;  ///< of the colour of an uncoloured one
    bool isRefused = false;                       ///< the connection space cannot define it
    // What it was made of, to find it anew where patterns start from another place.
    QPDFObjectHandle object;
    Resources* resources = nullptr;
    std::array<double, 6> parentToUser{};  ///< from the content that selected it
    const ColorSpaceEntry* selectedWith = nullptr;
};

/// Makes the host's patterns of PDF patterns (PDF Reference, 4.6), and keeps them as long as pages
/// have the same size and matrix: a pattern starts from the page's own space.
class Patterns {
public:
    /// Plays a cell into the base space of a recording.
    using CellPlayer = std::function<void(const PatternCell&, HOST::BaseConnectionSpace&)>;

    /// A use of a pattern.
    struct Use {
        const QPDFObjectHandle& object;
        Resources& resources;                 ///< of the content that uses it
        const std::array<double, 6>& parent;  ///< from that content to the page, or the cell
        const std::array<double, 6>& page;    ///< from there to default user space
        /// Where a tiling pattern starts from default user space, which is not where its content
        /// is: what leads there from the space of `parent`. Null elsewhere.
        const std::array<double, 6>* body;
        const PatternCell* outer = nullptr;           ///< the cell that the content belongs to
        const ColorSpaceEntry* underlying = nullptr;  ///< of the pattern space in force
    };

    Patterns(ColorSpaces& colorSpaces, Shadings& shadings, FormCache& forms, Reporter& reporter)
        : mColorSpaces(colorSpaces), mShadings(shadings), mForms(forms), mReporter(reporter) {}

    /// Must be set before the first tiling pattern; patterns call it for as long as they live.
    void SetCellPlayer(CellPlayer player) { mPlayer = std::move(player); }

    void BeginPage(const PageGeometry& page);

    /// The pattern that the object describes. Null, after one warning, for one that cannot be
    /// drawn.
    std::shared_ptr<Pattern> Find(const Use& use);

private:
    using PatternPtr = std::shared_ptr<Pattern>;

    PatternPtr Make(const Use& use);
    bool MakeShading(const Use& use, Pattern& pattern);
    std::shared_ptr<PatternCell> MakeCell(const Use& use, const Pattern& pattern);
    bool MakeTiling(const Use& use, Pattern& pattern);
    bool Refuse(const char* reason);

    // Patterns within cells are defined anew in each of them, so that there is no end to them.
    static constexpr std::size_t kMaxNested = 1024;

    ColorSpaces& mColorSpaces;
    Shadings& mShadings;
    FormCache& mForms;
    Reporter& mReporter;
    CellPlayer mPlayer;
    std::array<float, 8> mPage{};
    std::map<std::string, PatternPtr> mPatterns;
    std::size_t mNested = 0;
    // Behind the numbers of shadings.
    ResourceId mNextId = 0x20000000;
};

}  // namespace VANTIX::PDF
