// SPDX-License-Identifier: MIT
#include "host/codecs/predictor.h"

#include <algorithm>
#include <cstdlib>

#include "host/codecs/codecsupport.h"

namespace VANTIX::HOST {

namespace {

enum PngFilter : std::uint8_t { kNone, kSub, kUp, kAverage, kPaeth };

ImageFormat RowFormat(const PredictorParameters& parameters) {
    return {parameters.columns, 1, parameters.colors, parameters.bitsPerComponent};
}

std::uint8_t Sum(std::uint8_t value, int other) {
    return static_cast<std::uint8_t>(value + other);
}

/// The neighbour (left, above, above left) that is nearest to left + above - above left.
int NearestNeighbour(int left, int above, int corner) {
    const int toLeft = std::abs(above - corner);
    const int toAbove = std::abs(left - corner);
    const int toCorner = std::abs(left + above - 2 * corner);
    const int upper = toAbove <= toCorner ? above : corner;
    return toLeft <= toAbove && toLeft <= toCorner ? left : upper;
}

}  // namespace

bool Predictor::Check(const PredictorParameters& parameters, std::string& error) {
    const std::int32_t predictor = parameters.predictor;
    if (predictor == 1) {
        return true;
    }
    if (predictor != 2 && (predictor < kFirstPng || predictor > 15)) {
        error = "predictor " + std::to_string(predictor) + " is unknown";
        return false;
    }
    return IsServable(RowFormat(parameters), error);
}

Predictor::Predictor(const PredictorParameters& parameters)
    : mPredictor(parameters.predictor),
      mBits(parameters.bitsPerComponent),
      mColors(static_cast<std::size_t>(parameters.colors)),
      mColumns(static_cast<std::size_t>(parameters.columns)),
      mRowBytes(RowFormat(parameters).LineBytes()),
      mPixelBytes((mColors * static_cast<std::size_t>(mBits) + 7) / 8) {}

void Predictor::Undo(std::uint8_t* coded, const std::uint8_t* prior) const {
    if (mPredictor >= kFirstPng) {
        UndoPng(coded[0], coded + 1, prior + 1);
    } else if (mPredictor == 2) {
        UndoTiff(coded);
    }
}

void Predictor::UndoPng(std::uint8_t filter, std::uint8_t* row, const std::uint8_t* above) const {
    const std::size_t first = std::min(mPixelBytes, mRowBytes);
    switch (filter) {
        case kSub:
            for (std::size_t i = first; i < mRowBytes; ++i) {
                row[i] = Sum(row[i], row[i - mPixelBytes]);
            }
            break;
        case kUp:
            for (std::size_t i = 0; i < mRowBytes; ++i) {
                row[i] = Sum(row[i], above[i]);
            }
            break;
        case kAverage:
            for (std::size_t i = 0; i < first; ++i) {
                row[i] = Sum(row[i], above[i] / 2);
            }
            for (std::size_t i = first; i < mRowBytes; ++i) {
                row[i] = Sum(row[i], (row[i - mPixelBytes] + above[i]) / 2);
            }
            break;
        case kPaeth:
            for (std::size_t i = 0; i < first; ++i) {
                row[i] = Sum(row[i], above[i]);
            }
            for (std::size_t i = first; i < mRowBytes; ++i) {
                row[i] = Sum(row[i], NearestNeighbour(row[i - mPixelBytes], above[i],
                                                      above[i - mPixelBytes]));
            }
            break;
        default:
            // Readers take filters beyond PNG's five for none.
            break;
    }
}

void Predictor::UndoTiff(std::uint8_t* row) const {
    if (mBits == 8) {
        for (std::size_t i = mColors; i < mRowBytes; ++i) {
            row[i] = Sum(row[i], row[i - mColors]);
        }
    } else if (mBits == 16) {
        for (std::size_t i = 2 * mColors; i + 1 < mRowBytes; i += 2) {
            const std::uint8_t* left = row + i - 2 * mColors;
            const int low = row[i + 1] + left[1];
            row[i] = Sum(row[i], left[0] + (low >> 8));
            row[i + 1] = static_cast<std::uint8_t>(low);
        }
    } else {
        UndoTiffBits(row);
    }
}

void Predictor::UndoTiffBits(std::uint8_t* row) const {
    const auto bits = static_cast<std::size_t>(mBits);
    const int mask = (1 << mBits) - 1;
    const auto shiftOf = [bits](std::size_t sample) { return 8 - bits - sample * bits % 8; };
    for (std::size_t i = mColors; i < mColors * mColumns; ++i) {
        const std::size_t left = i - mColors;
        const int difference = row[left * bits / 8] >> shiftOf(left);
        const std::size_t at = i * bits / 8;
        const std::size_t shift = shiftOf(i);
        const int value = ((row[at] >> shift) + difference) & mask;
        row[at] = static_cast<std::uint8_t>((row[at] & ~(mask << shift)) | (value << shift));
    }
}

}  // namespace VANTIX::HOST
