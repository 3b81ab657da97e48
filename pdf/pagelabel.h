// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "pdf/qpdfheaders.h"

namespace VANTIX::PDF {

/// The label of page `index` (from 0) as UTF-8 (PDF Reference, 8.3.1); the page's number when it
/// has none.
std::string PageLabel(QPDF& qpdf, int index);

}  // namespace VANTIX::PDF
