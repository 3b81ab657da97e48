// SPDX-License-Identifier: MIT
#include "pdf/pdfdocument.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <exception>
#include <qpdf/QPDFSystemError.hh>
#include <qpdf/QUtil.hh>
#include <system_error>

#include "pdf/objects.h"
#include "pdf/pagelabel.h"
#include "pdf/pagetree.h"
#include "pdf/qpdfheaders.h"

namespace VANTIX::PDF {

namespace {

// A page of more than this is no page; interpreters refuse such sizes.
constexpr double kLargestPage = 1e6;
constexpr std::array<double, 4> kLetter = {0, 0, 612, 792};
constexpr std::array<double, 4> kEverything = {-kLargestNumber, -kLargestNumber, kLargestNumber,
                                               kLargestNumber};

bool IsUsable(const std::array<double, 4>& box) {
    const double width = box[2] - box[0];
    const double height = box[3] - box[1];
    return width > 0 && height > 0 && width <= kLargestPage && height <= kLargestPage;
}

std::array<double, 4> Intersect(const std::array<double, 4>& a, const std::array<double, 4>& b) {
    return {std::max(a[0], b[0]), std::max(a[1], b[1]), std::min(a[2], b[2]), std::min(a[3], b[3])};
}

OpenResult ResultOf(const QPDFExc& failure) {
    switch (failure.getErrorCode()) {
        case qpdf_e_password:
            return OpenResult::kWrongPassword;
        case qpdf_e_damaged_pdf:
            return OpenResult::kNotPdf;
        default:
            return OpenResult::kUnreadable;
    }
}

// Text after %PDF- may be anything; what tells a PDF from other files is that it has pages.
OpenResult Load(QPDF& qpdf, const std::string& path, const std::string& password,
                std::string& error) {
    try {
        qpdf.processFile(path.c_str(), password.c_str());
        if (!qpdf.getRoot().isDictionary()) {
            error = "the file has no document catalog";
            return OpenResult::kNotPdf;
        }
        return OpenResult::kOk;
    } catch (const QPDFExc& failure) {
        error = failure.getMessageDetail();
        return ResultOf(failure);
    } catch (const QPDFSystemError& failure) {
        error = std::generic_category().message(failure.getErrno());
        return OpenResult::kUnreadable;
    } catch (const std::exception& failure) {
        error = failure.what();
        return OpenResult::kUnreadable;
    }
}

bool IsReadableFile(const std::string& path, std::string& error) {
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rb"),
                                                               std::fclose);
    if (file && (std::fgetc(file.get()) != EOF || std::ferror(file.get()) == 0)) {
        return true;
    }
    error = std::generic_category().message(errno);
    return false;
}

int RotationOf(const QPDFObjectHandle& rotate) {
    const double angle = NumberOf(rotate).value_or(0.0);
    const int quarters = static_cast<int>(ToFloat(angle) / 90.0F) % 4;
    return (quarters + 4) % 4;
}

// From user space to a page that starts at 0 0, turned clockwise by quarters.
std::array<double, 6> PageMatrix(const std::array<double, 4>& box, int quarters, double unit) {
    switch (quarters) {
        case 1:
            return {0, -unit, unit, 0, -box[1] * unit, box[2] * unit};
        case 2:
            return {-unit, 0, 0, -unit, box[2] * unit, box[3] * unit};
        case 3:
            return {0, unit, -unit, 0, box[3] * unit, -box[0] * unit};
        default:
            return {unit, 0, 0, unit, -box[0] * unit, -box[1] * unit};
    }
}

int ComponentsOf(const QPDFObjectHandle& profile) {
    return IntegerOf(Get(profile, "/N")).value_or(0);
}

}  // namespace

struct PdfDocument::Parts {
    // Destroyed last: the pages are handles into it.
    std::unique_ptr<QPDF> qpdf;
    std::vector<PageNode> pages;
    Diagnostics* diagnostics = nullptr;

    std::string InfoText(const std::string& key) const {
        try {
            QPDFObjectHandle text = Get(Get(qpdf->getTrailer(), "/Info"), key);
            return text.isString() ? text.getUTF8Value() : std::string();
        } catch (const std::exception&) {
            return {};
        }
    }
};

PdfDocument::PdfDocument() : mParts(std::make_unique<Parts>()) {}

PdfDocument::~PdfDocument() = default;

