// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include "app/options.h"
#include "pdf/diagnostics.h"
#include "pdf/fonts/fonts.h"

namespace VANTIX::APP {

/// One page as it was written.
struct PageRecord {
    int number = 0;  ///< in the document, from 1
    std::string label;
    float width = 0;  ///< points
    float height = 0;
    std::uint64_t bytes = 0;
    double milliseconds = 0;
};

/// The figures of a run.
struct RunRecord {
    std::vector<PageRecord> pages;
    std::uint64_t bytes = 0;
    std::set<std::string> colorSpaces;
    std::vector<PDF::FontRecord> fonts;
    double openMilliseconds = 0;  ///< reading the document's structure
    double totalMilliseconds = 0;
};

/// The options that decide about the output's bytes, as a JSON text. It holds no file names and no
/// secrets.
std::string OptionsAsJson(const Options& options);

/// The whole report as a JSON text: version, options, pages, bytes, colour spaces, fonts, warnings
/// and timings.
std::string ReportAsJson(const Options& options, const RunRecord& run,
                         const std::vector<PDF::Diagnostics::Warning>& warnings);

}  // namespace VANTIX::APP
