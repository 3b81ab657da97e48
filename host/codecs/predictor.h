// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "host/codecs/linesource.h"

namespace VANTIX::HOST {

/// Undoes the differences between neighbours that an encoder wrote instead of samples: predictor 2
/// of TIFF (TIFF 6.0, section 14) and the row filters of PNG (RFC 2083, section 6), as the
/// PDF Reference combines them in 3.3.3.
class Predictor {
public:
    /// Parameters must have passed Check.
    explicit Predictor(const PredictorParameters& parameters);

    /// Whether the parameters make sense and their rows are not too long; else `error` tells.
    static bool Check(const PredictorParameters& parameters, std::string& error);

    [[nodiscard]] bool IsOn() const { return mPredictor > 1; }

    /// Bytes before the samples of a coded row: PNG's number of a filter.
    [[nodiscard]] std::size_t TagBytes() const { return mPredictor >= kFirstPng ? 1 : 0; }

    /// Bytes of the samples of a row.
    [[nodiscard]] std::size_t RowBytes() const { return mRowBytes; }

    /// Turns a coded row, with its tag, into samples in place. `prior` is the row above, laid out
    /// in the same way.
    void Undo(std::uint8_t* coded, const std::uint8_t* prior) const;

private:
    static constexpr std::int32_t kFirstPng = 10;

    void UndoPng(std::uint8_t filter, std::uint8_t* row, const std::uint8_t* above) const;
    void UndoTiff(std::uint8_t* row) const;
    void UndoTiffBits(std::uint8_t* row) const;

    std::int32_t mPredictor;
    std::int32_t mBits;
    std::size_t mColors;
    std::size_t mColumns;
    std::size_t mRowBytes;
    std::size_t mPixelBytes;  ///< distance of a byte from its neighbour on the left
};

}  // namespace VANTIX::HOST
