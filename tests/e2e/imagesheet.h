// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include "e2e/pdftext.h"
#include "support/imageencoders.h"
#include "support/pageimage.h"

namespace VANTIX::TEST {

/// The entries of an image dictionary for the samples; `more` comes behind them.
inline std::string ImageEntries(const Samples& samples, const std::string& space,
                                const std::string& more = {}) {
    return "/Type /XObject /Subtype /Image /Width " + std::to_string(samples.width) + " /Height " +
           std::to_string(samples.height) + " /BitsPerComponent " + std::to_string(samples.bits) +
           " /ColorSpace " + space + " " + more;
}

/// A stencil mask of a line drawing.
inline std::string StencilEntries(const std::string& more = {}) {
    const Samples art = LineArt();
    return "/Type /XObject /Subtype /Image /ImageMask true /Width " + std::to_string(art.width) +
           " /Height " + std::to_string(art.height) + " " + more;
}

/// A page with an image in each cell of a grid.
class Sheet {
public:
    /// What is known of a cell.
    struct Cell {
        std::string name;
        bool isJudged = true;
        std::optional<std::size_t> like = std::nullopt;  ///< the cell that looks the same
        bool isDrawnRight = true;  ///< false: Ghostscript errs about the PDF, not about `like`
    };

    /// Adds an object and answers a reference to it.
    std::string Add(const std::string& object) {
        mObjects.push_back(object);
        return std::to_string(kFirstObject + mObjects.size() - 1) + " 0 R";
    }

    /// Names a colour space for the content.
    void Space(const std::string& name, const std::string& space) {
        mSpaces += "/" + name + " " + space + " ";
    }

    /// The name, for `gs`, of a graphics state of the given entries.
    std::string State(const std::string& entries) {
        std::string name = "/E" + std::to_string(mStateCount++);
        mStates += name + " << " + entries + " >> ";
        return name;
    }

    /// Begins a cell in which the operators draw into the unit square.
    Cell& Draw(const std::string& name, const std::string& operators) {
        mContent += "q " + std::to_string(kWidth) + " 0 0 " + std::to_string(kHeight) +
                    NextCorner() + " cm\n" + operators + "\nQ\n";
        mCells.push_back({name});
        return mCells.back();
    }

    /// The name, for `Do`, of an image of the given dictionary entries and encoded data.
    std::string Object(const std::string& entries, const std::string& data) {
        const std::string reference = Add(StreamOf(data, entries));
        std::string name = "/X" + std::to_string(mObjects.size());
        mImages += name + " " + reference + " ";
        return name;
    }

    Cell& Image(const std::string& name, const std::string& entries, const std::string& data,
                const std::string& before = {}) {
        return Draw(name, before + " " + Object(entries, data) + " Do");
    }

    /// A cell full of a shading.
    Cell& Shading(const std::string& name, const std::string& shading) {
        const std::string key = "S" + std::to_string(mCells.size());
        mShadings += "/" + key + " " + shading + " ";
        return Draw(name, "0 0 1 1 re W n /" + key + " sh");
    }

    /// A cell that is painted with a shading as a pattern, by the operators.
    Cell& Pattern(const std::string& name, const std::string& shading,
                  const std::string& operators) {
        const std::string key = "P" + std::to_string(mCells.size());
        mPatterns += "/" + key + " << /PatternType 2 /Matrix [" + std::to_string(kWidth) + " 0 0 " +
                     std::to_string(kHeight) + NextCorner() + "] /Shading " + shading + " >> ";
        return Draw(name, "/Pattern cs /" + key + " scn /Pattern CS /" + key + " SCN " + operators);
    }

    /// The name of a tiling pattern for the next cell, in whose corner it starts. `linear` leads
    /// from its space to points.
    std::string Tiling(const std::string& entries, const std::string& content,
                       const std::string& linear = "1 0 0 1") {
        std::string name = "/T" + std::to_string(mObjects.size());
        mPatterns += name + " " +
                     Add(StreamOf(content, "/PatternType 1 /Matrix [" + linear + NextCorner() +
                                               "] " + entries)) +
                     " ";
        return name;
    }

    Cell& Inline(const std::string& name, const std::string& entries, const std::string& data) {
        return Draw(name, "BI " + entries + " ID " + data + "\nEI");
    }

    [[nodiscard]] const std::vector<Cell>& Cells() const { return mCells; }

    /// The file; `page` are entries of its page.
    [[nodiscard]] std::string Pdf(const std::string& page = {}) const {
        return PageOf(mContent,
                      "/XObject << " + mImages + ">> /ColorSpace << " + mSpaces +
                          ">> /ExtGState << " + mStates + ">> /Shading << " + mShadings +
                          ">> /Pattern << " + mPatterns + ">>",
                      mObjects,
                      "/MediaBox [0 0 " + std::to_string(kPitchX * kColumns) + " " +
                          std::to_string(kPageHeight) + "] " + page);
    }

    /// What a page or plate, drawn at 72 dots per inch, shows in a cell and the gap around it.
    static PageImage CellOf(const PageImage& page, std::size_t index) {
        const std::size_t left = kPitchX * (index % kColumns);
        const std::size_t top = kPitchY * (index / kColumns);
        PageImage cell{kPitchX, kPitchY, page.channels, {}};
        if (page.width < left + kPitchX || page.height < top + kPitchY) {
            return {};
        }
        for (std::size_t y = top; y < top + kPitchY; ++y) {
            const auto row = page.samples.begin() +
                             static_cast<std::ptrdiff_t>((y * page.width + left) * page.channels);
            cell.samples.insert(cell.samples.end(), row,
                                row + static_cast<std::ptrdiff_t>(kPitchX * page.channels));
        }
        return cell;
    }

private:
    /// Where the next cell begins, in points, as the last two numbers of a matrix.
    [[nodiscard]] std::string NextCorner() const {
        const std::size_t x = kPitchX * (mCells.size() % kColumns);
        const std::size_t y = kPageHeight - kPitchY * (mCells.size() / kColumns + 1);
        return " " + std::to_string(x) + " " + std::to_string(y);
    }

    static constexpr std::size_t kFirstObject = 5;
    static constexpr std::size_t kColumns = 6;
    static constexpr std::size_t kPitchX = 60;
    static constexpr std::size_t kPitchY = 40;
    static constexpr std::size_t kWidth = 55;
    static constexpr std::size_t kHeight = 35;
    static constexpr std::size_t kPageHeight = 320;

    std::vector<Cell> mCells;
    std::vector<std::string> mObjects;
    std::string mContent;
    std::string mImages;
    std::string mSpaces;
    std::string mStates;
    std::size_t mStateCount = 0;
    std::string mShadings;
    std::string mPatterns;
};

}  // namespace VANTIX::TEST
