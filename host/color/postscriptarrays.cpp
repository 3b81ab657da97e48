// SPDX-License-Identifier: MIT
#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <functional>
#include <string>

#include "core/io/idataprovider.h"
#include "host/color/functionbase.h"
#include "host/color/spaces.h"

namespace VANTIX::HOST {

namespace {

using COLOR::TRenderingIntent;
using Curve = std::function<float(float)>;

// Grid points for each component: tables of 15 and 20 kB.
constexpr std::size_t kThreeComponentGrid = 17;
constexpr std::size_t kFourComponentGrid = 9;
constexpr std::size_t kCurveSamples = 256;
constexpr std::size_t kCurvesPerLine = 16;

constexpr std::string_view kWhite =
    "/RangeLMN [0 0.9642 0 1 0 0.8249]\n"
    "/WhitePoint [0.9642 1 0.8249]\n";

void AppendNumber(std::string& out, float value) {
    std::array<char, 32> text{};
    const auto end =
        std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::general, 6);
    out.append(text.data(), end.ptr);
}

template <class Reference>
bool IsCurve(const Curve& curve, Reference reference) {
    constexpr float kTolerance = 1.0F / 4096.0F;
    for (std::size_t i = 0; i < kCurveSamples; ++i) {
        const float x = static_cast<float>(i) / (kCurveSamples - 1);
        if (std::abs(curve(x) - reference(x)) > kTolerance) {
            return false;
        }
    }
    return true;
}

float StandardCurve(float x) {
    return x <= 0.04045F ? x / 12.92F : std::pow((x + 0.055F) / 1.055F, 2.4F);
}

/// Samples of the curve, looked up with linear interpolation. A procedure is an array that needs no
/// building.
void AppendCurveTable(std::string& out, const Curve& curve) {
    out += "{dup 0 lt{pop 0}if dup 1 gt{pop 1}if 255 mul\n{";
    for (std::size_t i = 0; i < kCurveSamples; ++i) {
        const float y = ClipTo(curve(static_cast<float>(i) / (kCurveSamples - 1)), 0.0F, 1.0F);
        out += std::to_string(std::lround(y * 65535.0F));
        out += (i + 1) % kCurvesPerLine == 0 ? '\n' : ' ';
    }
    // x table -> y, where the last sample has no neighbour.
    out +=
        "}exch dup cvi dup 254 gt{pop 254}if dup 3 1 roll sub 3 1 roll "  // fraction table index
        "2 copy get 3 1 roll 1 add get 1 index sub "                      // fraction low step
        "3 -1 roll mul add 65535 div}bind";
}

/// A procedure for a curve from [0, 1] to [0, 1]: a power or the curve of sRGB where it is one.
void AppendCurve(std::string& out, const Curve& curve) {
    const float middle = curve(0.5F);
    const float gamma = middle > 0.0F && middle < 1.0F ? -std::log2(middle) : 0.0F;
    if (IsCurve(curve, [](float x) { return x; })) {
        out += "{}";
    } else if (IsCurve(curve, [gamma](float x) { return std::pow(x, gamma); }) && gamma > 0.0F) {
        out += "{";
        AppendNumber(out, gamma);
        out += " exp}bind";
    } else if (IsCurve(curve, StandardCurve)) {
        out += "{dup 0.04045 le{12.92 div}{0.055 add 1.055 div 2.4 exp}ifelse}bind";
    } else {
        AppendCurveTable(out, curve);
    }
}

std::string GrayArray(const IccProfile& profile, TRenderingIntent intent) {
    std::string out = "[/CIEBasedA <<\n/DecodeA ";
    AppendCurve(out, [&profile, intent](float x) {
        std::array<float, 3> pcs{};
        profile.ToPCS(&x, pcs.data(), intent);
        return pcs[1];
    });
    out += "\n/MatrixA [0.9642 1 0.8249]\n";
    return out.append(kWhite).append(">>]\n");
}

std::string MatrixArray(const IccProfile& profile, const Primaries& primaries) {
    const auto curve = [&profile](std::size_t index) {
        return [&profile, index](float x) { return profile.EvaluateCurve(index, x); };
    };
    std::string out = "[/CIEBasedABC <<\n/DecodeABC [";
    AppendCurve(out, curve(0));
    for (std::size_t i = 1; i < 3; ++i) {
        out += "\n";
        if (IsCurve(curve(i), curve(i - 1))) {
            out += "dup";
        } else {
            AppendCurve(out, curve(i));
        }
    }
    out += "]\n/MatrixABC [";
    for (const auto& primary : primaries) {
        for (const float v : primary) {
            AppendNumber(out, v);
            out += ' ';
        }
    }
    out.back() = ']';
    return out.append("\n").append(kWhite).append(">>]\n");
}

/// L*, a* and b* under D50 as the bytes that `kDecodeLab` takes apart.
std::array<std::uint8_t, 3> LabBytes(const std::array<float, 3>& pcs) {
    std::array<float, 3> f{};
    for (std::size_t i = 0; i < 3; ++i) {
        const float t = std::max(pcs[i] / kD50[i], 0.0F);
        f[i] = t > 216.0F / 24389.0F ? std::cbrt(t) : (841.0F / 108.0F) * t + 4.0F / 29.0F;
    }
    const auto byte = [](float v) {
        return static_cast<std::uint8_t>(std::lround(ClipTo(v, 0.0F, 255.0F)));
    };
    return {byte((116.0F * f[1] - 16.0F) * 2.55F), byte(500.0F * (f[0] - f[1]) + 128.0F),
            byte(200.0F * (f[1] - f[2]) + 128.0F)};
}

constexpr std::string_view kDecodeLab =
    "/DecodeABC [{100 mul 16 add 116 div}bind {255 mul 128 sub 500 div}bind "
    "{255 mul 128 sub 200 div}bind]\n"
    "/MatrixABC [1 1 1 1 0 0 0 0 -1]\n"
    "/RangeLMN [-0.2360 1.2541 0 1 -0.6350 1.6401]\n"
    "/DecodeLMN [{dup 6 29 div ge{dup dup mul mul}{4 29 div sub 108 841 div mul}ifelse 0.9642 "
    "mul}bind\n"
    "{dup 6 29 div ge{dup dup mul mul}{4 29 div sub 108 841 div mul}ifelse}bind\n"
    "{dup 6 29 div ge{dup dup mul mul}{4 29 div sub 108 841 div mul}ifelse 0.8249 mul}bind]\n"
    "/WhitePoint [0.9642 1 0.8249]\n";

/// Writes the last two components' part of the table as one string, its last component fastest.
bool AppendPlane(std::string& out, const IccProfile& profile, TRenderingIntent intent,
                 std::array<float, 4> color, std::size_t grid) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    constexpr std::size_t kPointsPerLine = 12;
    const auto last = static_cast<std::size_t>(profile.Components() - 1);
    const bool isLab = profile.Family() == "clab"_cc;
    out += '<';
    for (std::size_t point = 0; point < grid * grid; ++point) {
        const std::size_t row = point / grid;
        color[last - 1] = static_cast<float>(row) / static_cast<float>(grid - 1);
        color[last] = static_cast<float>(point - row * grid) / static_cast<float>(grid - 1);
        std::array<float, 4> values = color;
        if (isLab) {
            values = {color[0] * 100.0F, color[1] * 255.0F - 128.0F, color[2] * 255.0F - 128.0F, 0};
        }
        std::array<float, 3> pcs{};
        if (!profile.ToPCS(values.data(), pcs.data(), intent)) {
            return false;
        }
        for (const std::uint8_t byte : LabBytes(pcs)) {
            out += kDigits[byte >> 4U];
            out += kDigits[byte & 15U];
        }
        if ((point + 1) % kPointsPerLine == 0) {
            out += '\n';
        }
    }
    out += ">\n";
    return true;
}

