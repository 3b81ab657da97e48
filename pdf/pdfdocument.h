// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "pdf/diagnostics.h"
#include "pdf/qpdfheaders.h"

namespace VANTIX::PDF {

enum class OpenResult { kOk, kUnreadable, kNotPdf, kWrongPassword };

enum class PageBox { kCrop, kMedia, kTrim, kBleed };

/// A page as it is printed: `width` x `height` points with the lower left corner at 0 0, after
/// /Rotate and /UserUnit; `matrix` leads there from the page's user space.
struct PageGeometry {
    float width = 612;
    float height = 792;
    std::array<float, 6> matrix{1, 0, 0, 1, 0, 0};
    std::array<float, 4> box{0, 0, 612, 792};  ///< the chosen box in user space, x0 y0 x1 y1
    std::string label;                         ///< page label, or the page's number, UTF-8
};

/// An open PDF file. Damaged files are repaired as far as libqpdf can; what it says about them goes
/// to the diagnostics.
class PdfDocument {
public:
    /// `password` may be empty. Null with the reason in `result` and `error` when it cannot be
    /// read.
    static std::unique_ptr<PdfDocument> Open(const std::string& path, const std::string& password,
                                             Diagnostics& diagnostics, OpenResult& result,
                                             std::string& error);
    ~PdfDocument();
    PdfDocument(const PdfDocument&) = delete;
    PdfDocument& operator=(const PdfDocument&) = delete;
    PdfDocument(PdfDocument&&) = delete;
    PdfDocument& operator=(PdfDocument&&) = delete;

    [[nodiscard]] int PageCount() const;
    /// `index` from 0. A box that is missing or empty falls back as PDF says, at last to Letter.
    [[nodiscard]] PageGeometry Geometry(int index, PageBox box) const;
    /// /Info /Title and /Creator as UTF-8, empty when missing.
    [[nodiscard]] std::string Title() const;
    [[nodiscard]] std::string Creator() const;
    /// The ICC profile of the first output intent that holds one with `components` (1, 3 or 4)
    /// components, else empty.
    [[nodiscard]] std::vector<std::uint8_t> OutputIntentProfile(int components) const;

    /// For the reader's own use.
    QPDF& Qpdf();
    /// Null beyond the last page.
    QPDFObjectHandle Page(int index) const;
    /// A page's attribute, inherited from the page tree where the page lacks it; else null.
    QPDFObjectHandle Attribute(int index, const std::string& key) const;
    /// Hands what libqpdf has found wrong since the last call to the diagnostics, under kind
    /// "damaged".
    void ReportWarnings(int page = 0);

private:
    PdfDocument();
    struct Parts;
    std::unique_ptr<Parts> mParts;
};

}  // namespace VANTIX::PDF
