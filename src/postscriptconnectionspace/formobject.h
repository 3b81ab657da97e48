// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <string>

#include "core/graphics/igraphicsstate.h"
#include "core/object/tobject.h"
#include "postscriptconnectionspace/iformobject.h"
#include "postscriptconnectionspace/textbuffer.h"

namespace VANTIX::PS {

/// How what is drawn next is composited.
struct Compositing {
    float fillAlpha = 1;
    float strokeAlpha = 1;
    GRAPHICS::TBlendMode blendMode = GRAPHICS::TBlendMode::kNormal;

    /// Appends "[/ca … /CA … /BM …", the beginning of a /SetTransparency pdfmark.
    void AppendTo(TextBuffer& text) const;
};

/// What a form and its groups have in common: a unique name, the place, and the compositing that
/// was in force when it began.
class FormObject : public TObject<IFormObject> {
public:
    using Matrix = std::array<float, 6>;
    /// x0, y0, x1, y1.
    using Box = std::array<float, 4>;

    static constexpr Matrix kIdentity{1, 0, 0, 1, 0, 0};

    /// The name begins with `prefix`. `state` may be null.
    FormObject(const char* prefix, const GRAPHICS::IGraphicsState* state, const Matrix& matrix,
               const Box& box);

    void WriteBeginPicture(IPostScriptDataStream& out) const override;
    void WriteEndPicture(IPostScriptDataStream& out) const override;
    void WriteDrawPicture(IPostScriptDataStream& out) const override;

    COLOR::IConnectionColorSpace* GetGroupColorSpace() const override { return nullptr; }

    [[nodiscard]] const std::string& GetName() const { return mName; }

    [[nodiscard]] const Compositing& GetCompositing() const { return mCompositing; }

protected:
    // Pieces of the texts.
    static void AppendPageMatrix(TextBuffer& text);
    static void AppendPageMatrixAgain(TextBuffer& text);
    /// "[/_objdef {…} /BBox […]".
    void AppendHead(TextBuffer& text) const;
    /// "gsave", and the matrix where it is not the identity.
    void AppendPlace(TextBuffer& text) const;
    void AppendUse(TextBuffer& text) const;

private:
    std::string mName;
    Compositing mCompositing;
    Matrix mMatrix;
    Box mBox;
};

}  // namespace VANTIX::PS
