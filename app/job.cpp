// SPDX-License-Identifier: MIT
#include "app/job.h"

#include <algorithm>
#include <cstdlib>
#include <system_error>

#include "app/digest.h"
#include "app/dscframe.h"
#include "app/outputfile.h"
#include "core/io/ioutputfilterstack.h"

namespace VANTIX::APP {
namespace {

/// Stands for now where nobody says what time it is: 2000-01-01 00:00 UTC.
constexpr std::int64_t kFixedTime = 946684800;

/// No real profile is larger; a device that never ends is.
constexpr std::size_t kProfileLimit = std::size_t{64} << 20U;

/// The time that stands for now: SOURCE_DATE_EPOCH, the agreement of reproducible builds.
std::int64_t RunTime() {
    const char* text = std::getenv("SOURCE_DATE_EPOCH");
    char* end = nullptr;
    const std::int64_t time = text == nullptr ? 0 : std::strtoll(text, &end, 10);
    return text == nullptr || end == text || *end != '\0' ? kFixedTime : time;
}

double MillisecondsSince(std::chrono::steady_clock::time_point start) {
    const std::chrono::duration<double, std::milli> passed =
        std::chrono::steady_clock::now() - start;
    return passed.count();
}

}  // namespace

Job::Job(const Options& options, Console& console)
    : mOptions(options),
      mConsole(console),
      mDiagnostics([this](const auto& warning) { mConsole.Warning(warning); }) {
    HOST::SetLogSink([this](const HOST::LogEntry& entry) { TakeLogEntry(entry); });
}

Job::~Job() {
    mDocument.reset();
    mHost.reset();
    HOST::SetLogSink({});
}

ExitCode Job::Fail(ExitCode status, const std::string& text) {
    mConsole.Error(text);
    return status;
}

void Job::TakeLogEntry(const HOST::LogEntry& entry) {
    if (entry.type == LogType::kError) {
        // One kind for each place in the code: a fault repeats with every operator.
        mDiagnostics.Warn(entry.file + ':' + std::to_string(entry.line), entry.text, mCurrentPage);
    } else {
        mConsole.Notice(entry.file + ": " + entry.text);
    }
}

ExitCode Job::Run() {
    for (const auto step : {&Job::CheckFiles, &Job::OpenInput, &Job::PrepareHost, &Job::SetProfiles,
                            &Job::OpenOutputs, &Job::Convert, &Job::WriteReport, &Job::Commit}) {
        const ExitCode status = (this->*step)();
        if (status != ExitCode::kDone) {
            return status;
        }
    }
    mConsole.Notice(std::to_string(mRun.pages.size()) + " pages, " + std::to_string(mRun.bytes) +
                    " bytes");
    return ExitCode::kDone;
}

ExitCode Job::CheckFiles() {
    if (IsSameFile(mOptions.input, mOptions.output)) {
        return Fail(ExitCode::kUsage, "INPUT and OUTPUT are the same file");
    }
    if (!mOptions.report.empty() && (IsSameFile(mOptions.report, mOptions.input) ||
                                     IsSameFile(mOptions.report, mOptions.output))) {
        return Fail(ExitCode::kUsage, "--report needs a file of its own");
    }
    return ExitCode::kDone;
}

ExitCode Job::OpenInput() {
    PDF::OpenResult result = PDF::OpenResult::kUnreadable;
    std::string error;
    mDocument =
        PDF::PdfDocument::Open(mOptions.input, mOptions.password, mDiagnostics, result, error);
    if (!mDocument) {
        return Fail(ExitCode::kInput, mOptions.input + ": " + error);
    }
    if (mDocument->PageCount() < 1) {
        return Fail(ExitCode::kInput, mOptions.input + ": has no pages");
    }
    if (!mOptions.pages.Resolve(mDocument->PageCount(), mPages, error)) {
        return Fail(ExitCode::kUsage, "--pages: " + error);
    }
    mRun.openMilliseconds = MillisecondsSince(mStart);
    return ExitCode::kDone;
}

ExitCode Job::PrepareHost() {
    mHost = std::make_unique<HOST::Host>();
    Digest digest;
    if (!digest.AddFile(mOptions.input)) {
        return Fail(ExitCode::kInput,
                    mOptions.input + ": " + std::generic_category().message(errno));
    }
    // What is opaque comes out the same with pdfmarks and without, its names too.
    Options opaque = mOptions;
    opaque.policy.Set(KEY::kPdfmarkTransparency, false);
    digest.Add(OptionsAsJson(opaque));
    mHost->SetRunEnvironment(digest.Value(), RunTime());
    std::string error;
    const std::string plugin = mOptions.plugin.empty() ? HOST::Host::FindPlugin() : mOptions.plugin;
    if (plugin.empty()) {
        return Fail(ExitCode::kPlugin, "there is no plug-in beside the tool; name it by --plugin");
    }
    if (!mHost->LoadPlugin(plugin, error)) {
        return Fail(ExitCode::kPlugin, error);
    }
    return ExitCode::kDone;
}

ExitCode Job::SetProfiles() {
    struct Slot {
        const char* option;
        const std::string& file;
        int components;
        std::vector<std::uint8_t> HOST::DefaultProfiles::*profile;
    };

    const Slot slots[] = {
        {"--gray-profile", mOptions.grayProfile, 1, &HOST::DefaultProfiles::gray},
        {"--rgb-profile", mOptions.rgbProfile, 3, &HOST::DefaultProfiles::rgb},
        {"--cmyk-profile", mOptions.cmykProfile, 4, &HOST::DefaultProfiles::cmyk}};
    HOST::DefaultProfiles chosen;
    std::string error;
    for (const Slot& slot : slots) {
        HOST::DefaultProfiles trial = chosen;
        if (slot.file.empty()) {
            trial.*slot.profile = mDocument->OutputIntentProfile(slot.components);
        } else if (!ReadFile(slot.file, kProfileLimit, trial.*slot.profile, error)) {
            return Fail(ExitCode::kUsage, slot.option + (": " + slot.file + ": ") + error);
        }
        if (mHost->ColorSpaces().SetDefaultProfiles(trial, error)) {
            chosen = std::move(trial);
        } else if (!slot.file.empty()) {
            return Fail(ExitCode::kUsage, slot.option + (": " + slot.file + ": ") + error);
        } else {
            mDiagnostics.Warn("output-intent", "The output intent's profile is left out: " + error);
        }
    }
    return ExitCode::kDone;
}

ExitCode Job::FailOutput(const std::string& path, const std::string& reason) {
    return Fail(ExitCode::kOutput, (path == "-" ? "standard output" : path) + ": " + reason);
}

ExitCode Job::OpenOutputs() {
    std::string error;
    mOutput = OutputFile::Create(mOptions.output, error);
    if (!mOutput) {
        return FailOutput(mOptions.output, error);
    }
    if (mOptions.report.empty()) {
        return ExitCode::kDone;
    }
    mReport = OutputFile::Create(mOptions.report, error);
    return mReport ? ExitCode::kDone : FailOutput(mOptions.report, error);
}

ExitCode Job::Finish(HOST::FileProvider& out, const std::string& path) {
    out.Flush();
    return out.FirstError() == 0
               ? ExitCode::kDone
               : FailOutput(path, std::generic_category().message(out.FirstError()));
}

ExitCode Job::Convert() {
    const auto out = MakeObject<HOST::FileProvider>(mOutput->OpenWriter());
    const ExitCode status = WriteDocument(*out);
    mRun.bytes = out->BytesWritten();
    return status != ExitCode::kDone ? status : Finish(*out, mOptions.output);
}

PDF::PageGeometry Job::Geometry(std::size_t position) const {
    return mDocument->Geometry(mPages[position], mOptions.box);
}

DocumentSummary Job::Summarize() const {
    DocumentSummary summary;
    summary.title = mDocument->Title();
    if (summary.title.empty()) {
        summary.title = mOptions.input.substr(mOptions.input.rfind('/') + 1);
    }
    const std::string creator = mDocument->Creator();
    summary.creator = "Norvane " NORVANE_VERSION + (creator.empty() ? "" : ", from " + creator);
    summary.pages = static_cast<int>(mPages.size());
    for (std::size_t i = 0; i < mPages.size(); ++i) {
        const PDF::PageGeometry page = Geometry(i);
        summary.width = std::max(summary.width, page.width);
        summary.height = std::max(summary.height, page.height);
    }
    summary.languageLevel = mOptions.policy.Int(KEY::kLanguageLevel, 3);
    summary.binary = IsBinary();
    return summary;
}

bool Job::IsBinary() const {
    // Without any encoding asked for, the plug-in takes ASCII base-85.
    const Policy& policy = mOptions.policy;
    return !policy.Bool(KEY::kAscii85Only) && !policy.Bool(IO::FILTER::kAscii85) &&
           (policy.Bool(IO::FILTER::kFlate) || policy.Bool(IO::FILTER::kRunLength));
}

ExitCode Job::WriteDocument(HOST::FileProvider& out) {
    DscFrame frame(out);
    frame.WriteHeader(Summarize());
    const PDF::PageGeometry first = Geometry(0);
    frame.BeginSetup(first.width, first.height);
    const auto policy = mHost->CreatePolicy();
    const auto exporter = mHost->CreateExporter();
    if (!policy || !exporter) {
        return Fail(ExitCode::kPlugin, "the plug-in offers no PostScript exporter");
    }
    mOptions.policy.CopyTo(*policy);
    auto* space = HOST::BaseConnectionSpace::From(exporter->Begin(out, policy.Get()));
    if (space == nullptr) {
        return Fail(ExitCode::kPlugin, "the plug-in could not begin the job");
    }
    frame.EndSetup();
    const ExitCode status = PlayPages(*space, frame, out);
    mCurrentPage = 0;
    frame.WriteTrailer();
    exporter->End();
    return status;
}

PDF::ReaderOptions Job::Reader() const {
    PDF::ReaderOptions reader;
    reader.languageLevel = mOptions.policy.Int(KEY::kLanguageLevel, 3);
    reader.intent = mOptions.intent;
    reader.box = mOptions.box;
    reader.embedProfiles = mOptions.policy.Bool(KEY::kEmbedProfiles);
    reader.keepsAlpha = mOptions.policy.Bool(KEY::kPdfmarkTransparency);
    reader.opaqueCells = mOptions.policy.Bool(KEY::kOpaquePatterns);
    reader.keepsHiddenText = mOptions.keepsHiddenText;
    reader.fonts = mOptions.fonts;
    reader.fonts.languageLevel = reader.languageLevel;
    reader.fonts.trueType = mOptions.policy.Bool(KEY::kTrueType, reader.languageLevel == 3);
    reader.fonts.textOnly = !IsBinary();
    reader.graysAsPalettes = mOptions.policy.TakesNoGrayBits();
    return reader;
}

ExitCode Job::PlayPages(HOST::BaseConnectionSpace& space, DscFrame& frame,
                        HOST::FileProvider& out) {
    if (const std::string what = mOptions.policy.Shortcoming(); !what.empty()) {
        mDiagnostics.Warn("color-model", what);
    }
    PDF::PagePlayer player(*mDocument, *mHost, space, Reader(), mDiagnostics);
    std::string error;
    if (!player.CollectFonts(mPages, error)) {
        return Fail(ExitCode::kInput, mOptions.input + ": " + error);
    }
    // Nothing more reaches a full disk or a closed pipe.
    for (std::size_t i = 0; i < mPages.size() && out.FirstError() == 0; ++i) {
        const auto start = Clock::now();
        const std::uint64_t bytesBefore = out.BytesWritten();
        const PDF::PageGeometry page = Geometry(i);
        mCurrentPage = mPages[i] + 1;
        frame.BeginPage(page.label, static_cast<int>(i) + 1, page.width, page.height);
        player.Play(mPages[i]);
        frame.EndPage();
        mRun.pages.push_back({mCurrentPage, page.label, page.width, page.height,
                              out.BytesWritten() - bytesBefore, MillisecondsSince(start)});
        mConsole.Progress(static_cast<int>(i) + 1, static_cast<int>(mPages.size()));
    }
    mConsole.ClearProgress();
    mRun.colorSpaces = player.ColorSpaceNames();
    mRun.fonts = player.FontRecords();
    return ExitCode::kDone;
}

ExitCode Job::WriteReport() {
    if (!mReport) {
        return ExitCode::kDone;
    }
    mRun.totalMilliseconds = MillisecondsSince(mStart);
    const std::string text = ReportAsJson(mOptions, mRun, mDiagnostics.Warnings());
    const auto out = MakeObject<HOST::FileProvider>(mReport->OpenWriter());
    out->Write(text.data(), text.size());
    return Finish(*out, mOptions.report);
}

ExitCode Job::Commit() {
    std::string error;
    if (!mOutput->Commit(error)) {
        return FailOutput(mOptions.output, error);
    }
    if (mReport && !mReport->Commit(error)) {
        return FailOutput(mOptions.report, error);
    }
    return ExitCode::kDone;
}

}  // namespace VANTIX::APP