std::unique_ptr<PdfDocument> PdfDocument::Open(const std::string& path, const std::string& password,
                                               Diagnostics& diagnostics, OpenResult& result,
                                               std::string& error) {
    result = OpenResult::kUnreadable;
    if (!IsReadableFile(path, error)) {
        return nullptr;
    }
    std::unique_ptr<PdfDocument> document(new PdfDocument());
    Parts& parts = *document->mParts;
    parts.diagnostics = &diagnostics;
    // Older encryption takes passwords in encodings other than the terminal's.
    for (const std::string& candidate : QUtil::possible_repaired_encodings(password)) {
        parts.qpdf = std::make_unique<QPDF>();
        parts.qpdf->setSuppressWarnings(true);
        result = Load(*parts.qpdf, path, candidate, error);
        if (result != OpenResult::kWrongPassword) {
            break;
        }
    }
    if (result != OpenResult::kOk) {
        return nullptr;
    }
    try {
        parts.pages = CollectPages(*parts.qpdf);
    } catch (const std::exception& failure) {
        error = failure.what();
    }
    document->ReportWarnings();
    if (parts.pages.empty()) {
        result = OpenResult::kNotPdf;
        error = error.empty() ? "the file has no pages" : error;
        return nullptr;
    }
    return document;
}

int PdfDocument::PageCount() const {
    return static_cast<int>(mParts->pages.size());
}

QPDF& PdfDocument::Qpdf() {
    return *mParts->qpdf;
}

QPDFObjectHandle PdfDocument::Page(int index) const {
    if (index < 0 || index >= PageCount()) {
        return QPDFObjectHandle::newNull();
    }
    return mParts->pages[static_cast<std::size_t>(index)].page;
}

QPDFObjectHandle PdfDocument::Attribute(int index, const std::string& key) const {
    QPDFObjectHandle own = Get(Page(index), key);
    const auto* const found = std::find(kInheritableKeys.begin(), kInheritableKeys.end(), key);
    if (!own.isNull() || found == kInheritableKeys.end() || index < 0 || index >= PageCount()) {
        return own;
    }
    const auto slot = static_cast<std::size_t>(found - kInheritableKeys.begin());
    return mParts->pages[static_cast<std::size_t>(index)].inherited[slot];
}

PageGeometry PdfDocument::Geometry(int index, PageBox box) const {
    PageGeometry geometry;
    geometry.label = std::to_string(index + 1);
    try {
        const auto boxWithin = [&](const std::string& key, const std::array<double, 4>& outer,
                                   const std::array<double, 4>& fallback) {
            const auto found = RectangleOf(Attribute(index, key));
            const std::array<double, 4> cut = found ? Intersect(*found, outer) : fallback;
            return IsUsable(cut) ? cut : fallback;
        };
        const std::array<double, 4> media = boxWithin("/MediaBox", kEverything, kLetter);
        std::array<double, 4> chosen = media;
        if (box != PageBox::kMedia) {
            chosen = boxWithin("/CropBox", media, media);
        }
        if (box == PageBox::kTrim || box == PageBox::kBleed) {
            chosen = boxWithin(box == PageBox::kTrim ? "/TrimBox" : "/BleedBox", media, chosen);
        }
        double unit = NumberOf(Attribute(index, "/UserUnit")).value_or(1.0);
        const double longest = std::max(chosen[2] - chosen[0], chosen[3] - chosen[1]);
        unit = unit > 0 && unit * longest <= kLargestPage ? unit : 1.0;
        const int quarters = RotationOf(Attribute(index, "/Rotate"));
        const std::array<double, 6> matrix = PageMatrix(chosen, quarters, unit);
        geometry.width = ToFloat((chosen[2] - chosen[0]) * unit);
        geometry.height = ToFloat((chosen[3] - chosen[1]) * unit);
        if (quarters % 2 != 0) {
            std::swap(geometry.width, geometry.height);
        }
        std::transform(matrix.begin(), matrix.end(), geometry.matrix.begin(), ToFloat);
        std::transform(chosen.begin(), chosen.end(), geometry.box.begin(), ToFloat);
        geometry.label = PageLabel(*mParts->qpdf, index);
    } catch (const std::exception& failure) {
        mParts->diagnostics->Warn("damaged", failure.what(), index + 1);
    }
    return geometry;
}

std::string PdfDocument::Title() const {
    return mParts->InfoText("/Title");
}

std::string PdfDocument::Creator() const {
    return mParts->InfoText("/Creator");
}

std::vector<std::uint8_t> PdfDocument::OutputIntentProfile(int components) const {
    constexpr std::size_t kLargestProfile = std::size_t{64} << 20U;
    try {
        QPDFObjectHandle intents = Get(mParts->qpdf->getRoot(), "/OutputIntents");
        const int count = intents.isArray() ? intents.getArrayNItems() : 0;
        for (int i = 0; i < count; ++i) {
            const QPDFObjectHandle profile = Get(intents.getArrayItem(i), "/DestOutputProfile");
            std::string data;
            if (ComponentsOf(profile) == components &&
                AppendStreamData(profile, data, kLargestProfile) == StreamResult::kOk) {
                return {data.begin(), data.end()};
            }
        }
    } catch (const std::exception& failure) {
        mParts->diagnostics->Warn("damaged", failure.what());
    }
    return {};
}

void PdfDocument::ReportWarnings(int page) {
    for (const QPDFExc& warning : mParts->qpdf->getWarnings()) {
        mParts->diagnostics->Warn("damaged", warning.getMessageDetail(), page);
    }
}

}  // namespace VANTIX::PDF
