// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>

#include "pdf/objects.h"
#include "pdf/qpdfheaders.h"
#include "pdf/reporter.h"
#include "pdf/resources.h"

namespace VANTIX::PDF {

/// Content beyond this many bytes is cut off: it is hostile.
inline constexpr std::size_t kLargestContent = std::size_t{1} << 30U;

/// Reports what went wrong with the data of a stream, under the kinds "filter" and "damaged".
void ReportStream(StreamResult result, const std::string& what, Reporter& reporter);

/// A form XObject, or the cell of a tiling pattern, read and decoded (PDF Reference, 4.6.2
/// and 4.9).
struct Form {
    std::string content;
    std::array<double, 6> matrix{1, 0, 0, 1, 0, 0};
    std::optional<std::array<double, 4>> box;
    std::unique_ptr<Resources> resources;  ///< null: those of the content that draws it
    /// The group attributes of a transparency group (PDF Reference, 7.5.5), or null.
    QPDFObjectHandle group;
    /// As it stands in the document.
    QPDFObjectHandle stream = QPDFObjectHandle::newNull();
};

/// The forms and cells that are being played. None may hold itself, and there is an end to their
/// depth.
class OpenStreams {
public:
    /// Keeps a stream open while it lives.
    class Mark {
    public:
        Mark(OpenStreams& open, const QPDFObjectHandle& stream);
        ~Mark();
        Mark(const Mark&) = delete;
        Mark& operator=(const Mark&) = delete;
        Mark(Mark&&) = delete;
        Mark& operator=(Mark&&) = delete;

        /// False for a stream that is open already, or too deep: it must not be played.
        [[nodiscard]] bool IsSet() const { return mIsSet; }

    private:
        OpenStreams& mOpen;
        QPDFObjGen mStream;
        bool mIsSet;
    };

    [[nodiscard]] bool MayOpen(const QPDFObjGen& stream) const {
        return mStreams.size() < kMaxDepth && !mStreams.contains(stream);
    }

private:
    static constexpr std::size_t kMaxDepth = 28;

    std::set<QPDFObjGen> mStreams;
};

/// Forms are drawn again and again: keeps the last ones decoded.
class FormCache {
public:
    FormCache(ColorSpaces& colorSpaces, Reporter& reporter)
        : mColorSpaces(colorSpaces), mReporter(reporter) {}

    /// The form of `stream`; what cannot be decoded has no content. `label` names it in warnings.
    std::shared_ptr<Form> Find(const QPDFObjectHandle& stream, const char* label = "A form");

private:
    static constexpr std::size_t kMaxBytes = std::size_t{32} << 20U;
    static constexpr std::size_t kMaxForms = 4096;

    ColorSpaces& mColorSpaces;
    Reporter& mReporter;
    std::map<QPDFObjGen, std::shared_ptr<Form>> mForms;
    std::size_t mBytes = 0;
};

}  // namespace VANTIX::PDF
