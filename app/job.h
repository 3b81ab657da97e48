// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "app/console.h"
#include "app/exitcode.h"
#include "app/options.h"
#include "app/report.h"
#include "host/host.h"
#include "host/io/fileprovider.h"
#include "host/support/logger.h"
#include "pdf/diagnostics.h"
#include "pdf/pageplayer.h"
#include "pdf/pdfdocument.h"

namespace VANTIX::APP {

class DscFrame;
class OutputFile;
struct DocumentSummary;

/// One conversion of a PDF file into PostScript, from the open command line to the finished file.
class Job {
public:
    /// Both must outlive the job.
    Job(const Options& options, Console& console);
    ~Job();
    Job(const Job&) = delete;
    Job& operator=(const Job&) = delete;
    Job(Job&&) = delete;
    Job& operator=(Job&&) = delete;

    /// Runs it; what went wrong has been said on the console.
    ExitCode Run();

private:
    using Clock = std::chrono::steady_clock;

    ExitCode Fail(ExitCode status, const std::string& text);
    ExitCode CheckFiles();
    ExitCode OpenInput();
    ExitCode PrepareHost();
    ExitCode SetProfiles();
    ExitCode OpenOutputs();
    ExitCode Convert();
    ExitCode WriteReport();
    ExitCode Commit();
    ExitCode FailOutput(const std::string& path, const std::string& reason);
    ExitCode Finish(HOST::FileProvider& out, const std::string& path);
    ExitCode WriteDocument(HOST::FileProvider& out);
    ExitCode PlayPages(HOST::BaseConnectionSpace& space, DscFrame& frame, HOST::FileProvider& out);
    [[nodiscard]] PDF::ReaderOptions Reader() const;
    [[nodiscard]] bool IsBinary() const;
    [[nodiscard]] DocumentSummary Summarize() const;
    [[nodiscard]] PDF::PageGeometry Geometry(std::size_t position) const;
    void TakeLogEntry(const HOST::LogEntry& entry);

    const Options& mOptions;
    Console& mConsole;
    Clock::time_point mStart = Clock::now();
    RunRecord mRun;
    int mCurrentPage = 0;
    PDF::Diagnostics mDiagnostics;
    // The host outlives whatever holds its objects.
    std::unique_ptr<HOST::Host> mHost;
    std::unique_ptr<PDF::PdfDocument> mDocument;
    std::vector<int> mPages;  ///< zero-based, in the order of output
    std::unique_ptr<OutputFile> mOutput;
    std::unique_ptr<OutputFile> mReport;  ///< null for none
};

}  // namespace VANTIX::APP
