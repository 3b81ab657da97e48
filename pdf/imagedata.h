// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "host/codecs/linesource.h"
#include "pdf/objects.h"
#include "pdf/qpdfheaders.h"

namespace VANTIX::PDF {

enum class ImageCodec : std::uint8_t { kRaw, kFlate, kDct, kJpx, kFax, kJbig2 };

/// An image as it stands in the document: an XObject, or an inline image, whose dictionary has been
/// brought to the keys and names of XObjects and whose data are given beside it.
struct ImageObject {
    QPDFObjectHandle stream;      ///< null for an inline image
    QPDFObjectHandle dictionary;  ///< a dictionary
    std::string_view inlineData;
    std::string label;  ///< for messages: "Image 12 0", "An inline image"

    /// An image XObject.
    static ImageObject FromStream(const QPDFObjectHandle& stream);
};

/// Image data up to their last filter, which is left to a codec.
struct CodedImage {
    HOST::CodedData data;
    ImageCodec codec = ImageCodec::kRaw;
    QPDFObjectHandle parameters = QPDFObjectHandle::newNull();  ///< of the last filter

    /// Whether the data themselves tell size and depth.
    [[nodiscard]] bool DescribesItself() const {
        return codec == ImageCodec::kDct || codec == ImageCodec::kJpx;
    }
};

/// A filter of a stream by its long name.
struct ImageFilter {
    std::string name;
    QPDFObjectHandle parameters;
};

/// Undoes the filters before the last one. Keeps a document of its own in which data that are no
/// stream of the document read pass through filters.
class ImageDataReader {
public:
    ImageDataReader();
    ~ImageDataReader();
    ImageDataReader(const ImageDataReader&) = delete;
    ImageDataReader& operator=(const ImageDataReader&) = delete;
    ImageDataReader(ImageDataReader&&) = delete;
    ImageDataReader& operator=(ImageDataReader&&) = delete;

    /// At most `limit` bytes are kept of data without a codec. False, with the reason, when nothing
    /// can be read. With damaged data, what could be read and `error`.
    bool Read(const ImageObject& image, std::size_t limit, CodedImage& coded, std::string& error);

private:
    StreamResult PipeFiltered(const ImageObject& image, const std::vector<ImageFilter>& filters,
                              std::size_t limit, const Take& take);

    struct Scratch;
    std::unique_ptr<Scratch> mScratch;
};

/// The lines of an image from their beginning. `declared` is what the dictionary says, and holds
/// for all codecs but those that describe themselves. Null, with the reason, for unusable data.
HOST::LineSourcePtr OpenLines(const CodedImage& coded, const HOST::ImageFormat& declared,
                              HOST::JpxInfo& info, std::string& error);

}  // namespace VANTIX::PDF
