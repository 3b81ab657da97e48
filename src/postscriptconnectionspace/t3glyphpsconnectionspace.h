// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include "core/graphics/irastercomponent.h"
#include "core/object/tinterfaceptr.h"
#include "postscriptconnectionspace/procedurepsconnectionspace.h"

namespace VANTIX::PS {

/// Records the procedure of one glyph of a Type 3 font (PostScript Language Reference, 5.7). What
/// it paints has the colour that the glyph is shown in, and its fonts are those of the page.
class T3GlyphPSConnectionSpace : public ProcedurePSConnectionSpace {
public:
    /// A `coloured` glyph is declared by setcharwidth and may set colours. `page` may be null.
    T3GlyphPSConnectionSpace(bool coloured, PostScriptConnectionSpace* page);

    /// Lets `glyph` draw itself, and closes what it left open.
    void Record(const GRAPHICS::IConnectionSpace& glyph);

    void RestoreGraphicsState() override;
    void MoveTo(float x, float y) override;
    void LineTo(const float* points, std::int32_t count) override;
    void CurveTo(const float* points, std::int32_t count) override;
    /// An image mask, or the opacity of an image in an uncoloured glyph, paints the unit square
    /// whatever the rectangle is, its first line at the bottom.
    void DrawImage(GRAPHICS::IRasterComponent* raster, float x, float y, float width,
                   float height) override;
    void DrawTextW(const void* text, std::int32_t length) override;
    /// The page's name of the font, where there is a page.
    void GetPSFontName(GRAPHICS::IFontPackageHandler* handler, char name[kFontNameBytes]) override;

    /// Does nothing.
    void SetTextRenderingColor(GRAPHICS::IGraphicsState::TTextRendering /*mode*/) override {}

private:
    void DrawMask(const GRAPHICS::IRasterComponent& raster);
    /// /SampleStringsArray: the samples as strings, none longer than interpreters take.
    void WriteSamples(GRAPHICS::IChannelData& samples, std::int32_t width, std::int32_t height);
    void WriteImageDictionary(std::int32_t width, std::int32_t height, std::int32_t bits);

    bool mIsColoured;
    TInterfacePtr<PostScriptConnectionSpace> mPage;
};

}  // namespace VANTIX::PS
