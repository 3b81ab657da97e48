// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace VANTIX::TEST {

/// A PDF file of the given objects (1 is the catalog) with a correct cross-reference table.
inline std::string PdfOf(const std::vector<std::string>& objects) {
    std::string file = "%PDF-1.7\n";
    std::string table;
    for (std::size_t i = 0; i < objects.size(); ++i) {
        const std::string offset = std::to_string(file.size());
        table += std::string(10 - offset.size(), '0') + offset + " 00000 n \n";
        file += std::to_string(i + 1) + " 0 obj\n" + objects[i] + "\nendobj\n";
    }
    const std::string count = std::to_string(objects.size() + 1);
    const std::string start = std::to_string(file.size());
    return file + "xref\n0 " + count + "\n0000000000 65535 f \n" + table +
           "trailer\n<< /Root 1 0 R /Size " + count + " >>\nstartxref\n" + start + "\n%%EOF\n";
}

inline std::string StreamOf(const std::string& data, const std::string& entries = {}) {
    return "<< " + entries + " /Length " + std::to_string(data.size()) + " >>\nstream\n" + data +
           "\nendstream";
}

/// A page of 100 x 100 points. `resources` are entries of its resource dictionary, `more` objects
/// from number 5 on.
inline std::string PageOf(const std::string& content, const std::string& resources = {},
                          const std::vector<std::string>& more = {},
                          const std::string& page = "/MediaBox [0 0 100 100]") {
    std::vector<std::string> objects{"<< /Type /Catalog /Pages 2 0 R >>",
                                     "<< /Type /Pages /Kids [3 0 R] /Count 1 >>",
                                     "<< /Type /Page /Parent 2 0 R /Contents 4 0 R " + page +
                                         " /Resources << " + resources + " >> >>",
                                     StreamOf(content)};
    objects.insert(objects.end(), more.begin(), more.end());
    return PdfOf(objects);
}

inline std::string Repeated(const std::string& text, std::size_t count) {
    std::string all;
    all.reserve(text.size() * count);
    for (std::size_t i = 0; i < count; ++i) {
        all += text;
    }
    return all;
}

}  // namespace VANTIX::TEST
