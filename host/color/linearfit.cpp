// SPDX-License-Identifier: MIT
#include "host/color/linearfit.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <utility>

#include "host/color/functionbase.h"

namespace VANTIX::HOST {

namespace {

constexpr float kTolerance = 1.0F / 512.0F;
constexpr std::size_t kGrid = 1024;
// Nearer points would be one in the six digits that count.
constexpr float kLeastStep = 1.0F / 1048576.0F;

/// Where the function may bend beside the grid: its domain, its table, its bounds.
std::vector<float> FindKnots(const COLOR::IColorFunction& function) {
    const float d0 = function.GetDomain()[0];
    const float d1 = function.GetDomain()[1];
    std::vector<float> knots{d0, d1};
    const auto* sampled =
        FindInterface<COLOR::ISampledFunction>(&function, COLOR::IID_ISAMPLEDFUNCTION);
    if (sampled == nullptr) {
        return knots;
    }
    const auto last = static_cast<float>(sampled->GetSizes()[0] - 1);
    const float* encode = sampled->GetEncode();
    const float e0 = encode == nullptr ? 0.0F : encode[0];
    const float e1 = encode == nullptr ? last : encode[1];
    const auto count = std::min(static_cast<std::size_t>(sampled->GetSizes()[0]), 4 * kGrid);
    for (std::size_t i = 0; i < count && e0 != e1; ++i) {
        knots.push_back(d0 + (static_cast<float>(i) - e0) * (d1 - d0) / (e1 - e0));
    }
    return knots;
}

std::vector<float> FindBounds(const COLOR::IColorFunction& function) {
    const auto* stitching =
        FindInterface<COLOR::IStitchingFunction>(&function, COLOR::IID_ISTITCHINGFUNCTION);
    if (stitching == nullptr) {
        return {};
    }
    const float* bounds = stitching->GetBounds();
    std::vector<float> inside(bounds, bounds + stitching->GetFunctionCount() - 1);
    std::erase_if(inside, [](float b) { return !(b > kLeastStep && b <= 1.0F); });
    return inside;
}

/// The function's values at ascending points; a jump is a point that stands there twice.
class Samples {
public:
    Samples(const COLOR::IColorFunction& function, std::size_t maxJumps)
        : mOutputs(static_cast<std::size_t>(function.GetOutputCount())) {
        std::vector<float> jumps = FindBounds(function);
        if (jumps.size() > maxJumps) {
            jumps.clear();
        }
        std::vector<float> points = FindKnots(function);
        for (std::size_t i = 0; i <= kGrid; ++i) {
            points.push_back(static_cast<float>(i) / kGrid);
        }
        points.insert(points.end(), jumps.begin(), jumps.end());
        std::erase_if(points, [](float x) { return !(x >= 0.0F && x <= 1.0F); });
        std::sort(points.begin(), points.end());
        for (const float x : points) {
            const bool isJump = std::binary_search(jumps.begin(), jumps.end(), x);
            const bool isNew = mX.empty() || x - mX.back() >= kLeastStep || isJump || x == 1.0F;
            if (!isNew || (!mX.empty() && x == mX.back())) {
                continue;
            }
            if (x == 1.0F && !isJump) {
                DropBeyond(1.0F - kLeastStep);
            }
            if (isJump) {
                // The full tint is a jump's right side too: it needs some room before the end.
                const float at = std::min(x, 1.0F - kLeastStep);
                DropBeyond(at - kLeastStep);
                Add(function, at, std::nextafter(x, 0.0F));
                Add(function, at, x);
            }
            if (!isJump || x == 1.0F) {
                Add(function, x, x);
            }
        }
        FindScales();
    }

    std::size_t Count() const { return mX.size(); }

    float X(std::size_t i) const { return mX[i]; }

    const float* Values(std::size_t i) const { return &mValues[i * mOutputs]; }

    std::size_t Outputs() const { return mOutputs; }

    float Scale(std::size_t output) const { return mScales[output]; }

private:
    void DropBeyond(float x) {
        while (!mX.empty() && mX.back() > x) {
            mX.pop_back();
            mValues.resize(mValues.size() - mOutputs);
        }
    }

    void Add(const COLOR::IColorFunction& function, float x, float input) {
        mX.push_back(x);
        mValues.resize(mValues.size() + mOutputs);
        function.Evaluate(&input, &mValues[mValues.size() - mOutputs]);
    }

    void FindScales() {
        for (std::size_t k = 0; k < mOutputs; ++k) {
            float low = mValues[k];
            float high = low;
            for (std::size_t i = 0; i < Count(); ++i) {
                low = std::min(low, Values(i)[k]);
                high = std::max(high, Values(i)[k]);
            }
            mScales.push_back(std::max(1.0F, high - low));
        }
    }

