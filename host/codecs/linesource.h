// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "core/types.h"
#include "host/codecs/codeddata.h"
#include "host/export.h"

namespace VANTIX::HOST {

/// Size and depth of coded image data.
struct ImageFormat {
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::int32_t components = 1;
    std::int32_t bits = 8;  ///< 1, 2, 4, 8 or 16 for each component

    /// Bytes of a line, padded to whole bytes.
    [[nodiscard]] std::size_t LineBytes() const {
        return (static_cast<std::size_t>(width) * static_cast<std::size_t>(components) *
                    static_cast<std::size_t>(bits) +
                7) /
               8;
    }
};

/// The decoded lines of an image, top first, pixel-interleaved as in PDF: most significant bit
/// first, lines padded to whole bytes, 16-bit samples big-endian.
class NORVANE_HOST_API LineSource {
public:
    virtual ~LineSource() = default;
    LineSource(const LineSource&) = delete;
    LineSource& operator=(const LineSource&) = delete;
    LineSource(LineSource&&) = delete;
    LineSource& operator=(LineSource&&) = delete;

    [[nodiscard]] const ImageFormat& Format() const { return mFormat; }

    /// The next line (borrowed until the next call), or null at the end of the data, whether they
    /// are complete or damaged.
    virtual const std::uint8_t* NextLine() = 0;

    /// Goes back to the first line.
    virtual void Rewind() = 0;

    /// What was wrong with the data so far; empty when nothing was.
    [[nodiscard]] const std::string& Error() const { return mError; }

protected:
    explicit LineSource(const ImageFormat& format) : mFormat(format) {}

    LineSource() = default;

    ImageFormat mFormat;
    std::string mError;
};

using LineSourcePtr = std::unique_ptr<LineSource>;

/// Parameters of LZWDecode and FlateDecode (PDF Reference, 3.3.3).
struct PredictorParameters {
    std::int32_t predictor = 1;
    std::int32_t colors = 1;
    std::int32_t bitsPerComponent = 8;
    std::int32_t columns = 1;
};

/// Parameters of CCITTFaxDecode (PDF Reference, 3.3.5).
struct FaxParameters {
    std::int32_t k = 0;
    std::int32_t columns = 1728;
    std::int32_t rows = 0;  ///< 0: until the end of the data
    bool endOfLine = false;
    bool encodedByteAlign = false;
    bool endOfBlock = true;
    bool blackIs1 = false;
};

/// What a JPEG 2000 file says of itself beyond its size.
struct JpxInfo {
    /// "gray", "rgb ", "cmyk" or 0 when the file names no space of these. Samples of other known
    /// spaces (YCC) arrive as RGB, palettes expanded.
    FourCC family = 0;
    std::int32_t colors = 0;  ///< colour components, which come first
    bool hasAlpha = false;    ///< one more component with opacity follows them
    bool isPremultiplied = false;
    std::string profile;  ///< ICC profile, or empty
};

// Makers answer null, with the reason in `error`, for what cannot be read at all. Each holds no
// more than a few lines and what its codec needs, JPX and JBIG2 the whole decoded image.

/// Data without coding; missing bytes end the lines.
NORVANE_HOST_API LineSourcePtr MakeRawSource(CodedData data, const ImageFormat& format);

/// FlateDecode with its predictor, which must not exceed sane limits.
NORVANE_HOST_API LineSourcePtr MakeFlateSource(CodedData data, const ImageFormat& format,
                                               const PredictorParameters& predictor,
                                               std::string& error);

/// DCTDecode. `colorTransform` is the parameter of the filter, or -1 when it is not given. CMYK
/// comes out as a PDF reader sees it: inverted by no marker (PDF Reference, 3.3.7).
NORVANE_HOST_API LineSourcePtr MakeDctSource(CodedData data, std::int32_t colorTransform,
                                             std::string& error);

/// JPXDecode. The format has all components, scaled to one size and to 8 or 16 bits (1, 2, 4 where
/// there is one component of that depth).
NORVANE_HOST_API LineSourcePtr MakeJpxSource(const CodedData& data, JpxInfo& info,
                                             std::string& error);

/// CCITTFaxDecode: lines of `columns` pixels of 1 bit, `height` of them at most.
NORVANE_HOST_API LineSourcePtr MakeFaxSource(CodedData data, const FaxParameters& parameters,
                                             std::int32_t height, std::string& error);

/// JBIG2Decode as PDF embeds it: 1 bit, 1 is black in the coded page and comes out as 0.
/// `globals` may be null.
NORVANE_HOST_API LineSourcePtr MakeJbig2Source(const CodedData& data, const CodedData& globals,
                                               std::int32_t width, std::int32_t height,
                                               std::string& error);

}  // namespace VANTIX::HOST
