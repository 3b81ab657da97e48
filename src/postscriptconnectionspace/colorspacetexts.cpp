// SPDX-License-Identifier: MIT
#include "postscriptconnectionspace/colorspacetexts.h"

namespace VANTIX::PS {

namespace {

constexpr const char* kStandardMatrix =
    "0.412457 0.212673 0.019334 0.357576 0.715152 0.119192 0.180437 0.072175 0.950301";

}  // namespace

const char* DeviceSpaceName(FourCC family) {
    switch (family) {
        case "gray"_cc:
            return "/DeviceGray";
        case "rgb "_cc:
            return "/DeviceRGB";
        case "cmyk"_cc:
            return "/DeviceCMYK";
        default:
            return nullptr;
    }
}

WhitePoint WhitePointOf(const COLOR::IConnectionColorSpace& space) {
    WhitePoint white{0.9642F, 1.0F, 0.8249F};
    space.GetWhitePoint(white.data());
    return white;
}

void AppendCalibratedGray(TextBuffer& text, const WhitePoint& white) {
    const auto [x, y, z] = white;
    text.Format(
        "\n[/CIEBasedA\n<<\n\t/RangeA [0 100]\n"
        "\t/DecodeA { 16 add 116 div dup 6 29 div ge {dup dup mul mul} "
        "{4 29 div sub 108 841 div mul} ifelse %.8g mul} bind\n"
        "\t/MatrixA [%.8g %.8g %.8g] \n"
        "\t/RangeLMN [0 %.8g 0 %.8g 0 %.8g] \n"
        "\t/WhitePoint [%.8g %.8g %.8g]\n"
        ">>]\n",
        y, x, y, z, x, y, z, x, y, z);
}

void AppendLab(TextBuffer& text, const WhitePoint& white, const char* tail) {
    text.Append(
        "[/CIEBasedABC\n<<\n\t/RangeABC [0 100 -128 127 -128 127]\n"
        "\t/DecodeABC[{16 add 116 div}bind {500 div}bind {200 div}bind]\n"
        "\t/MatrixABC [1 1 1 1 0 0 0 0 -1] \n"
        "/RangeLMN [-0.1181 1.254 0.1379 1.0 -0.4971 1.64]\n"
        "/DecodeLMN\n\t[\n");
    for (const float factor : white) {
        text.Format(
            "\t\t{dup 6 29 div ge {dup dup mul mul} "
            "{4 29 div sub 108 841 div mul} ifelse %.8g mul}bind\n",
            factor);
    }
    text.Format("\t]\n\t/WhitePoint [%.8g %.8g %.8g]\n>>]%s", white[0], white[1], white[2], tail);
}

void AppendCalibratedRGB(TextBuffer& text, const COLOR::ICalibratedConnectionColorSpace& space,
                         const WhitePoint& white, const char* tail) {
    float gammas[3] = {2.4F, 2.4F, 2.4F};
    space.GetGammas(gammas);
    text.Append("\n[/CIEBasedABC\n<<\n\t/DecodeLMN [");
    for (int i = 0; i < 3; ++i) {
        text.Format(
            "{ dup 0.03928 le {12.92321 div} {0.055 add 1.055 div %.8g exp} ifelse } bind%s",
            gammas[i], i < 2 ? " \n" : "]\n");
    }
    float m[9];
    if (space.GetMatrix(m)) {
        text.Format("\t/MatrixLMN [%.8g %.8g %.8g %.8g %.8g %.8g %.8g %.8g %.8g]\n", m[0], m[1],
                    m[2], m[3], m[4], m[5], m[6], m[7], m[8]);
    } else {
        text.Format("\t/MatrixLMN [%s]\n", kStandardMatrix);
    }
    text.Format("\t/WhitePoint [%.8g %.8g %.8g]\n>>]%s", white[0], white[1], white[2], tail);
}

void AppendGammaGray(TextBuffer& text, const WhitePoint& white) {
    const auto [x, y, z] = white;
    text.Format(
        "\n[/CIEBasedA\n <<\t/DecodeA {1 0.45 div exp} bind \n"
        "\t/MatrixA [%.8g %.8g %.8g] \n"
        "\t/RangeLMN [0.0 %.8g 0.0 %.8g 0.0 %.8g]\n"
        "\t/WhitePoint [%.8g %.8g %.8g]\n"
        ">>]\n",
        x, y, z, x, y, z, x, y, z);
}

void AppendStandardRGB(TextBuffer& text, const WhitePoint& white) {
    text.Format(
        "\n[/CIEBasedABC\n<<\n"
        "\t/DecodeLMN [{ dup 0.03928 le {12.92321 div} {0.055 add 1.055 div 2.4 exp} ifelse } "
        "bind dup dup]\n"
        "\t/MatrixLMN [%s]\n"
        "\t/WhitePoint [%.8g %.8g %.8g]\n"
        ">>]\n",
        kStandardMatrix, white[0], white[1], white[2]);
}

}  // namespace VANTIX::PS
