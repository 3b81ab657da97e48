// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <string_view>
#include <vector>

#include "pdf/qpdfheaders.h"

namespace VANTIX::PDF {

/// The attributes that a page takes from its ancestors (PDF Reference, 3.6.2).
inline constexpr std::array<std::string_view, 4> kInheritableKeys = {"/Resources", "/MediaBox",
                                                                     "/CropBox", "/Rotate"};

/// A page with what its ancestors give it, in the order of `kInheritableKeys`.
struct PageNode {
    QPDFObjectHandle page;
    std::array<QPDFObjectHandle, kInheritableKeys.size()> inherited;
};

/// All pages in order. Loops, nodes without a type and kids that are nothing are passed over. A
/// document without a usable tree gives every page object of the file.
std::vector<PageNode> CollectPages(QPDF& qpdf);

}  // namespace VANTIX::PDF
