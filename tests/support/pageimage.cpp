// SPDX-License-Identifier: MIT
#include "support/pageimage.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <sstream>
#include <string_view>

#include "support/temporaryfolder.h"

namespace VANTIX::TEST {
namespace {

constexpr int kTolerance = 16;

/// Little-endian numbers of a TIFF file; 0 beyond its end.
class TiffReader {
public:
    explicit TiffReader(const std::string& bytes) : mBytes(bytes) {}

    [[nodiscard]] std::size_t Number(std::size_t offset, std::size_t size) const {
        if (offset + size > mBytes.size()) {
            return 0;
        }
        std::size_t value = 0;
        for (std::size_t i = size; i-- > 0;) {
            value = (value << 8U) | static_cast<std::uint8_t>(mBytes[offset + i]);
        }
        return value;
    }

    /// All values of a field of the first directory (TIFF 6.0, section 2).
    [[nodiscard]] std::vector<std::size_t> Field(std::size_t tag) const {
        const std::size_t directory = Number(4, 4);
        const std::size_t entries = Number(directory, 2);
        for (std::size_t i = 0; i < entries; ++i) {
            const std::size_t entry = directory + 2 + 12 * i;
            if (Number(entry, 2) == tag) {
                return Values(entry);
            }
        }
        return {};
    }

    [[nodiscard]] std::size_t First(std::size_t tag, std::size_t fallback) const {
        const std::vector<std::size_t> values = Field(tag);
        return values.empty() ? fallback : values.front();
    }

private:
    [[nodiscard]] std::vector<std::size_t> Values(std::size_t entry) const {
        const std::size_t size = Number(entry + 2, 2) == 3 ? 2 : 4;
        const std::size_t count = std::min(Number(entry + 4, 4), mBytes.size());
        const std::size_t start = size * count <= 4 ? entry + 8 : Number(entry + 8, 4);
        std::vector<std::size_t> values;
        for (std::size_t i = 0; i < count; ++i) {
            values.push_back(Number(start + size * i, size));
        }
        return values;
    }

    const std::string& mBytes;
};

int Difference(const PageImage& a, const PageImage& b, std::size_t x, std::size_t y) {
    int greatest = 0;
    for (std::size_t c = 0; c < a.channels; ++c) {
        greatest = std::max(greatest, std::abs(a.At(x, y, c) - b.At(x, y, c)));
    }
    return greatest;
}

bool IsEdge(const PageImage& image, std::size_t x, std::size_t y) {
    const std::size_t left = x == 0 ? 0 : x - 1;
    const std::size_t top = y == 0 ? 0 : y - 1;
    for (std::size_t c = 0; c < image.channels; ++c) {
        std::uint8_t low = 255;
        std::uint8_t high = 0;
        for (std::size_t row = top; row <= std::min(y + 1, image.height - 1); ++row) {
            for (std::size_t column = left; column <= std::min(x + 1, image.width - 1); ++column) {
                low = std::min(low, image.At(column, row, c));
                high = std::max(high, image.At(column, row, c));
            }
        }
        if (high - low > kTolerance) {
            return true;
        }
    }
    return false;
}

}  // namespace

bool PageImage::IsBlank() const {
    return std::all_of(samples.begin(), samples.end(), [](std::uint8_t s) { return s == 255; });
}

PageImage ReadPortableMap(const std::string& path) {
    const std::string bytes = ReadFile(path);
    std::istringstream file(bytes);
    std::string magic;
    PageImage image;
    std::size_t maximum = 0;
    file >> magic;
    while ((file >> std::ws).peek() == '#') {
        std::string comment;
        std::getline(file, comment);
    }
    file >> image.width >> image.height >> maximum;
    file.get();
    if (!file || (magic != "P5" && magic != "P6") || maximum != 255) {
        return {};
    }
    image.channels = magic == "P6" ? 3 : 1;
    const auto start = static_cast<std::size_t>(file.tellg());
    const std::size_t size = image.width * image.height * image.channels;
    if (bytes.size() - start < size) {
        return {};
    }
    const auto* first = bytes.data() + start;
    image.samples.assign(first, first + size);
    return image;
}

PageImage ReadPlate(const std::string& path) {
    const std::string bytes = ReadFile(path);
    if (std::string_view(bytes).substr(0, 4) != std::string_view("II*\0", 4)) {
        return {};
    }
    const TiffReader reader(bytes);
    PageImage image{reader.First(256, 0), reader.First(257, 0), 1, {}};
    const bool isGray8 = reader.First(258, 1) == 8 && reader.First(277, 1) == 1;
    const bool isPlain = reader.First(259, 1) == 1 && reader.First(262, 1) == 1;
    const std::vector<std::size_t> offsets = reader.Field(273);
    const std::vector<std::size_t> counts = reader.Field(279);
    if (!isGray8 || !isPlain || offsets.size() != counts.size()) {
        return {};
    }
    for (std::size_t i = 0; i < offsets.size(); ++i) {
        const std::string_view strip =
            std::string_view(bytes).substr(std::min(offsets[i], bytes.size()), counts[i]);
        image.samples.insert(image.samples.end(), strip.begin(), strip.end());
    }
    return image.samples.size() == image.width * image.height ? image : PageImage{};
}

std::string PageDifference::Describe() const {
    std::ostringstream text;
    if (!sameSize) {
        return "pages of different sizes";
    }
    text << "mean difference " << mean << "/255, " << wrongShare * 100 << " % wrong, first at "
         << firstX << ", " << firstY;
    return text.str();
}

PageDifference Compare(const PageImage& page, const PageImage& reference) {
    PageDifference result;
    result.sameSize = page.width == reference.width && page.height == reference.height &&
                      page.channels == reference.channels && reference.width > 0;
    if (!result.sameSize) {
        return result;
    }
    double sum = 0;
    for (std::size_t i = 0; i < reference.samples.size(); ++i) {
        sum += std::abs(page.samples[i] - reference.samples[i]);
    }
    result.mean = sum / static_cast<double>(reference.samples.size());
    std::size_t judged = 0;
    std::size_t wrong = 0;
    for (std::size_t y = 0; y < reference.height; ++y) {
        for (std::size_t x = 0; x < reference.width; ++x) {
            if (IsEdge(reference, x, y)) {
                continue;
            }
            ++judged;
            if (Difference(page, reference, x, y) > kTolerance && wrong++ == 0) {
                result.firstX = x;
                result.firstY = y;
            }
        }
    }
    result.wrongShare =
        judged == 0 ? 0.0 : static_cast<double>(wrong) / static_cast<double>(judged);
    return result;
}

}  // namespace VANTIX::TEST
