// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>

#include "core/color/ipatterncolorspaces.h"
#include "core/color/ispotcolorspaces.h"
#include "core/object/iobject.h"

namespace VANTIX::PS {

/// Key of the output context in the delegate.
inline constexpr GUID IID_IPOSTSCRIPTOUTPUTCONTEXT = "3227C7C5-E7E2-4AB7-802B-08233E552772"_guid;

/// The writer of everything that has to do with colour. Text that would change nothing in the
/// interpreter's state is not written. Colours are those to be written: ink amounts for CMYK.
class IPostScriptOutputContext : public IObject {
public:
    virtual void PushOutputFilter(std::int32_t selector) = 0;
    virtual void PopOutputFilter() = 0;
    virtual void WriteStreamData(const void* data, std::int32_t length) = 0;
    virtual void FlushStreamData() = 0;
    /// Selects the device space `family` with black.
    virtual void SetDefaultColour(FourCC family, bool colourManaged) = 0;
    virtual void SetDeviceColorSpace(FourCC family) = 0;
    /// `white` is X Y Z.
    virtual void SetLabColorSpace(const float white[3]) = 0;
    virtual void SetColor(const float* components, std::int32_t count) = 0;
    virtual void SetRegistrationColorSpace() = 0;
    virtual void SetNoneColorSpace() = 0;
    /// Defines the space under `name` and selects it.
    virtual void SetDeviceNColorSpace(const char* name, COLOR::IDeviceNConnectionColorSpace* space,
                                      bool colourManaged) = 0;
    virtual void SetSeparationColorSpace(const char* name, const char* colorant,
                                         COLOR::ISeparationConnectionColorSpace* space,
                                         bool colourManaged) = 0;
    /// False where the name was not defined in what is executed before the current text.
    virtual bool SetNamedColorSpace(const char* name) = 0;
    virtual void SetCalibratedGrayColorSpace(float x, float y, float z) = 0;
    virtual void SetColorSpace(COLOR::IConnectionColorSpace* space,
                               COLOR::TRenderingIntent intent) = 0;
    virtual void GSave() = 0;
    virtual void GRestore() = 0;
    virtual void SetRenderingIntent(COLOR::TRenderingIntent intent) = 0;
    virtual void SetRenderingIntent2(COLOR::TRenderingIntent intent) = 0;
    virtual void TranslateAndScale(float tx, float ty, float sx, float sy) = 0;
    /// `colour` is a space or colour expression of `colourLength` characters (0: none).
    virtual void WriteImageDictionary(std::int32_t width, std::int32_t height,
                                      std::int32_t bitsPerComponent, const char* colour,
                                      std::int32_t colourLength, const char* decode,
                                      bool imageMask) = 0;
    /// The buffer writers zero-terminate and answer the length without the zero. What does not fit
    /// is logged and leaves an empty buffer and 0.
    virtual std::int32_t WriteSeparationSpaceToBuffer(COLOR::ISeparationConnectionColorSpace* space,
                                                      char* buffer, std::int32_t size,
                                                      bool colourManaged) = 0;
    virtual std::int32_t WriteDeviceNSpaceToBuffer(COLOR::IDeviceNConnectionColorSpace* space,
                                                   char* buffer, std::int32_t size, bool substitute,
                                                   std::int32_t& componentCount,
                                                   bool colourManaged) = 0;
    virtual void AssociateSoftMaskImage(std::int32_t image) = 0;
    virtual std::int32_t WriteAlternativeColorSpaceAndTintTransformProcToBuffer(
        COLOR::IConnectionColorSpace* alternate, COLOR::IColorFunction* tint, char* buffer,
        std::int32_t size, bool colourManaged) = 0;
    /// `underlying` is null for a coloured pattern.
    virtual bool SetPatternColor(const char* name, COLOR::IConnectionColorSpace* underlying,
                                 const float* components) = 0;
    virtual bool SetCalibratedColorSpace(COLOR::ICalibratedConnectionColorSpace* space) = 0;
    /// `overprint` is 1 for on.
    virtual void SetOverprint(std::int32_t overprint, bool mode, bool fill) = 0;
    virtual void SetCurrentTextMatrix(const float matrix[6]) = 0;
    virtual void GraphicsStateStackPassThrough(const void* arguments) = 0;
    virtual void BeginImageData() = 0;
    virtual void EndImageData() = 0;
    /// The shading writers convert colours into `destination` unless it is null, and answer whether
    /// the dictionary was completed.
    virtual bool WriteFunctionBasedShadingDictionary(COLOR::IFunctionShadingColorSpace* shading,
                                                     COLOR::IConnectionColorSpace* destination,
                                                     std::int32_t languageLevel, bool paint,
                                                     bool colourManaged) = 0;
    virtual bool WriteAxialShadingDictionary(COLOR::IAxialShadingPatternColorSpace* shading,
                                             COLOR::IConnectionColorSpace* destination,
                                             std::int32_t languageLevel, bool paint,
                                             bool colourManaged) = 0;
    virtual bool WriteRadialShadingDictionary(COLOR::IRadialShadingPatternColorSpace* shading,
                                              COLOR::IConnectionColorSpace* destination,
                                              std::int32_t languageLevel, bool paint,
                                              bool colourManaged) = 0;
    virtual bool WritePatchMeshesBasedShadingDictionary(
        COLOR::ITensorShadingPatternColorSpace* shading, COLOR::IConnectionColorSpace* destination,
        std::int32_t languageLevel, std::int32_t type, bool paint, bool colourManaged) = 0;
    virtual bool WriteType5BasedShadingDictionary(
        COLOR::ILatticeFormTriangleMeshesShadingColorSpace* shading,
        COLOR::IConnectionColorSpace* destination, std::int32_t languageLevel, bool paint,
        bool colourManaged) = 0;
    virtual bool WriteType4BasedShadingDictionary(
        COLOR::IFreeFormTriangleMeshesShadingColorSpace* shading,
        COLOR::IConnectionColorSpace* destination, std::int32_t languageLevel, bool paint,
        bool colourManaged) = 0;
    /// Defines the space as a resource once for each identifier and intent; `name` receives its
    /// name and a blank, or stays empty when it could not be defined.
    virtual void GetColorSpaceResourceName(COLOR::IConnectionColorSpace* space,
                                           COLOR::TRenderingIntent intent, std::string& name) = 0;
    virtual void WriteColorSpaceResourceName(const std::string& name, bool setColorSpace) = 0;
};

}  // namespace VANTIX::PS
