// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstdint>

#include "core/graphics/igraphic.h"
#include "postscriptconnectionspace/procedurepsconnectionspace.h"

namespace VANTIX::PS {

/// Paint type of a pattern whose cell is painted in the colour that it is selected with.
inline constexpr std::int32_t kUncolouredPaintType = 2;

/// Records the cell of a tiling pattern as the body of its procedure, whose paths stand in blocks
/// "{…}exec". It has a colour delegate, an output context and a base connection space of its own;
/// what may not stand in the procedure (the data of images and meshes) goes to the stream of the
/// space that asked for the pattern, its owner.
class TilingPatterPSConnectionSpace : public ProcedurePSConnectionSpace {
public:
    /// `owner` and `pattern` must outlive the recorder.
    TilingPatterPSConnectionSpace(PostScriptConnectionSpace& owner,
                                  COLOR::IPatternConnectionColorSpace& pattern);

    /// x, y, width, height of the cell in pattern space.
    [[nodiscard]] const std::array<float, 4>& GetBounds() const { return mBounds; }

    /// Lets `cell` draw itself, and closes what it left open. The failing status of the drawing, or
    /// of the provider that takes the recording.
    Status Record(const GRAPHICS::IGraphic& cell);
    /// Copies the recording to `out` as what the procedure executes.
    void WriteProcedure(IPostScriptDataStream& out);

    /// `policy` is the owner's; the recorder changes a copy. False too (logged) without an output
    /// context.
    bool Init(IO::IDataProvider* stream, IClassFactory* factory,
              const IO::IDictionary* policy) override;

    void RestoreGraphicsState() override;
    Status PushFormObject(IFormObject& form) override;
    Status PopFormObject() override;
    void RegisterColorSpaceUse(ResourceId id) override;
    void MoveTo(float x, float y) override;
    void LineTo(const float* points, std::int32_t count) override;
    void CurveTo(const float* points, std::int32_t count) override;
    /// Does nothing in an uncoloured pattern, as does everything else that sets a colour.
    void FillWithColorSpace(COLOR::IConnectionColorSpace* space, ResourceId id, float x, float y,
                            float width, float height) override;
    void SelectRenderingIntent(COLOR::TRenderingIntent intent) override;
    void SelectRenderingIntent2(COLOR::TRenderingIntent intent) override;
    /// In an uncoloured pattern draws image masks alone, in the colour of the pattern.
    void DrawImage(GRAPHICS::IRasterComponent* raster, float x, float y, float width,
                   float height) override;
    void SetOverprintState(bool overprint) override;
    bool BeginTextObject() override;
    bool EndTextObject() override;
    void DrawTextW(const void* text, std::int32_t length) override;
    /// Does nothing: patterns in a cell start from the matrix of the cell.
    void SaveInitialPageMatrix() override;

    /// The owner's: definitions of forms stand ahead of the pattern.
    IPostScriptDataStream* GetBaseStream() override { return mOwner.GetBaseStream(); }

    DefinedNames& Names() override { return mOwner.Names(); }

    void WriteContextStreamData(const void* data, std::int32_t length) override;
    void FlushContextStreamData() override;

    /// Fonts belong to the document, outside of the procedure.
    bool DownloadFonts(const GRAPHICS::IConnectionSpace* host) override {
        return mOwner.DownloadFonts(host);
    }

    [[nodiscard]] const JobFonts::NameMap& FontNames() const override { return mOwner.FontNames(); }

    void SetTextRenderingColor(GRAPHICS::IGraphicsState::TTextRendering mode) override;
    void AddPostScriptColorSpaceResource(ResourceId id, const char* name) override;
    /// The recorder's own name, else the owner's.
    const char* GetPostScriptResourceName(ResourceId id) override;
    [[nodiscard]] bool WasDefined(ResourceId id) const override;
    void PaintPath(bool fill, bool evenOdd) override;

    [[nodiscard]] std::int32_t CellDepth() const override { return mOwner.CellDepth() + 1; }

    [[nodiscard]] bool IsRecordingCell(const GRAPHICS::IGraphic& cell) const override;

    std::uint32_t& PatternImageCounter() override { return mOwner.PatternImageCounter(); }

protected:
    TInterfacePtr<PostScriptOutputContext> MakeOutputContext() override;
    void ApplyOverprint(bool fill) override;
    void CloseBlock() override;

    [[nodiscard]] bool MaySetColours() const override { return IsColoured(); }

private:
    [[nodiscard]] bool IsColoured() const;
    /// A procedure begins with what was in force where its pattern was made, a cell with the
    /// initial state of a page.
    void SetInitialState();
    /// Ends the block when `elements` more would make it too long, and begins the next.
    void CutBlock(std::int32_t elements);

    PostScriptConnectionSpace& mOwner;
    COLOR::IPatternConnectionColorSpace& mPattern;
    std::array<float, 4> mBounds{};
    bool mBlockIsOpen = false;
    std::int32_t mBlockElements = 0;
    bool mDefinesPatterns = false;
};

}  // namespace VANTIX::PS
