// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace VANTIX::TEST {

/// Writes small ICC profiles of version 2 (ICC.1:2001-04), tag by tag.
class ProfileBuilder {
public:
    /// `name` is of four characters.
    ProfileBuilder(std::string_view deviceClass, std::string_view space, std::string_view pcs,
                   std::string_view name = "Test")
        : mClass(deviceClass), mSpace(space), mPCS(pcs) {
        Tag("wtpt", "XYZ ", {}).Fixed({0.9642, 1.0, 0.8249});
        Tag("desc", "desc", {0, 0, 0, 5}).Bytes({name.begin(), name.end()});
        Bytes(std::vector<std::uint8_t>(79));
    }

    ProfileBuilder& Gamma(std::string_view tag, double gamma) {
        const auto value = static_cast<std::uint32_t>(std::lround(gamma * 256));
        return Tag(tag, "curv",
                   {0, 0, 0, 1, static_cast<std::uint8_t>(value >> 8U),
                    static_cast<std::uint8_t>(value), 0, 0});
    }

    ProfileBuilder& XYZ(std::string_view tag, std::array<double, 3> xyz) {
        return Tag(tag, "XYZ ", {}).Fixed({xyz[0], xyz[1], xyz[2]});
    }

    /// A table from `inputs` values of 0 to 1 to L a b, with `grid` points for each input.
    template <class Sampler>
    ProfileBuilder& Table(std::string_view tag, std::size_t inputs, std::size_t grid,
                          Sampler sampler) {
        return ByteTable(tag, inputs, 3, grid, [&sampler](const std::vector<double>& values) {
            const std::array<double, 3> lab = sampler(values);
            return std::vector<double>{lab[0] / 100, (lab[1] + 128) / 255, (lab[2] + 128) / 255};
        });
    }

    /// A table from L a b, each as 0 to 1, to four inks.
    template <class Sampler>
    ProfileBuilder& InkTable(std::string_view tag, std::size_t grid, Sampler sampler) {
        return ByteTable(tag, 3, 4, grid, sampler);
    }

    std::vector<std::uint8_t> Build() const {
        std::vector<std::uint8_t> directory;
        std::vector<std::uint8_t> data;
        Word(directory, mTags.size());
        for (const auto& [name, bytes] : mTags) {
            directory.insert(directory.end(), name.begin(), name.end());
            Word(directory, 128 + 4 + 12 * mTags.size() + data.size());
            Word(directory, bytes.size());
            data.insert(data.end(), bytes.begin(), bytes.end());
            data.resize((data.size() + 3) / 4 * 4);
        }
        std::vector<std::uint8_t> header;
        Word(header, 128 + directory.size() + data.size());
        Word(header, 0);
        Word(header, 0x02400000);
        for (const std::string& code : {mClass, mSpace, mPCS}) {
            header.insert(header.end(), code.begin(), code.end());
        }
        header.resize(36);
        for (const char c : std::string_view("acsp")) {
            header.push_back(static_cast<std::uint8_t>(c));
        }
        header.resize(68);
        for (const std::uint32_t v : {0xF6D6U, 0x10000U, 0xD32DU}) {
            Word(header, v);
        }
        header.resize(128);
        header.insert(header.end(), directory.begin(), directory.end());
        header.insert(header.end(), data.begin(), data.end());
        return header;
    }

private:
    template <class Sampler>
    ProfileBuilder& ByteTable(std::string_view tag, std::size_t inputs, std::size_t outputs,
                              std::size_t grid, Sampler sampler) {
        Tag(tag, "mft1",
            {static_cast<std::uint8_t>(inputs), static_cast<std::uint8_t>(outputs),
             static_cast<std::uint8_t>(grid), 0});
        Fixed({1, 0, 0, 0, 1, 0, 0, 0, 1});
        Ramps(inputs);
        std::size_t points = 1;
        for (std::size_t i = 0; i < inputs; ++i) {
            points *= grid;
        }
        for (std::size_t point = 0; point < points; ++point) {
            std::vector<double> values(inputs);
            std::size_t rest = point;
            for (std::size_t i = inputs; i-- > 0; rest /= grid) {
                values[i] = static_cast<double>(rest % grid) / static_cast<double>(grid - 1);
            }
            for (const double v : sampler(values)) {
                mTags.back().second.push_back(
                    static_cast<std::uint8_t>(std::lround(255 * std::clamp(v, 0.0, 1.0))));
            }
        }
        return Ramps(outputs);
    }

    static void Word(std::vector<std::uint8_t>& out, std::size_t value) {
        for (const unsigned shift : {24U, 16U, 8U, 0U}) {
            out.push_back(static_cast<std::uint8_t>(value >> shift));
        }
    }

