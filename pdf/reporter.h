// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

#include "pdf/diagnostics.h"

namespace VANTIX::PDF {

/// The diagnostics together with the page being played.
class Reporter {
public:
    explicit Reporter(Diagnostics& diagnostics) : mDiagnostics(diagnostics) {}

    /// One-based; 0 between pages.
    void SetPage(int page) { mPage = page; }

    void Warn(std::string_view kind, std::string_view message) {
        mDiagnostics.Warn(kind, message, mPage);
    }

    /// Once for each page, not once for the file.
    void WarnOfPage(std::string_view kind, std::string_view message) {
        mDiagnostics.WarnOfPage(kind, message, mPage);
    }

private:
    Diagnostics& mDiagnostics;
    int mPage = 0;
};

}  // namespace VANTIX::PDF
