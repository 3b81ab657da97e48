// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace VANTIX::TEST {

/// The samples of a small picture, pixel-interleaved, top row first.
struct Samples {
    std::size_t width = 0;
    std::size_t height = 0;
    std::size_t components = 1;
    unsigned bits = 8;
    std::vector<std::uint16_t> values;

    [[nodiscard]] std::uint16_t Greatest() const {
        return static_cast<std::uint16_t>((1U << bits) - 1);
    }

    [[nodiscard]] std::size_t RowValues() const { return width * components; }
};

/// Ramps over the whole range, one direction for each component.
Samples Ramps(std::size_t width, std::size_t height, std::size_t components, unsigned bits);

/// A drawing of 1 bit with runs, lone pixels and empty rows.
Samples LineArt();

/// Samples as PDF holds them: most significant bit first, lines padded to whole bytes.
std::string Packed(const Samples& samples);

// Encodings by which a PDF filter brings back the bytes given.

std::string Hex(std::string_view bytes);
std::string Deflated(std::string_view bytes);
std::string RunLengths(std::string_view bytes);
/// `early` is the parameter EarlyChange.
std::string Lzw(std::string_view bytes, bool early);

/// `Packed` behind a predictor: each line by another filter type of PNG, or by TIFF predictor 2.
std::string PngPredicted(const Samples& samples);
std::string TiffPredicted(const Samples& samples);

// Whole codecs. Samples are of 8 bits but where it is said.

enum class JpegModel { kGray, kYcc, kRgb, kCmyk, kYcck };

/// A baseline file without subsampling, of the best quality.
std::string Jpeg(const Samples& samples, JpegModel model);

enum class JpxSpace { kUsual, kCmyk, kYcc };

struct JpxOptions {
    JpxSpace space = JpxSpace::kUsual;
    bool isCodestream = false;  ///< without the boxes of a JP2 file
    bool isSigned = false;
    std::uint16_t opacity = 1;   ///< what the last of two or four components is, unless CMYK
    std::size_t chromaStep = 1;  ///< the second and third component have one sample of so many
};

/// JPEG 2000 without loss, of 1 to 16 bits. The last of two or four components is opacity, unless
/// they are CMYK.
std::string Jpx(const Samples& samples, const JpxOptions& options = {});

struct FaxOptions {
    int k = -1;
    bool endOfLine = false;
    bool byteAlign = false;
};

/// CCITT groups 3 and 4 of drawings at most 17 pixels wide (ITU-T T.4 and T.6); 0 is black.
std::string Fax(const Samples& samples, const FaxOptions& options);

/// A page of one generic region (ITU-T T.88), coded arithmetically or by MMR; 0 is black.
std::string Jbig2(const Samples& samples, bool isMmr);

}  // namespace VANTIX::TEST
