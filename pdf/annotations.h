// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <vector>

#include "pdf/optionalcontent.h"
#include "pdf/qpdfheaders.h"

namespace VANTIX::PDF {

/// What an annotation shows: a form XObject, drawn after `matrix` was concatenated.
struct Appearance {
    QPDFObjectHandle form;
    std::array<double, 6> matrix;
};

/// The appearances of those annotations in `annotations` (a page's /Annots) that are printed, in
/// order (PDF Reference, 8.4.2 to 8.4.4).
std::vector<Appearance> PrintedAppearances(QPDFObjectHandle annotations,
                                           OptionalContent& optionalContent);

}  // namespace VANTIX::PDF