    std::size_t mOutputs;
    std::vector<float> mX;
    std::vector<float> mValues;
    std::vector<float> mScales;
};

struct Piece {
    std::size_t first;
    std::size_t last;
};

/// The farthest sample that a straight line from `first` may end at: its slope must be in the cone
/// that leaves every sample between within the tolerance.
std::size_t ExtendPiece(const Samples& samples, std::size_t first, float tolerance) {
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    std::array<float, kMaxFunctionOutputs> low{};
    std::array<float, kMaxFunctionOutputs> high{};
    low.fill(-kInfinity);
    high.fill(kInfinity);
    const float* start = samples.Values(first);
    std::size_t best = first + 1;
    for (std::size_t i = first + 1; i < samples.Count() && samples.X(i) > samples.X(i - 1); ++i) {
        const float dx = samples.X(i) - samples.X(first);
        const float* values = samples.Values(i);
        bool fits = true;
        bool isOpen = true;
        for (std::size_t k = 0; k < samples.Outputs(); ++k) {
            const float dy = values[k] - start[k];
            const float room = tolerance * samples.Scale(k);
            fits = fits && dy / dx >= low[k] && dy / dx <= high[k];
            low[k] = std::max(low[k], (dy - room) / dx);
            high[k] = std::min(high[k], (dy + room) / dx);
            isOpen = isOpen && low[k] <= high[k];
        }
        best = fits ? i : best;
        if (!isOpen) {
            break;
        }
    }
    return best;
}

std::vector<Piece> Split(const Samples& samples, float tolerance) {
    std::vector<Piece> pieces;
    for (std::size_t at = 0; at + 1 < samples.Count();) {
        if (samples.X(at + 1) == samples.X(at)) {
            ++at;
            continue;
        }
        const std::size_t end = ExtendPiece(samples, at, tolerance);
        pieces.push_back({at, end});
        at = end;
    }
    return pieces;
}

/// The pieces for the least tolerance that needs no more than `maxPieces`.
std::vector<Piece> SplitWithin(const Samples& samples, std::size_t maxPieces) {
    constexpr float kEnough = 4.0F;  // any line of values within their own width
    std::vector<Piece> best = Split(samples, kTolerance);
    float low = kTolerance;
    float high = kTolerance;
    while (best.size() > maxPieces && high < kEnough) {
        low = high;
        high *= 2.0F;
        best = Split(samples, high);
    }
    for (int round = 0; round < 8 && low < high; ++round) {
        const float middle = 0.5F * (low + high);
        std::vector<Piece> pieces = Split(samples, middle);
        const bool fits = pieces.size() <= maxPieces;
        (fits ? high : low) = middle;
        if (fits) {
            best = std::move(pieces);
        }
    }
    return best;
}

/// Values at the ends of a line through its piece: the function's own where they are near enough,
/// else moved to the middle of what the piece deviates by. No tint and the full tint stay exact.
struct Ends {
    std::vector<float> first;
    std::vector<float> last;
};

Ends FindEnds(const Samples& samples, const Piece& piece) {
    Ends ends;
    const float width = samples.X(piece.last) - samples.X(piece.first);
    for (std::size_t k = 0; k < samples.Outputs(); ++k) {
        const float from = samples.Values(piece.first)[k];
        const float to = samples.Values(piece.last)[k];
        float low = 0.0F;
        float high = 0.0F;
        for (std::size_t i = piece.first + 1; i < piece.last; ++i) {
            const float t = (samples.X(i) - samples.X(piece.first)) / width;
            const float deviation = samples.Values(i)[k] - (from + t * (to - from));
            low = std::min(low, deviation);
            high = std::max(high, deviation);
        }
        const bool isNear = std::max(-low, high) <= kTolerance * samples.Scale(k);
        const float shift = isNear ? 0.0F : 0.5F * (low + high);
        ends.first.push_back(piece.first == 0 ? from : from + shift);
        ends.last.push_back(piece.last + 1 == samples.Count() ? to : to + shift);
    }
    return ends;
}

FunctionPtr MakeLine(const Samples& samples, const Piece& piece, std::vector<float> range) {
    Ends ends = FindEnds(samples, piece);
    std::string error;
    return MakeExponentialFunction({{0.0F, 1.0F}, std::move(range)}, std::move(ends.first),
                                   std::move(ends.last), 1.0F, error);
}

}  // namespace

FunctionPtr FitLinearPieces(const COLOR::IColorFunction& function, std::size_t maxPieces) {
    const Samples samples(function, maxPieces / 2);
    const std::vector<Piece> pieces = SplitWithin(samples, maxPieces);
    std::vector<float> range;
    if (const float* given = function.GetRange()) {
        range.assign(given, given + 2 * samples.Outputs());
    }
    if (pieces.size() == 1) {
        return MakeLine(samples, pieces.front(), std::move(range));
    }
    std::vector<FunctionPtr> lines;
    std::vector<float> bounds;
    std::vector<float> encode;
    for (const Piece& piece : pieces) {
        if (!lines.empty()) {
            bounds.push_back(samples.X(piece.first));
        }
        lines.push_back(MakeLine(samples, piece, {}));
        encode.insert(encode.end(), {0.0F, 1.0F});
    }
    std::string error;
    return MakeStitchingFunction({{0.0F, 1.0F}, std::move(range)}, std::move(lines),
                                 std::move(bounds), std::move(encode), error);
}

}  // namespace VANTIX::HOST
