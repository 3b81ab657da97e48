// SPDX-License-Identifier: MIT
#pragma once

#include "postscriptconnectionspace/colorspacetexts.h"

namespace VANTIX::RENDERING {

/// CIE-based spaces of images (PostScript Language Reference, 4.8.3). `isEmbedded` gives the Y of
/// the white point too, which is taken for 1 otherwise.
void AppendImageGray(PS::TextBuffer& text, const PS::WhitePoint& white, bool isEmbedded);
void AppendImageLab(PS::TextBuffer& text, const PS::WhitePoint& white, bool isEmbedded);

}  // namespace VANTIX::RENDERING
