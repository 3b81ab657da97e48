// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "support/pageimage.h"

namespace VANTIX::TEST {

/// Makes the PDF file `pdf` of the PostScript file `postScript` as a distiller does that knows the
/// pdfmarks of transparency: groups on /BP, soft-mask images on /NI, and /SetTransparency. A soft
/// mask lies in the space of the form, or page, in which its state is set: a distiller writes the
/// content of a form in one space, so matrices that came since do not move the mask.
///
/// It is Ghostscript's pdfwrite behind a prolog, and a step on its PDF. It is not called
/// "Jaws PDF Creator". The content of a plain form inherits the state that the form is drawn in,
/// but for the entries that it sets itself; those stay set to its end, as a grestore that leads
/// back to the inherited state undoes nothing.
///
/// Answers what the interpreter or the PDF library said, and what the job left on the stacks of
/// operands and graphics states; nothing when all is well.
std::string DistilTransparency(const std::string& postScript, const std::string& pdf);

/// What poppler draws of the first page of a PDF, in RGB with antialiasing. Width 0 when there is
/// none.
PageImage DrawWithPoppler(const std::string& pdf, int resolution = 72);

}  // namespace VANTIX::TEST
