// SPDX-License-Identifier: MIT
#include "asiscompositeconnectionspacedelegate/calibratedtexts.h"

namespace VANTIX::RENDERING {

void AppendImageGray(PS::TextBuffer& text, const PS::WhitePoint& white, bool isEmbedded) {
    const auto [x, y, z] = white;
    text.Append(
        "[/CIEBasedA\n\t<<\n\t\t/RangeA [0 100]\n\t\t/DecodeA\n\t\t\t{\n"
        "\t\t\t\t16 add 116 div dup 6 29 div ge\n"
        "\t\t\t\t\t{dup dup mul mul}\n"
        "\t\t\t\t\t{4 29 div sub 108 841 div mul}\n"
        "\t\t\t\t\tifelse\n\t\t\t}bind\n");
    if (isEmbedded) {
        text.Format(
            "\t\t/MatrixA[%.8g %.8g %.8g]\n\t\t/RangeLMN[0.0 %.8g 0.0 %.8g 0.0 %.8g]\n"
            "/WhitePoint [%.8g %.8g %.8g]\n",
            x, y, z, x, y, z, x, y, z);
    } else {
        text.Format(
            "\t\t/MatrixA[%.8g 1.0 %.8g]\n\t\t/RangeLMN[0.0 %.8g 0.0 1.0 0.0 %.8g]\n"
            "/WhitePoint [%.8g  1.0  %.8g]\n",
            x, z, x, z, x, z);
    }
    text.Append("\t>>\n]\n");
}

void AppendImageLab(PS::TextBuffer& text, const PS::WhitePoint& white, bool isEmbedded) {
    constexpr const char* kCurve =
        "\t\t{\n\t\tdup 6 29 div ge\n\t\t\t{dup dup mul mul}\n"
        "\t\t\t{4 29 div sub 108 841 div mul}\n\t\t\tifelse\n";
    const auto [x, y, z] = white;
    text.Append(
        "[ /CIEBasedABC\n<< /RangeABC [0 100 -128 127 -128 127]\n/DecodeABC\n"
        "[{16 add 116 div} bind\n{500 div} bind\n{200 div} bind\n]\n"
        "/MatrixABC\n\t[1 1 1\n\t1 0 0\n\t0 0 -1]\n"
        "/RangeLMN [-0.1181 1.254 0.1379 1.0 -0.4971 1.64]\n/DecodeLMN\n\t[\n");
    text.Append(kCurve);
    text.Format("\t\t%.8g mul\n\t\t} bind\n", x);
    text.Append(kCurve);
    text.Append("\t\t} bind\n");
    text.Append(kCurve);
    text.Format("\t\t%.8g mul\n\t\t} bind\n\t]\n", z);
    if (isEmbedded) {
        text.Format("/WhitePoint [%.8g %.8g %.8g]\n", x, y, z);
    } else {
        text.Format("/WhitePoint [%.8g 1.0 %.8g]\n", x, z);
    }
    text.Append(">>\n]\n");
}

}  // namespace VANTIX::RENDERING
