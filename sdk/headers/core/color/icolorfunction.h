// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <vector>

#include "core/color/colorconversion.h"
#include "core/object/iobject.h"
#include "core/object/tinterfaceptr.h"

namespace VANTIX::COLOR {

class IConnectionColorSpace;

inline constexpr GUID IID_IEXPONENTIALFUNCTION = "7E40A4D5-33B7-4D4D-B399-7987EC66369A"_guid;
inline constexpr GUID IID_ISTITCHINGFUNCTION = "EAF48496-0221-4711-BDC9-662C006658B8"_guid;
inline constexpr GUID IID_ISAMPLEDFUNCTION = "D8255B2C-15F8-4D2F-97BC-1264C911C851"_guid;
inline constexpr GUID IID_ICALCULATORFUNCTION = "4DDEBAD6-9EB3-4C9E-9B25-7AB7DBC1B365"_guid;
inline constexpr GUID IID_IFUNCTIONARRAY = "44F30F4D-FE14-4165-9D32-8877805B8219"_guid;
/// Class of the host's function factory.
inline constexpr GUID CLSID_COLORFUNCTIONFACTORY = "28CB8C78-D581-42F3-A149-E8DD42535874"_guid;

/// A function of m inputs and k outputs (PDF Reference, 3.9). All values are in PDF form: ink
/// amounts for CMYK. A function answers exactly one of the kinds below by `QueryInterface`.
class IColorFunction : public IObject {
public:
    virtual std::int32_t GetInputCount() const = 0;
    virtual std::int32_t GetOutputCount() const = 0;
    /// Two floats for each input, or null.
    virtual const float* GetDomain() const = 0;
    /// Two floats for each output, or null.
    virtual const float* GetRange() const = 0;
    /// `in` holds the inputs, `out` has room for the outputs. Inputs are clipped to the domain,
    /// outputs to the range.
    virtual void Evaluate(const float* in, float* out) const = 0;
};

/// y = C0 + x^N (C1 - C0), of one input (FunctionType 2).
class IExponentialFunction : public IColorFunction {
public:
    /// One float for each output, or null for the default: zeros for C0, ones for C1.
    virtual const float* GetC0() const = 0;
    virtual const float* GetC1() const = 0;
    virtual float GetExponent() const = 0;
};

/// k functions of one input joined at k - 1 bounds (FunctionType 3).
class IStitchingFunction : public IColorFunction {
public:
    virtual std::int32_t GetFunctionCount() const = 0;
    /// Sub-function `index` (borrowed), or null.
    virtual const IColorFunction* GetFunction(std::int32_t index) const = 0;
    /// k - 1 floats.
    virtual const float* GetBounds() const = 0;
    virtual void GetEncode(std::int32_t index, float& low, float& high) const = 0;
};

/// A table of samples with multilinear interpolation (FunctionType 0).
class ISampledFunction : public IColorFunction {
public:
    virtual std::int32_t GetBitsPerSample() const = 0;
    /// One number for each input.
    virtual const std::int32_t* GetSizes() const = 0;
    virtual std::int32_t GetOrder() const = 0;
    /// Two floats for each input, or null.
    virtual const float* GetEncode() const = 0;
    /// Two floats for each output, or null.
    virtual const float* GetDecode() const = 0;
    /// The samples as in a PDF stream: first dimension fastest, most significant bit first.
    virtual const std::vector<std::uint8_t>& GetSamples() const = 0;
    /// All samples, as 8 bits for each component of `destination` in PDF form. With a null `out`
    /// gives the size in `*size`; else fills at most `*size` bytes. False when it cannot be done.
    virtual bool ConvertSamples(const IConnectionColorSpace& source,
                                const IConnectionColorSpace& destination, TRenderingIntent first,
                                TRenderingIntent second, std::uint8_t* out,
                                std::int32_t* size) const = 0;
};

/// A PostScript calculator program (FunctionType 4).
class ICalculatorFunction : public IColorFunction {
public:
    /// The program, zero-terminated, as it was given: with or without its outer braces.
    virtual const char* GetProgram() const = 0;
};

/// Several functions of the same inputs, one for each output.
class IFunctionArray : public IColorFunction {
public:
    virtual std::int32_t GetFunctionCount() const = 0;
    virtual const IColorFunction* GetFunction(std::int32_t index) const = 0;
};

/// Makes functions for the plug-in; each returns a new reference, or null for bad arguments
/// (logged).
class IColorFunctionFactory : public IObject {
public:
    /// `domain` has 2 floats, `c0` and `c1` have `outputs` floats or are null, `range` has
    /// 2 x `outputs` floats or is null.
    virtual IColorFunction* CreateExponentialFunction(const float* domain, const float* range,
                                                      const float* c0, const float* c1,
                                                      std::int32_t outputs, float exponent) = 0;
    /// `domain` has 2 x `inputs`, `range` 2 x `outputs` floats; `program` may have braces.
    virtual IColorFunction* CreateCalculatorFunction(const char* program, const float* domain,
                                                     std::int32_t inputs, const float* range,
                                                     std::int32_t outputs) = 0;
};

}  // namespace VANTIX::COLOR
