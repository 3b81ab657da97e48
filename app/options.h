// SPDX-License-Identifier: MIT
#pragma once

#include <iosfwd>
#include <optional>
#include <string>

#include "app/exitcode.h"
#include "app/pagelist.h"
#include "app/policy.h"
#include "core/color/colorconversion.h"
#include "pdf/fonts/fonts.h"
#include "pdf/pdfdocument.h"

namespace VANTIX::APP {

/// One run of the tool, as the command line asks for it.
struct Options {
    std::string input;
    std::string output;  ///< "-" is standard output
    Policy policy;
    PageList pages;
    PDF::PageBox box = PDF::PageBox::kCrop;
    std::optional<COLOR::TRenderingIntent> intent;
    /// What the policy does not decide; the rest is filled in by the job.
    PDF::FontOptions fonts;
    bool keepsHiddenText = false;
    std::string password;
    std::string grayProfile;  ///< a file, or empty for the document's output intent
    std::string rgbProfile;
    std::string cmykProfile;
    std::string plugin;  ///< empty for the one that belongs to the tool
    std::string report;  ///< empty for none
    bool quiet = false;
    bool verbose = false;
};

/// The words of the command line for a box, an intent, and what to do without a font.
std::string BoxName(PDF::PageBox box);
std::string IntentName(COLOR::TRenderingIntent intent);
std::string MissingFontsName(PDF::MissingFonts missing);

/// Options, or the status to end with because help was asked for or the usage was wrong.
struct CommandLine {
    std::optional<Options> options;
    ExitCode status = ExitCode::kDone;
};

/// Reads the command line. Help and version go to `out`, what is wrong with it to `error`.
CommandLine ParseCommandLine(int argc, const char* const* argv, std::ostream& out,
                             std::ostream& error);

}  // namespace VANTIX::APP
