// SPDX-License-Identifier: MIT
#include "support/distiller.h"

#include <chrono>
#include <cmath>
#include <exception>
#include <fstream>

#include "support/childprocess.h"
#include "support/distillerprolog.h"
#include "support/temporaryfolder.h"

// The library's headers come behind the one that prepares for them.
// clang-format off
#include "pdf/qpdfheaders.h"
#include <qpdf/QPDFMatrix.hh>
#include <qpdf/QPDFWriter.hh>

// clang-format on

namespace VANTIX::TEST {
namespace {

constexpr std::chrono::seconds kLimit{60};
constexpr const char* kStates = "/StandInStates";
constexpr const char* kMatrix = "/StandInMatrix";

/// One line width marks the bottom of the graphics states, as in drawing.
constexpr const char* kBefore = "1.5 setlinewidth gsave 1 setlinewidth";
constexpr const char* kAfter =
    "count 0 ne {(operands left: ) print pstack} if clear "
    "grestore currentlinewidth 1.5 ne {(graphics states left open\\n) print} if";

QPDFMatrix MatrixOf(QPDFObjectHandle matrix) {
    return matrix.isMatrix() ? QPDFMatrix(matrix.getArrayAsMatrix()) : QPDFMatrix();
}

/// Where a mask's group lies depends on the state that uses it, and pdfwrite's content is in the
/// space of the device when it sets a state: so each state gets the group with a matrix of its own.
QPDFObjectHandle PlacedMask(QPDFObjectHandle filed) {
    QPDFObjectHandle mask = filed.shallowCopy();
    QPDFObjectHandle group = mask.getKey("/G").copyStream();
    QPDFMatrix matrix = MatrixOf(mask.getKey(kMatrix));
    matrix.concat(MatrixOf(group.getDict().getKey("/Matrix")));
    group.getDict().replaceKey("/Matrix", QPDFObjectHandle::newFromMatrix(matrix));
    mask.removeKey(kMatrix);
    mask.replaceKey("/G", group);
    return mask;
}

/// Turns the number that a dictionary carries in its smoothness into the entries of the state.
void PutState(QPDFObjectHandle dictionary, QPDFObjectHandle states) {
    const double smoothness = dictionary.getKey("/SM").getNumericValue();
    const auto number = std::lround((smoothness - 0.01) * 1e7);
    QPDFObjectHandle state = states.getKey("/N" + std::to_string(number));
    if (!state.isDictionary()) {
        return;
    }
    dictionary.removeKey("/SM");
    for (auto [key, value] : state.getDictAsMap()) {
        const bool isMask = key == "/SMask" && value.isDictionary();
        dictionary.replaceKey(key, isMask ? PlacedMask(value) : value);
    }
}

/// Takes away the margin that the prolog has given to pages.
void CutPages(QPDF& document) {
    constexpr double kMargin = 3000;
    for (QPDFObjectHandle page : document.getAllPages()) {
        const auto box = page.getKey("/MediaBox").getArrayAsRectangle();
        const bool hasMargin = box.urx > 2 * kMargin && box.ury > 2 * kMargin;
        if (hasMargin) {
            page.replaceKey("/MediaBox",
                            QPDFObjectHandle::newFromRectangle(
                                {kMargin, kMargin, box.urx - kMargin, box.ury - kMargin}));
        }
    }
}

void PutStates(const std::string& raw, const std::string& pdf) {
    QPDF document;
    document.processFile(raw.c_str());
    QPDFObjectHandle states = document.getRoot().getKey(kStates);
    for (QPDFObjectHandle object : document.getAllObjects()) {
        if (object.isDictionary() && object.getKey("/SM").isNumber()) {
            PutState(object, states);
        }
    }
    document.getRoot().removeKey(kStates);
    CutPages(document);
    QPDFWriter writer(document, pdf.c_str());
    writer.write();
}

}  // namespace

std::string DistilTransparency(const std::string& postScript, const std::string& pdf) {
    const TemporaryFolder folder;
    const std::string prolog = folder.File("prolog.ps");
    const std::string raw = folder.File("raw.pdf");
    std::ofstream(prolog, std::ios::binary) << kDistillerProlog;
    const ChildResult run = RunChild({"gs",
                                      "-q",
                                      "-dSAFER",
                                      "-dBATCH",
                                      "-dNOPAUSE",
                                      "-sDEVICE=pdfwrite",
                                      "-dCompatibilityLevel=1.7",
                                      "-dAutoRotatePages=/None",
                                      "-dAutoFilterColorImages=false",
                                      "-dAutoFilterGrayImages=false",
                                      "-dColorImageFilter=/FlateEncode",
                                      "-dGrayImageFilter=/FlateEncode",
                                      "-dDownsampleColorImages=false",
                                      "-dDownsampleGrayImages=false",
                                      "-dDownsampleMonoImages=false",
                                      "-o",
                                      raw,
                                      prolog,
                                      "-c",
                                      kBefore,
                                      "-f",
                                      postScript,
                                      "-c",
                                      kAfter},
                                     kLimit);
    if (run.exitStatus != 0 || run.timedOut) {
        return "Ghostscript failed: " + run.output + run.errors;
    }
    try {
        PutStates(raw, pdf);
    } catch (const std::exception& error) {
        return error.what();
    }
    return run.output + run.errors;
}

PageImage DrawWithPoppler(const std::string& pdf, int resolution) {
    const TemporaryFolder folder;
    const ChildResult run = RunChild({"pdftoppm", "-r", std::to_string(resolution), "-f", "1", "-l",
                                      "1", "-singlefile", "-cropbox", pdf, folder.File("page")},
                                     kLimit);
    return run.exitStatus == 0 ? ReadPortableMap(folder.File("page.ppm")) : PageImage();
}

}  // namespace VANTIX::TEST
