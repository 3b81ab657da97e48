// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

#include "core/io/idataprovider.h"

namespace VANTIX::APP {

/// What the header comments say about a document.
struct DocumentSummary {
    std::string title;    ///< UTF-8
    std::string creator;  ///< UTF-8
    int pages = 0;
    float width = 0;  ///< of the largest page, points
    float height = 0;
    int languageLevel = 3;
    bool binary = false;  ///< image data may hold any byte
};

/// The frame of a job by the Document Structuring Conventions, version 3.0: header, prolog and
/// set-up, page comments, page sizes and trailer. Everything goes straight to the job's stream. No
/// line is over 255 characters, and no text of a document can end its comment.
class DscFrame {
public:
    /// `out` must outlive the frame.
    explicit DscFrame(IO::IDataProvider& out) : mOut(out) {}

    /// Header comments, and a prolog for interpreters that know no distiller's operators.
    void WriteHeader(const DocumentSummary& summary);

    /// Opens the set-up section with the size of the first page. The plug-in's header follows.
    void BeginSetup(float width, float height);
    void EndSetup();

    /// Opens page `ordinal` (from 1, in the order of output). A change of the page size resets the
    /// interpreter's colour, so that the size is set around the colour in force.
    void BeginPage(std::string_view label, int ordinal, float width, float height);
    /// Shows the page and keeps the interpreter's graphics state.
    void EndPage();

    /// The trailer but for the end-of-file comment, which the plug-in writes.
    void WriteTrailer();

private:
    void Write(std::string_view text);

    IO::IDataProvider& mOut;
    float mWidth = 0;
    float mHeight = 0;
};

/// `text` as a PostScript string of printable ASCII in parentheses, cut to at most `limit`
/// characters with them. No character of UTF-8 and no escape is cut in two.
std::string DscText(std::string_view text, std::size_t limit);

}  // namespace VANTIX::APP