/// CIEBasedDEF or CIEBasedDEFG with a table of Lab colours; empty where the profile fails.
std::string TableArray(const IccProfile& profile, TRenderingIntent intent) {
    const bool isFour = profile.Components() == 4;
    const std::size_t grid = isFour ? kFourComponentGrid : kThreeComponentGrid;
    const std::string size = std::to_string(grid) + ' ';
    std::string out = isFour ? "[/CIEBasedDEFG <<\n/Table [" : "[/CIEBasedDEF <<\n/Table [";
    out += size + size + size + (isFour ? size : std::string()) + "[\n";
    const std::size_t outer = isFour ? grid : 1;
    for (std::size_t i = 0; i < outer; ++i) {
        out += isFour ? "[" : "";
        for (std::size_t k = 0; k < grid; ++k) {
            const float fast = static_cast<float>(k) / static_cast<float>(grid - 1);
            const float slow = static_cast<float>(i) / static_cast<float>(grid - 1);
            const std::array<float, 4> color =
                isFour ? std::array<float, 4>{slow, fast, 0, 0} : std::array<float, 4>{fast};
            if (!AppendPlane(out, profile, intent, color, grid)) {
                return {};
            }
        }
        out += isFour ? "]\n" : "";
    }
    out += "]]\n";
    if (profile.Family() == "clab"_cc) {
        out +=
            "/RangeDEF [0 100 -128 127 -128 127]\n"
            "/DecodeDEF [{100 div}bind {128 add 255 div}bind dup]\n";
    }
    return out.append(kDecodeLab).append(">>]\n");
}

}  // namespace

Status WriteProfileArray(const IccProfile& profile, TRenderingIntent intent,
                         IO::IDataProvider& out) {
    Primaries primaries{};
    std::string text;
    if (profile.Components() == 1) {
        text = GrayArray(profile, intent);
    } else if (profile.GetPrimaries(primaries)) {
        text = MatrixArray(profile, primaries);
    } else {
        text = TableArray(profile, intent);
    }
    return text.empty() ? STATUS::kNotSupported : out.Write(text.data(), text.size());
}

}  // namespace VANTIX::HOST