    ProfileBuilder& Tag(std::string_view name, std::string_view type,
                        const std::vector<std::uint8_t>& bytes) {
        mTags.emplace_back(name, std::vector<std::uint8_t>(type.begin(), type.end()));
        Bytes({0, 0, 0, 0});
        return Bytes(bytes);
    }

    ProfileBuilder& Bytes(const std::vector<std::uint8_t>& bytes) {
        auto& data = mTags.back().second;
        data.insert(data.end(), bytes.begin(), bytes.end());
        return *this;
    }

    ProfileBuilder& Fixed(const std::vector<double>& values) {
        for (const double v : values) {
            Word(mTags.back().second, static_cast<std::uint32_t>(std::lround(v * 65536)));
        }
        return *this;
    }

    ProfileBuilder& Ramps(std::size_t count) {
        for (std::size_t i = 0; i < 256 * count; ++i) {
            mTags.back().second.push_back(static_cast<std::uint8_t>(i % 256));
        }
        return *this;
    }

    std::string mClass;
    std::string mSpace;
    std::string mPCS;
    std::vector<std::pair<std::string, std::vector<std::uint8_t>>> mTags;
};

/// RGB with the primaries of sRGB and one gamma.
inline std::vector<std::uint8_t> GammaRGBProfile(double gamma) {
    return ProfileBuilder("mntr", "RGB ", "XYZ ")
        .XYZ("rXYZ", {0.4361, 0.2225, 0.0139})
        .XYZ("gXYZ", {0.3851, 0.7169, 0.0971})
        .XYZ("bXYZ", {0.1431, 0.0606, 0.7141})
        .Gamma("rTRC", gamma)
        .Gamma("gTRC", gamma)
        .Gamma("bTRC", gamma)
        .Build();
}

inline std::vector<std::uint8_t> GammaGrayProfile(double gamma) {
    return ProfileBuilder("mntr", "GRAY", "XYZ ").Gamma("kTRC", gamma).Build();
}

/// Four inks without a table for the other direction.
inline std::vector<std::uint8_t> InkProfile() {
    return ProfileBuilder("prtr", "CMYK", "Lab ")
        .Table("A2B0", 4, 5,
               [](const std::vector<double>& ink) {
                   const double light = 1 - ink[3];
                   return std::array<double, 3>{
                       100 * light * (1 - 0.3 * ink[0] - 0.4 * ink[1] - 0.1 * ink[2]),
                       40 * light * (ink[1] - ink[0]), 50 * light * (ink[2] - 0.5 * ink[0])};
               })
        .Build();
}

/// Four inks with tables for both directions: complements of linear light with a little gain.
inline std::vector<std::uint8_t> PressProfile() {
    return ProfileBuilder("prtr", "CMYK", "Lab ", "Inks")
        .Table("A2B0", 4, 5,
               [](const std::vector<double>& ink) {
                   const double light = 1 - 0.8 * ink[3];
                   return std::array<double, 3>{
                       100 * light * (1 - 0.3 * ink[0] - 0.4 * ink[1] - 0.1 * ink[2]),
                       20 * light * (ink[1] - ink[0]), 25 * light * (ink[2] - 0.5 * ink[0])};
               })
        .InkTable("B2A0", 9,
                  [](const std::vector<double>& lab) {
                      const double a = 255 * lab[1] - 128;
                      const double b = 255 * lab[2] - 128;
                      const double dark = 1 - lab[0];
                      return std::vector<double>{dark * 0.6 - a / 300 - b / 400,
                                                 dark * 0.5 + a / 200, dark * 0.5 + b / 200,
                                                 dark * dark * 0.7};
                  })
        .Build();
}

/// RGB by a table.
inline std::vector<std::uint8_t> TableRGBProfile() {
    return ProfileBuilder("scnr", "RGB ", "Lab ")
        .Table("A2B0", 3, 5,
               [](const std::vector<double>& rgb) {
                   return std::array<double, 3>{100 * (0.3 * rgb[0] + 0.6 * rgb[1] + 0.1 * rgb[2]),
                                                30 * (rgb[0] - rgb[1]), 30 * (rgb[1] - rgb[2])};
               })
        .Build();
}

/// Lab as a device.
inline std::vector<std::uint8_t> LabProfile() {
    const auto identity = [](const std::vector<double>& v) {
        return std::array<double, 3>{100 * v[0], 255 * v[1] - 128, 255 * v[2] - 128};
    };
    return ProfileBuilder("spac", "Lab ", "Lab ")
        .Table("A2B0", 3, 2, identity)
        .Table("B2A0", 3, 2, identity)
        .Build();
}

/// No profile of a device: a link between two.
inline std::vector<std::uint8_t> LinkProfile() {
    return ProfileBuilder("link", "CMYK", "Lab ")
        .Table("A2B0", 4, 2,
               [](const auto&) {
                   return std::array<double, 3>{50, 0, 0};
               })
        .Build();
}

}  // namespace VANTIX::TEST
