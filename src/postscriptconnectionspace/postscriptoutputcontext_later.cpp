// SPDX-License-Identifier: MIT
// Shading dictionaries: nothing that is drawn so far reaches these operations, and a
// caller that does is told so.
#include "core/libsupport/vlogger/logmessage.h"
#include "postscriptconnectionspace/postscriptoutputcontext.h"

namespace VANTIX::PS {

// Shading dictionaries of types 1 to 7 (PostScript Language Reference, 4.9.3).
bool PostScriptOutputContext::WriteFunctionBasedShadingDictionary(
    COLOR::IFunctionShadingColorSpace*, COLOR::IConnectionColorSpace*, std::int32_t, bool, bool) {
    LogError("src/postscriptconnectionspace") << "Unimplemented";
    return false;
}

bool PostScriptOutputContext::WriteAxialShadingDictionary(COLOR::IAxialShadingPatternColorSpace*,
                                                          COLOR::IConnectionColorSpace*,
                                                          std::int32_t, bool, bool) {
    LogError("src/postscriptconnectionspace") << "Unimplemented";
    return false;
}

bool PostScriptOutputContext::WriteRadialShadingDictionary(COLOR::IRadialShadingPatternColorSpace*,
                                                           COLOR::IConnectionColorSpace*,
                                                           std::int32_t, bool, bool) {
    LogError("src/postscriptconnectionspace") << "Unimplemented";
    return false;
}

bool PostScriptOutputContext::WritePatchMeshesBasedShadingDictionary(
    COLOR::ITensorShadingPatternColorSpace*, COLOR::IConnectionColorSpace*, std::int32_t,
    std::int32_t, bool, bool) {
    LogError("src/postscriptconnectionspace") << "Unimplemented";
    return false;
}

bool PostScriptOutputContext::WriteType5BasedShadingDictionary(
    COLOR::ILatticeFormTriangleMeshesShadingColorSpace*, COLOR::IConnectionColorSpace*,
    std::int32_t, bool, bool) {
    LogError("src/postscriptconnectionspace") << "Unimplemented";
    return false;
}

bool PostScriptOutputContext::WriteType4BasedShadingDictionary(
    COLOR::IFreeFormTriangleMeshesShadingColorSpace*, COLOR::IConnectionColorSpace*, std::int32_t,
    bool, bool) {
    LogError("src/postscriptconnectionspace") << "Unimplemented";
    return false;
}

}  // namespace VANTIX::PS
