// SPDX-License-Identifier: MIT
#include <array>
#include <cstdlib>

#include "support/imageencoders.h"
#include "support/jbig2encoder.h"

namespace VANTIX::TEST {

namespace {

/// Runs of 0 to 17 pixels (ITU-T T.4, table 2), white ones first.
constexpr std::array<std::array<std::string_view, 18>, 2> kRuns{
    {{"00110101", "000111", "0111", "1000", "1011", "1100", "1110", "1111", "10011", "10100",
      "00111", "01000", "001000", "000011", "110100", "110101", "101010", "101011"},
     {"0000110111", "010", "11", "10", "011", "0011", "0010", "00011", "000101", "000100",
      "0000100", "0000101", "0000111", "00000100", "00000111", "000011000", "0000010111",
      "0000011000"}}};

/// Vertical modes from three to the left to three to the right (ITU-T T.4, table 4).
constexpr std::array<std::string_view, 7> kVertical{"0000010", "000010", "010",    "1",
                                                    "011",     "000011", "0000011"};
constexpr std::string_view kPass = "0001";
constexpr std::string_view kHorizontal = "001";
constexpr std::string_view kEndOfLine = "000000000001";

/// One row as places where its colour changes; white before the first, and the width at the end.
class Row {
public:
    Row() = default;

    Row(const Samples& samples, std::size_t y) : mWidth(static_cast<int>(samples.width)) {
        const auto* line = samples.values.data() + y * samples.width;
        for (std::size_t x = 0; x < samples.width; ++x) {
            mBlack.push_back(line[x] == 0);
        }
    }

    [[nodiscard]] bool At(int x) const {
        return x >= 0 && static_cast<std::size_t>(x) < mBlack.size() &&
               mBlack[static_cast<std::size_t>(x)];
    }

    /// The first pixel from `x` on that has the colour and another one on its left.
    [[nodiscard]] int ChangeTo(bool isBlack, int x, int width) const {
        while (x < width && (At(x) != isBlack || At(x - 1) == isBlack)) {
            ++x;
        }
        return x;
    }

    /// The first pixel from `x` on that has the colour.
    [[nodiscard]] int Next(bool isBlack, int x) const {
        while (x < mWidth && At(x) != isBlack) {
            ++x;
        }
        return x;
    }

    [[nodiscard]] int Width() const { return mWidth; }

private:
    int mWidth = 0;
    std::vector<bool> mBlack;
};

std::string_view Run(bool isBlack, int length) {
    return kRuns[isBlack ? 1 : 0].at(static_cast<std::size_t>(length));
}

std::string OneDimensional(const Row& row) {
    std::string bits;
    bool isBlack = false;
    for (int x = 0; x < row.Width(); isBlack = !isBlack) {
        const int end = row.Next(!isBlack, x);
        bits += Run(isBlack, end - x);
        x = end;
    }
    return bits;
}

/// ITU-T T.4, 4.2.1.3; the names of the places are its own.
std::string TwoDimensional(const Row& row, const Row& above) {
    std::string bits;
    bool isBlack = false;
    for (int a0 = -1; a0 < row.Width();) {
        const int start = a0 < 0 ? 0 : a0;
        const int a1 = row.Next(!isBlack, start);
        const int b1 = above.ChangeTo(!isBlack, a0 + 1, row.Width());
        const int b2 = above.ChangeTo(isBlack, b1 + 1, row.Width());
        if (b2 < a1) {
            bits += kPass;
            a0 = b2;
        } else if (std::abs(a1 - b1) <= 3) {
            const int mode = 3 + a1 - b1;
            bits += kVertical.at(static_cast<std::size_t>(mode));
            a0 = a1;
            isBlack = !isBlack;
        } else {
            const int a2 = row.Next(isBlack, a1);
            bits += kHorizontal;
            bits += Run(isBlack, a1 - start);
            bits += Run(!isBlack, a2 - a1);
            a0 = a2;
        }
    }
    return bits;
}

void PadToByte(std::string& bits) {
    bits.resize((bits.size() + 7) / 8 * 8, '0');
}

std::string BytesOf(std::string bits) {
    PadToByte(bits);
    std::string bytes;
    for (std::size_t i = 0; i < bits.size(); i += 8) {
        bytes += static_cast<char>(std::stoi(bits.substr(i, 8), nullptr, 2));
    }
    return bytes;
}

std::vector<Row> RowsOf(const Samples& samples) {
    std::vector<Row> rows;
    for (std::size_t y = 0; y < samples.height; ++y) {
        rows.emplace_back(samples, y);
    }
    return rows;
}

}  // namespace

std::string Fax(const Samples& samples, const FaxOptions& options) {
    std::string bits;
    Row above;
    bool isSecond = false;
    for (const Row& row : RowsOf(samples)) {
        const bool isPlain = options.k == 0 || (options.k > 0 && !isSecond);
        if (options.endOfLine) {
            bits += kEndOfLine;
            bits += options.k > 0 ? (isPlain ? "1" : "0") : "";
        }
        if (options.byteAlign) {
            PadToByte(bits);
        }
        bits += isPlain ? OneDimensional(row) : TwoDimensional(row, above);
        above = row;
        isSecond = !isSecond;
    }
    for (int i = 0; i < (options.k < 0 ? 2 : 6); ++i) {
        bits += kEndOfLine;
        bits += options.k > 0 ? "1" : "";
    }
    return BytesOf(bits);
}

std::string Jbig2(const Samples& samples, bool isMmr) {
    Art art;
    for (const Row& row : RowsOf(samples)) {
        art.emplace_back();
        for (int x = 0; x < row.Width(); ++x) {
            art.back() += row.At(x) ? '#' : '.';
        }
    }
    const std::string region =
        isMmr ? RegionOf(art, {}) + '\1' + Fax(samples, {}) : GenericRegion(art, {});
    return PageSegment(art) + Jbig2Segment(1, kGenericSegment, region);
}

}  // namespace VANTIX::TEST
