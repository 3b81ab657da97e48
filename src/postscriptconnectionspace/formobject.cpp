// SPDX-License-Identifier: MIT
// Forms as pdfmarks (pdfmark Reference: /BP, /EP and /SP).
#include "postscriptconnectionspace/formobject.h"

#include "platform/uniqueid.h"
#include "postscriptconnectionspace/blendmodes.h"

namespace VANTIX::PS {

void Compositing::AppendTo(TextBuffer& text) const {
    text.Format("[/ca %.8g /CA %.8g /BM /%s ", fillAlpha, strokeAlpha,
                GetPSBlendModeFromTBlenMode(blendMode));
}

FormObject::FormObject(const char* prefix, const GRAPHICS::IGraphicsState* state,
                       const Matrix& matrix, const Box& box)
    : mName(prefix + PLATFORM::UniqueIdHyphenText(PLATFORM::CreateUniqueId())),
      mMatrix(matrix),
      mBox(box) {
    if (state != nullptr) {
        mCompositing = {state->GetAlpha(true), state->GetAlpha(false), state->GetBlendMode()};
    }
}

// Patterns within a form start from the matrix of its definition.

void FormObject::AppendPageMatrix(TextBuffer& text) {
    text.Append(
        "/initialPageMatrix where {dup /initialPageMatrix get /savedInitialPageMatrix exch put} "
        "if\n"
        "/initialPageMatrix where {/initialPageMatrix matrix currentmatrix put} "
        "{userdict /initialPageMatrix matrix currentmatrix put} ifelse\n");
}

void FormObject::AppendPageMatrixAgain(TextBuffer& text) {
    text.Append(
        "/savedInitialPageMatrix where {/savedInitialPageMatrix get /initialPageMatrix where "
        "{exch /initialPageMatrix exch put} {pop} ifelse } if\n");
}

void FormObject::AppendHead(TextBuffer& text) const {
    text.Format("[/_objdef {%s} /BBox [%.8g %.8g %.8g %.8g]", mName.c_str(), mBox[0], mBox[1],
                mBox[2], mBox[3]);
}

void FormObject::AppendPlace(TextBuffer& text) const {
    text.Append("gsave\n");
    if (mMatrix != kIdentity) {
        text.Format("[%.8g %.8g %.8g %.8g %.8g %.8g] concat\n", mMatrix[0], mMatrix[1], mMatrix[2],
                    mMatrix[3], mMatrix[4], mMatrix[5]);
    }
}

void FormObject::AppendUse(TextBuffer& text) const {
    text.Format("[{%s} /SP pdfmark\ngrestore\n", mName.c_str());
}

void FormObject::WriteBeginPicture(IPostScriptDataStream& out) const {
    TextBuffer text(0);
    AppendPageMatrix(text);
    text.Append("\n%Define the form\n");
    AppendHead(text);
    text.Append(" /BP pdfmark\ngsave\ninitclip\n");
    out << text.Text();
}

void FormObject::WriteEndPicture(IPostScriptDataStream& out) const {
    TextBuffer text(0);
    text.Append("grestore\n[/EP pdfmark\n%%Close the form\n");
    AppendPageMatrixAgain(text);
    out << text.Text();
}

void FormObject::WriteDrawPicture(IPostScriptDataStream& out) const {
    TextBuffer text(0);
    text.Append("%%Draw the form\n");
    AppendPlace(text);
    AppendUse(text);
    out << text.Text();
}

}  // namespace VANTIX::PS
