// SPDX-License-Identifier: MIT
#pragma once

#include <map>
#include <string>
#include <vector>

namespace VANTIX::TEST {

/// One pdfmark of a job.
struct Pdfmark {
    std::string kind;                            ///< "BP", "EP", "SP", "NI" or "SetTransparency"
    std::string subject;                         ///< the object of /SP
    std::map<std::string, std::string> entries;  ///< texts of the values, by key without slash
};

/// The pdfmarks of a job in their order, which begin a line each. Where the job asks for one
/// product, those for all others.
std::vector<Pdfmark> PdfmarksOf(const std::string& job);

/// What the pdfmarks of transparency build, a line for each and forms numbered by their
/// definition:
///
///     form 1 [0 0 1 1] group isolated /DeviceRGB      or "plain"; lines up to its "end" are in it
///     end
///     state ca 0.5 CA 1 Multiply                      followed by its soft mask
///     draw 1
///     mask 1, image masked by 1                       soft-mask images by their numbers
///
/// A state that stands already is not named again.
std::string OutlineOf(const std::string& job);

}  // namespace VANTIX::TEST
