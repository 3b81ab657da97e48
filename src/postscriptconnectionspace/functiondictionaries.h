// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include "core/color/icolorfunction.h"
#include "core/color/iconnectioncolorspace.h"
#include "core/io/ioutputfilterstack.h"
#include "core/object/iclassfactory.h"
#include "postscriptconnectionspace/colorroute.h"
#include "postscriptconnectionspace/textbuffer.h"

namespace VANTIX {

/// Appends a function dictionary, or an array of them (PostScript Language Reference, 3.10), with
/// outputs on their way along `route`. 0, or the failing status (logged): `text` then holds a part
/// of it.
Status AppendFunction(const COLOR::IColorFunction& function, const ColorRoute& route,
                      PS::TextBuffer& text);

/// Writes a "/DataSource" entry with `length` bytes as a hexadecimal string.
Status WriteHexStringDataSource(IO::IOutputFilterStack& out, const void* data, std::int32_t length);

/// Each of the following writes in one call, and nothing when it fails, since an interpreter would
/// trip over an open dictionary. `destination` may be null; the intents belong to the two spaces.
/// 0, or the failing status (logged).
///
/// A function dictionary, or an array of them.
Status WriteFunctionToPostScript(IClassFactory& factory, const COLOR::IColorFunction& function,
                                 COLOR::IConnectionColorSpace& source,
                                 COLOR::IConnectionColorSpace* destination,
                                 COLOR::TRenderingIntent first, COLOR::TRenderingIntent second,
                                 IO::IOutputFilterStack& out);
/// An array of functions; sampled as one function where outputs are converted.
Status WriteCompositeFunctionToPostScript(
    IClassFactory& factory, const COLOR::IColorFunction& function,
    COLOR::IConnectionColorSpace& source, COLOR::IConnectionColorSpace* destination,
    COLOR::TRenderingIntent first, COLOR::TRenderingIntent second, IO::IOutputFilterStack& out);
/// The entries of a sampled function, without "<<", domain and ">>". `function` is `sampled`.
Status WriteSampledFunctionToLevel3PostScript(
    IClassFactory& factory, COLOR::ISampledFunction* sampled, const COLOR::IColorFunction& function,
    COLOR::IConnectionColorSpace& source, COLOR::IConnectionColorSpace* destination,
    COLOR::TRenderingIntent first, COLOR::TRenderingIntent second, IO::IOutputFilterStack& out);
/// A calculator of one or two inputs, as the table of its samples: shadings take no programs.
void WritePostScriptCalculatorFunctionToPostScript(
    IClassFactory& factory, const COLOR::IColorFunction* function,
    COLOR::IConnectionColorSpace& source, COLOR::IConnectionColorSpace* destination,
    COLOR::TRenderingIntent first, COLOR::TRenderingIntent second, IO::IOutputFilterStack& out);

}  // namespace VANTIX
