// SPDX-License-Identifier: MIT
#include "e2e/tool.h"
#include "support/temporaryfolder.h"

namespace VANTIX::TEST {
namespace {

/// The cases that neither compose nor have masks, which their plain text tells.
std::vector<std::string> OpaqueFiles() {
    std::vector<std::string> files;
    for (const auto& entry : std::filesystem::directory_iterator(NORVANE_CASES)) {
        if (entry.path().extension() != ".pdf") {
            continue;
        }
        const std::string text = ReadFile(entry.path().string());
        constexpr const char* kOthers[] = {"/SMask", "/ca ",     "/CA ",         "/BM",
                                           "Mask",   "/Encrypt", "/Transparency"};
        if (std::none_of(std::begin(kOthers), std::end(kOthers),
                         [&](const char* word) { return text.find(word) != std::string::npos; })) {
            files.push_back(entry.path().string());
        }
    }
    EXPECT_GT(files.size(), 40U);
    return files;
}

std::string Written(const std::string& file, const std::vector<std::string>& options) {
    std::vector<std::string> arguments = options;
    arguments.insert(arguments.end(), {"--quiet", file, "-"});
    const ChildResult run = RunTool(arguments);
    EXPECT_EQ(run.exitStatus, kDone) << run.errors;
    return run.output;
}

TEST(OpaqueFilesWithPdfmarks, ComeOutAsWithoutThem) {
    for (const std::string& file : OpaqueFiles()) {
        const std::string plain = Written(file, {});
        EXPECT_GT(plain.size(), 500U) << file;
        EXPECT_TRUE(Written(file, {"--transparency", "pdfmark"}) == plain) << file;
    }
}

TEST(OpaqueFilesWithPdfmarks, HaveTheirStateWrittenWhereAskedFor) {
    const std::string text =
        Written(CasePath("whole-job"), {"--transparency", "pdfmark", "--all-states"});
    EXPECT_NE(text.find("[/ca 1 /CA 1 /BM /Normal /AIS false /TK true /SetTransparency pdfmark\n"),
              std::string::npos);
}

}  // namespace
}  // namespace VANTIX::TEST
