// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>

#include "host/host.h"
#include "pdf/pageplayer.h"
#include "support/pdftext.h"
#include "support/recordingspace.h"

namespace VANTIX::TESTS {

/// Plays a small PDF into a recording space.
class PdfPlay {
    TemporaryFile mFile;
    HOST::Host mHost;
    TInterfacePtr<HOST::BaseConnectionSpace> mBase;
    TInterfacePtr<RecordingSpace> mSpace;

public:
    explicit PdfPlay(const PdfText& pdf, const PDF::ReaderOptions& options = {})
        : PdfPlay(pdf.Bytes(), options) {}

    explicit PdfPlay(const std::string& bytes, const PDF::ReaderOptions& options = {})
        : mFile(bytes),
          mBase(MakeObject<HOST::BaseConnectionSpace>(mHost.ColorSpaces().DeviceSpace("gray"_cc))),
          mSpace(MakeObject<RecordingSpace>()) {
        mBase->Init(mSpace.Get());
        document = PDF::PdfDocument::Open(mFile.Path(), "", diagnostics, result, error);
        if (document) {
            player =
                std::make_unique<PDF::PagePlayer>(*document, mHost, *mBase, options, diagnostics);
            player->CollectFonts({0}, error);
        }
    }

    /// All calls of a page.
    std::string Page(int index = 0) {
        mSpace->calls.clear();
        player->Play(index);
        return mSpace->calls;
    }

    /// The calls of the first page's content: without the bracket of page and content.
    std::string Content() {
        const std::string calls = Page();
        const std::string opening = "clip\nnewpath\nsave\n";
        const std::string closing = "restore\nrestore\n";
        const std::size_t start = calls.find(opening) + opening.size();
        return calls.substr(start, calls.size() - start - closing.size());
    }

    /// Kinds of warnings in order, each followed by a space.
    [[nodiscard]] std::string Warnings() const {
        std::string kinds;
        for (const auto& warning : diagnostics.Warnings()) {
            kinds += warning.kind + ' ';
        }
        return kinds;
    }

    PDF::Diagnostics diagnostics;
    PDF::OpenResult result = PDF::OpenResult::kOk;
    std::string error;
    std::unique_ptr<PDF::PdfDocument> document;
    std::unique_ptr<PDF::PagePlayer> player;
};

}  // namespace VANTIX::TESTS
