// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include "postscriptconnectionspace/postscriptoutputcontext.h"

namespace VANTIX::PS {

/// Writes the procedure of a tiling pattern, in which image data cannot follow "currentfile": each
/// image's data go ahead of the pattern as a resource "ImageData1", "ImageData2"… that the
/// procedure reads: a reusable stream in Language Level 3, an array of strings in Level 2.
class TilePatternPSOutputContext : public PostScriptOutputContext {
public:
    /// `streams` holds the procedure and must outlive the context, as must `outer` (not
    /// referenced), which takes the resources, and `lastImage`, the number of the last resource
    /// that the patterns of the document made. Image masks of a pattern that is not `coloured` have
    /// the colour that it is selected with.
    TilePatternPSOutputContext(PostScriptStreamStack& streams, IPostScriptDataStream& outer,
                               std::int32_t languageLevel, std::uint32_t& lastImage,
                               bool coloured = true);

    IPostScriptDataStream* GetBaseDataStream() override { return &mOuter; }

    /// Brackets one image, or one shading, whose data go ahead. An image's dictionary begins a
    /// resource for the data that follow, and the end moves the dictionary into the procedure.
    void BeginImageData() override;
    void EndImageData() override;
    void WriteImageDictionary(std::int32_t width, std::int32_t height,
                              std::int32_t bitsPerComponent, const char* colour,
                              std::int32_t colourLength, const char* decode,
                              bool imageMask) override;
    /// Ends the image's resource; the mask's dictionary begins one of its own.
    void AssociateSoftMaskImage(std::int32_t image) override;

protected:
    /// While data are collected, the filters of the outer stream.
    [[nodiscard]] IO::IOutputFilterStack* DataFilters() const override;

private:
    [[nodiscard]] bool HasStreams() const { return mLanguageLevel >= 3; }

    void BeginResource();
    /// Ends the resource, if there is one, and moves the dictionary that reads it into the
    /// procedure.
    void EndResource();
    void WriteOuter(const TextBuffer& text);

    IPostScriptDataStream& mOuter;
    std::int32_t mLanguageLevel;
    std::uint32_t& mImage;
    bool mIsColoured;
    bool mIsCollecting = false;
    bool mHasResource = false;
    TextBuffer mDictionary{0};
};

}  // namespace VANTIX::PS
