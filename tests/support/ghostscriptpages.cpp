// SPDX-License-Identifier: MIT
#include "support/ghostscriptpages.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

#include "support/childprocess.h"
#include "support/temporaryfolder.h"

namespace VANTIX::TEST {
namespace {

constexpr std::chrono::seconds kLimit{60};

/// Marks the bottom of the graphics-state stack by a line width of its own.
constexpr const char* kBefore = "1.5 setlinewidth gsave 1 setlinewidth";

/// Says which stack a document has left in disorder. One `grestore` must lead to the mark, and
/// none must have led there already; a fresh dictionary stack has three dictionaries.
constexpr const char* kAfter =
    "count 0 ne {(operands left: ) print pstack} if clear "
    "countdictstack 3 ne {(dictionaries left open\\n) print} if "
    "currentlinewidth 1.5 eq {(one grestore too many\\n) print} if "
    "grestore currentlinewidth 1.5 ne {(graphics states left open\\n) print} if";

bool IsPdf(const std::string& path) {
    return path.size() > 4 && path.compare(path.size() - 4, 4, ".pdf") == 0;
}

ChildResult RunGhostscript(const std::string& path, std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {"gs", "-q", "-dSAFER", "-dBATCH", "-dNOPAUSE"});
    if (IsPdf(path)) {
        arguments.push_back(path);
    } else {
        arguments.insert(arguments.end(), {"-c", kBefore, "-f", path, "-c", kAfter});
    }
    return RunChild(arguments, kLimit);
}

std::vector<std::string> DeviceArguments(const GhostscriptOptions& options,
                                         const std::string& device, const std::string& output) {
    std::vector<std::string> arguments{
        "-sDEVICE=" + device,     "-r" + std::to_string(options.resolution),
        "-dTextAlphaBits=1",      "-dGraphicsAlphaBits=1",
        "-sOutputFile=" + output, "-sPDFPassword=" + options.password};
    if (options.cropBox) {
        arguments.emplace_back("-dUseCropBox");
    }
    return arguments;
}

std::string Complaint(const ChildResult& result) {
    if (result.timedOut) {
        return "Ghostscript did not come to an end";
    }
    std::string complaint = result.output + result.errors;
    if (result.exitStatus != 0) {
        complaint += " (exit status " + std::to_string(result.exitStatus) + ")";
    }
    return complaint;
}

/// The plates of page `number`, from files such as "1(Cyan).tif".
Plates ReadPlates(const std::filesystem::path& folder, std::size_t number) {
    const std::string prefix = std::to_string(number) + "(";
    Plates plates;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        const std::string name = entry.path().filename().string();
        const std::size_t end = name.rfind(").tif");
        if (name.compare(0, prefix.size(), prefix) == 0 && end != std::string::npos) {
            plates[name.substr(prefix.size(), end - prefix.size())] =
                ReadPlate(entry.path().string());
        }
    }
    return plates;
}

}  // namespace

Interpretation<PageImage> DrawPages(const std::string& path, const GhostscriptOptions& options) {
    const TemporaryFolder folder;
    const ChildResult result =
        RunGhostscript(path, DeviceArguments(options, "ppmraw", folder.File("%d.ppm")));
    Interpretation<PageImage> drawn{{}, Complaint(result)};
    for (int number = 1;; ++number) {
        const std::string page = folder.File(std::to_string(number) + ".ppm");
        if (!std::filesystem::exists(page)) {
            return drawn;
        }
        drawn.pages.push_back(ReadPortableMap(page));
    }
}

Interpretation<Plates> DrawPlates(const std::string& path, const GhostscriptOptions& options) {
    const TemporaryFolder folder;
    std::vector<std::string> arguments = DeviceArguments(options, "tiffsep", folder.File("%d.tif"));
    arguments.emplace_back("-sCompression=none");
    if (!options.spots) {
        arguments.emplace_back("-dMaxSpots=0");
    }
    const ChildResult result = RunGhostscript(path, std::move(arguments));
    Interpretation<Plates> drawn{{}, Complaint(result)};
    for (std::size_t number = 1;; ++number) {
        Plates plates = ReadPlates(folder.Path(), number);
        if (plates.empty()) {
            return drawn;
        }
        drawn.pages.push_back(std::move(plates));
    }
}

ProgramOutput RunPostScript(const std::string& program) {
    const TemporaryFolder folder;
    const std::string path = folder.File("program.ps");
    std::ofstream(path, std::ios::binary) << program;
    const ChildResult result = RunGhostscript(path, {"-dNODISPLAY"});
    const bool failed = result.exitStatus != 0 || !result.errors.empty() || result.timedOut;
    return {result.output, failed ? Complaint(result) : std::string()};
}

std::vector<std::vector<double>> RunProcedure(const std::string& body,
                                              const std::vector<std::vector<float>>& operands,
                                              std::string* complaint) {
    std::ostringstream program;
    program << "%!PS\n/P {" << body << "} bind def\n";
    for (const auto& values : operands) {
        program << "[";
        for (const float value : values) {
            program << ' ' << value;
        }
        program << " P ] { =only ( ) print } forall (\\n) print\n";
    }
    const ProgramOutput run = RunPostScript(program.str());
    *complaint = run.complaint;
    std::istringstream lines(run.text);
    std::vector<std::vector<double>> results;
    for (std::string line; std::getline(lines, line);) {
        std::istringstream numbers(line);
        results.emplace_back(std::istream_iterator<double>(numbers),
                             std::istream_iterator<double>());
    }
    // What the stacks still held is printed behind the results.
    const bool clean = run.complaint.empty() && results.size() == operands.size();
    return clean ? results : std::vector<std::vector<double>>();
}

}  // namespace VANTIX::TEST
