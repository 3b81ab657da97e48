// SPDX-License-Identifier: MIT
#pragma once

#include <unistd.h>

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>
#include <string>
#include <string_view>

namespace VANTIX::TESTS {

/// Assembles a small PDF file from the texts of its objects: header, objects, cross-reference table
/// and trailer. Object 1 is the catalog.
class PdfText {
public:
    /// "<< … >>" or any other object text under `number`.
    PdfText& Object(int number, std::string_view text) {
        mObjects[number] = text;
        return *this;
    }

    /// A stream; `entries` go into its dictionary beside /Length.
    PdfText& Stream(int number, std::string_view data, std::string_view entries = "") {
        mObjects[number] = "<< " + std::string(entries) + " /Length " +
                           std::to_string(data.size()) + " >>\nstream\n" + std::string(data) +
                           "\nendstream";
        return *this;
    }

    /// Further entries of the trailer.
    PdfText& Trailer(std::string_view entries) {
        mTrailer = entries;
        return *this;
    }

    [[nodiscard]] std::string Bytes() const {
        std::string file = "%PDF-1.7\n";
        std::map<int, std::size_t> offsets;
        for (const auto& [number, text] : mObjects) {
            offsets[number] = file.size();
            file += std::to_string(number) + " 0 obj\n" + text + "\nendobj\n";
        }
        const std::size_t table = file.size();
        const int size = mObjects.empty() ? 1 : mObjects.rbegin()->first + 1;
        file += "xref\n0 " + std::to_string(size) + "\n0000000000 65535 f \n";
        for (int i = 1; i < size; ++i) {
            char line[24];
            const bool used = offsets.contains(i);
            std::snprintf(line, sizeof line, "%010zu %05d %c \n", used ? offsets[i] : 0,
                          used ? 0 : 65535, used ? 'n' : 'f');
            file += line;
        }
        return file + "trailer\n<< /Size " + std::to_string(size) + " /Root 1 0 R " + mTrailer +
               " >>\nstartxref\n" + std::to_string(table) + "\n%%EOF\n";
    }

    /// A document of one page of 100 x 100 points: objects 1 to 4 are catalog, page tree, page and
    /// content. `resources` and `page` are entries of the dictionaries.
    static PdfText OnePage(std::string_view content, std::string_view resources = "",
                           std::string_view page = "") {
        PdfText pdf;
        pdf.Object(1, "<< /Type /Catalog /Pages 2 0 R >>")
            .Object(2, "<< /Type /Pages /Kids [3 0 R] /Count 1 >>")
            .Object(3,
                    "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 100 100] /Contents 4 0 R "
                    "/Resources << " +
                        std::string(resources) + " >> " + std::string(page) + " >>")
            .Stream(4, content);
        return pdf;
    }

private:
    std::map<int, std::string> mObjects;
    std::string mTrailer;
};

/// A file with the given bytes that lives as long as this object.
class TemporaryFile {
public:
    explicit TemporaryFile(std::string_view bytes) {
        const char* folder = std::getenv("TMPDIR");
        mPath = std::string(folder != nullptr ? folder : "/tmp") + "/norvane-test-XXXXXX";
        const int file = mkstemp(mPath.data());
        if (file >= 0) {
            close(file);
        }
        std::ofstream(mPath, std::ios::binary)
            .write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    }

    ~TemporaryFile() { std::remove(mPath.c_str()); }

    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    TemporaryFile(TemporaryFile&&) = delete;
    TemporaryFile& operator=(TemporaryFile&&) = delete;

    [[nodiscard]] const std::string& Path() const { return mPath; }

private:
    std::string mPath;
};

}  // namespace VANTIX::TESTS
