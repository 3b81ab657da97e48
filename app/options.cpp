// SPDX-License-Identifier: MIT
#include "app/options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <filesystem>
#include <ostream>

#include "core/io/ioutputfilterstack.h"

namespace VANTIX::APP {
namespace {

/// Option values that need more than storing.
struct RawOptions {
    std::int32_t level = 3;
    std::string color = "as-is";
    std::string transparency = "off";
    std::string encode;
    std::string pages;
    std::string box = "crop";
    std::string intent;
    std::vector<std::string> policy;
    bool embedProfiles = false;
    bool promoteGray = false;
    bool softMasks = false;
    bool allStates = false;
    bool opaquePatterns = false;
    bool noTrueType = false;
    std::vector<std::string> fonts;
    std::string missingFonts = "substitute";
    std::string hiddenText = "drop";
};

template <class T>
struct Choice {
    const char* name;
    T value;
};

constexpr std::array<Choice<PDF::PageBox>, 4> kBoxes{{{"crop", PDF::PageBox::kCrop},
                                                      {"media", PDF::PageBox::kMedia},
                                                      {"trim", PDF::PageBox::kTrim},
                                                      {"bleed", PDF::PageBox::kBleed}}};

constexpr std::array<Choice<COLOR::TRenderingIntent>, 4> kIntents{
    {{"absolute", COLOR::TRenderingIntent::kAbsoluteColorimetric},
     {"relative", COLOR::TRenderingIntent::kRelativeColorimetric},
     {"saturation", COLOR::TRenderingIntent::kSaturation},
     {"perceptual", COLOR::TRenderingIntent::kPerceptual}}};

constexpr std::array<Choice<PDF::MissingFonts>, 3> kMissingFonts{
    {{"substitute", PDF::MissingFonts::kSubstitute},
     {"resident", PDF::MissingFonts::kResident},
     {"fail", PDF::MissingFonts::kFail}}};

constexpr std::array<Choice<bool>, 2> kHiddenText{{{"drop", false}, {"keep", true}}};

constexpr std::array<Choice<std::int32_t>, 3> kFilters{{{"ascii85", IO::FILTER::kAscii85},
                                                        {"flate", IO::FILTER::kFlate},
                                                        {"runlength", IO::FILTER::kRunLength}}};

template <class Table>
auto Find(const Table& table, const std::string& name) {
    return std::find_if(table.begin(), table.end(),
                        [&](const auto& choice) { return name == choice.name; });
}

template <class Table, class T>
std::string NameIn(const Table& table, T value) {
    return std::find_if(table.begin(), table.end(),
                        [&](const auto& choice) { return choice.value == value; })
        ->name;
}

template <class Table>
CLI::IsMember OneOf(const Table& table) {
    std::vector<std::string> names;
    names.reserve(table.size());
    for (const auto& choice : table) {
        names.emplace_back(choice.name);
    }
    return CLI::IsMember(names);
}

void DescribeFiles(CLI::App& app, Options& options) {
    app.add_option("INPUT", options.input, "The PDF file to read")->required();
    app.add_option(
        "OUTPUT", options.output,
        "The PostScript file to write; INPUT with .ps by default, - for standard output");
    app.add_option("--password", options.password, "Password of an encrypted INPUT");
    app.add_option("--gray-profile", options.grayProfile, "ICC profile of DeviceGray");
    app.add_option("--rgb-profile", options.rgbProfile, "ICC profile of DeviceRGB");
    app.add_option("--cmyk-profile", options.cmykProfile,
                   "ICC profile of DeviceCMYK; the document's output intent by default");
    app.add_option("--plugin", options.plugin, "The plug-in to use");
    app.add_option("--report", options.report, "Write a report of the run to this JSON file");
    app.add_flag("--quiet,-q", options.quiet, "No warnings and no progress bar");
    app.add_flag("--verbose,-v", options.verbose, "Notices and figures too");
}

void DescribeOutput(CLI::App& app, RawOptions& raw) {
    app.add_option("--level", raw.level, "PostScript Language Level: 2 or 3")
        ->check(CLI::IsMember(std::vector<int>{2, 3}));
    app.add_option("--color", raw.color,
                   "Colour model: as-is, as-is-process, cmyk, cmyk-managed, rgb, rgb-managed, "
                   "gray, gray-managed, gray-100 (no images), gray-calibrated (no colours: all but "
                   "images and shadings is black), devicen, devicen-managed")
        ->check([](const std::string& name) {
            return ColorModelNumber(name) != 0 ? std::string() : "there is no model " + name;
        });
    app.add_flag("--embed-profiles", raw.embedProfiles, "Write ICC profiles as colour spaces");
    app.add_flag("--promote-gray", raw.promoteGray, "Write gray in the model's process colours");
    app.add_flag("--soft-masks", raw.softMasks, "Write soft masks even for opaque images");
    app.add_option("--transparency", raw.transparency, "Transparency for distillers: off, pdfmark")
        ->check(CLI::IsMember(std::vector<std::string>{"off", "pdfmark"}));
    app.add_flag("--all-states", raw.allStates,
                 "Write the transparency state even before the first mark that is transparent");
    app.add_flag("--opaque-patterns", raw.opaquePatterns,
                 "Record the cells of tiling patterns without transparency");
    app.add_option("--encode", raw.encode,
                   "Encodings of binary data: ascii85, flate, runlength; "
                   "flate,ascii85 by default, runlength,ascii85 at level 2");
    app.add_option("--pages", raw.pages, "Pages like 1-3,7,10-");
    app.add_option("--box", raw.box, "Page box to print: crop, media, trim, bleed")
        ->check(OneOf(kBoxes));
    app.add_option("--intent", raw.intent,
                   "Rendering intent for everything: absolute, relative, saturation, perceptual")
        ->check(OneOf(kIntents));
    app.add_option("--policy", raw.policy, "KEY=VALUE: any option of the plug-in by its number")
        ->allow_extra_args(false);
}

void DescribeText(CLI::App& app, Options& options, RawOptions& raw) {
    app.add_flag("--embed-standard-fonts", options.fonts.embedStandardFonts,
                 "Download the standard 14 fonts too, where INPUT does not hold them");
    app.add_flag("--no-truetype", raw.noTrueType, "No TrueType fonts (Type 42) in the output");
    app.add_option("--hidden-text", raw.hiddenText, "Invisible text: drop, keep")
        ->check(OneOf(kHiddenText));
    app.add_option("--font", raw.fonts, "NAME=FILE: the file of a font that INPUT does not hold")
        ->allow_extra_args(false);
    app.add_option("--missing-fonts", raw.missingFonts,
                   "Fonts that INPUT does not hold: substitute, resident, fail")
        ->check(OneOf(kMissingFonts));
}

bool SetFonts(PDF::FontOptions& fonts, const RawOptions& raw, std::string& error) {
    for (const std::string& assignment : raw.fonts) {
        const std::size_t equals = assignment.find('=');
        if (equals == 0 || equals == std::string::npos || equals + 1 == assignment.size()) {
            error = "--font: \"" + assignment + "\" is not of the form NAME=FILE";
            return false;
        }
        fonts.files[assignment.substr(0, equals)] = assignment.substr(equals + 1);
    }
    fonts.missing = Find(kMissingFonts, raw.missingFonts)->value;
    return true;
}

bool SetFilters(Policy& policy, const RawOptions& raw, std::string& error) {
    const std::string standard = raw.level == 2 ? "runlength,ascii85" : "flate,ascii85";
    const std::string list = raw.encode.empty() ? standard : raw.encode;
    for (const std::string& name : CLI::detail::split(list, ',')) {
        const auto* filter = Find(kFilters, name);
        if (filter == kFilters.end()) {
            error = "--encode: there is no encoding \"" + name + "\"";
            return false;
        }
        policy.Set(filter->value, true);
    }
    return true;
}

bool SetPolicy(Policy& policy, RawOptions& raw, std::string& error) {
    Policy byNumber;
    for (const std::string& assignment : raw.policy) {
        if (!byNumber.Assign(assignment, error)) {
            error.insert(0, "--policy: ");
            return false;
        }
    }
    // Other defaults hang on the level, however it was given.
    raw.level = byNumber.Int(KEY::kLanguageLevel, raw.level);
    policy.Set(KEY::kColorModel, ColorModelNumber(raw.color));
    policy.Set(KEY::kLanguageLevel, raw.level);
    policy.Set(KEY::kPdfmarkTransparency, raw.transparency == "pdfmark");
    policy.Set(KEY::kTrueType, raw.level == 3 && !raw.noTrueType);
    policy.Set(KEY::kEmbedProfiles, raw.embedProfiles);
    policy.Set(KEY::kPromoteGray, raw.promoteGray);
    policy.Set(KEY::kSoftMasks, raw.softMasks);
    if (raw.allStates) {
        policy.Set(KEY::kTransparencyWritten, true);
    }
    if (raw.opaquePatterns) {
        policy.Set(KEY::kOpaquePatterns, std::uint8_t{1});
    }
    policy.Set(KEY::kFlipImages, true);
    policy.Set(KEY::kNoInnerEnd, true);
    if (!SetFilters(policy, raw, error)) {
        return false;
    }
    for (const auto& [key, value] : byNumber.Entries()) {
        policy.Set(key, value);
    }
    error = policy.Refusal();
    return error.empty();
}

/// Where the output goes when nothing is said.
std::string DefaultOutput(const std::string& input) {
    return std::filesystem::path(input).replace_extension(".ps").string();
}

bool Complete(Options& options, RawOptions& raw, std::string& error) {
    if (options.input.empty()) {
        error = "INPUT is empty";
        return false;
    }
    if (options.output.empty()) {
        options.output = DefaultOutput(options.input);
    } else if (options.output == "/dev/stdout") {
        options.output = "-";
    }
    if (options.report == "-" || (!options.report.empty() && options.report == options.output)) {
        error = "--report needs a file of its own";
        return false;
    }
    options.box = Find(kBoxes, raw.box)->value;
    if (!raw.intent.empty()) {
        options.intent = Find(kIntents, raw.intent)->value;
    }
    if (!raw.pages.empty() && !options.pages.Parse(raw.pages, error)) {
        error.insert(0, "--pages: ");
        return false;
    }
    options.keepsHiddenText = Find(kHiddenText, raw.hiddenText)->value;
    return SetFonts(options.fonts, raw, error) && SetPolicy(options.policy, raw, error);
}

}  // namespace

std::string BoxName(PDF::PageBox box) {
    return NameIn(kBoxes, box);
}

std::string IntentName(COLOR::TRenderingIntent intent) {
    return NameIn(kIntents, intent);
}

std::string MissingFontsName(PDF::MissingFonts missing) {
    return NameIn(kMissingFonts, missing);
}

CommandLine ParseCommandLine(int argc, const char* const* argv, std::ostream& out,
                             std::ostream& error) {
    CLI::App app("Turns the pages of a PDF file into PostScript.", "norvane");
    app.set_version_flag("--version", "norvane " NORVANE_VERSION);
    app.footer(
        "Exit status: 0 done, 2 wrong usage, 3 input unreadable, 4 output not written,\n"
        "5 plug-in not loaded.");
    Options options;
    RawOptions raw;
    DescribeFiles(app, options);
    DescribeOutput(app, raw);
    DescribeText(app, options, raw);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& failure) {
        if (failure.get_exit_code() == 0) {
            app.exit(failure, out, error);
            return {std::nullopt, ExitCode::kDone};
        }
        error << "norvane: error: " << failure.what() << "; --help tells the usage\n";
        return {std::nullopt, ExitCode::kUsage};
    }
    std::string reason;
    if (!Complete(options, raw, reason)) {
        error << "norvane: error: " << reason << '\n';
        return {std::nullopt, ExitCode::kUsage};
    }
    return {std::move(options), ExitCode::kDone};
}

}  // namespace VANTIX::APP
