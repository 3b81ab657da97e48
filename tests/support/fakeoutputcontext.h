// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <sstream>
#include <string>

#include "core/object/tobject.h"
#include "postscriptconnectionspace/ipostscriptoutputcontext.h"

namespace VANTIX::TEST {

/// An output context that notes what a delegate asks of it, one call a line: the operation's name,
/// then its arguments.
class FakeOutputContext : public TObject<PS::IPostScriptOutputContext> {
public:
    std::string calls;
    /// Answers of the operations that report success.
    bool succeeds = true;
    /// What `GetColorSpaceResourceName` gives.
    std::string resourceName = "GCSA1 ";

    /// What was noted since the last call.
    std::string Take() {
        std::string taken;
        taken.swap(calls);
        return taken;
    }

    void PushOutputFilter(std::int32_t) override {}

    void PopOutputFilter() override {}

    void WriteStreamData(const void*, std::int32_t) override {}

    void FlushStreamData() override {}

    void SetDefaultColour(FourCC family, bool colourManaged) override {
        Note("SetDefaultColour ", Text(family), Managed(colourManaged));
    }

    void SetDeviceColorSpace(FourCC family) override { Note("SetDeviceColorSpace ", Text(family)); }

    void SetLabColorSpace(const float white[3]) override {
        Note("SetLabColorSpace", Text(white, 3));
    }

    void SetColor(const float* components, std::int32_t count) override {
        Note("SetColor", Text(components, count));
    }

    void SetRegistrationColorSpace() override { Note("SetRegistrationColorSpace"); }

    void SetNoneColorSpace() override { Note("SetNoneColorSpace"); }

    void SetDeviceNColorSpace(const char* name, COLOR::IDeviceNConnectionColorSpace*,
                              bool colourManaged) override {
        lastName = name;
        Note("SetDeviceNColorSpace", Managed(colourManaged));
    }

    void SetSeparationColorSpace(const char* name, const char* colorant,
                                 COLOR::ISeparationConnectionColorSpace*,
                                 bool colourManaged) override {
        lastName = name;
        Note("SetSeparationColorSpace ", colorant, Managed(colourManaged));
    }

    bool SetNamedColorSpace(const char* name) override {
        Note("SetNamedColorSpace ", name == lastName ? "last" : name);
        return true;
    }

    void SetCalibratedGrayColorSpace(float x, float y, float z) override {
        const float white[] = {x, y, z};
        Note("SetCalibratedGrayColorSpace", Text(white, 3));
    }

    void SetColorSpace(COLOR::IConnectionColorSpace* space,
                       COLOR::TRenderingIntent intent) override {
        Note("SetColorSpace ", Number(space), Intent(intent));
    }

    void GSave() override {}

    void GRestore() override {}

    void SetRenderingIntent(COLOR::TRenderingIntent) override {}

    void SetRenderingIntent2(COLOR::TRenderingIntent) override {}

    void TranslateAndScale(float, float, float, float) override {}

    void WriteImageDictionary(std::int32_t, std::int32_t, std::int32_t, const char*, std::int32_t,
                              const char*, bool) override {}

    std::int32_t WriteSeparationSpaceToBuffer(COLOR::ISeparationConnectionColorSpace*, char*,
                                              std::int32_t, bool) override {
        return 0;
    }

    std::int32_t WriteDeviceNSpaceToBuffer(COLOR::IDeviceNConnectionColorSpace*, char*,
                                           std::int32_t, bool, std::int32_t&, bool) override {
        return 0;
    }

    void AssociateSoftMaskImage(std::int32_t) override {}

    std::int32_t WriteAlternativeColorSpaceAndTintTransformProcToBuffer(
        COLOR::IConnectionColorSpace*, COLOR::IColorFunction*, char*, std::int32_t, bool) override {
        return 0;
    }

    bool SetPatternColor(const char* name, COLOR::IConnectionColorSpace* underlying,
                         const float* components) override {
        Note("SetPatternColor ", name,
             underlying == nullptr ? "" : Text(components, underlying->GetComponentCount()));
        return succeeds;
    }

    bool SetCalibratedColorSpace(COLOR::ICalibratedConnectionColorSpace* space) override {
        Note("SetCalibratedColorSpace ", Text(space->GetFamily()));
        return succeeds;
    }

    void SetOverprint(std::int32_t, bool, bool) override {}

    void SetCurrentTextMatrix(const float*) override {}

    void GraphicsStateStackPassThrough(const void*) override {}

    void BeginImageData() override {}

    void EndImageData() override {}

    bool WriteFunctionBasedShadingDictionary(COLOR::IFunctionShadingColorSpace*,
                                             COLOR::IConnectionColorSpace* destination,
                                             std::int32_t level, bool paint,
                                             bool managed) override {
        return NoteShading(1, destination, level, paint, managed);
    }

    bool WriteAxialShadingDictionary(COLOR::IAxialShadingPatternColorSpace*,
                                     COLOR::IConnectionColorSpace* destination, std::int32_t level,
                                     bool paint, bool managed) override {
        return NoteShading(2, destination, level, paint, managed);
    }

    bool WriteRadialShadingDictionary(COLOR::IRadialShadingPatternColorSpace*,
                                      COLOR::IConnectionColorSpace* destination, std::int32_t level,
                                      bool paint, bool managed) override {
        return NoteShading(3, destination, level, paint, managed);
    }

    bool WritePatchMeshesBasedShadingDictionary(COLOR::ITensorShadingPatternColorSpace*,
                                                COLOR::IConnectionColorSpace* destination,
                                                std::int32_t level, std::int32_t type, bool paint,
                                                bool managed) override {
        return NoteShading(type, destination, level, paint, managed);
    }

    bool WriteType5BasedShadingDictionary(COLOR::ILatticeFormTriangleMeshesShadingColorSpace*,
                                          COLOR::IConnectionColorSpace* destination,
                                          std::int32_t level, bool paint, bool managed) override {
        return NoteShading(5, destination, level, paint, managed);
    }

    bool WriteType4BasedShadingDictionary(COLOR::IFreeFormTriangleMeshesShadingColorSpace*,
                                          COLOR::IConnectionColorSpace* destination,
                                          std::int32_t level, bool paint, bool managed) override {
        return NoteShading(4, destination, level, paint, managed);
    }

    void GetColorSpaceResourceName(COLOR::IConnectionColorSpace* space,
                                   COLOR::TRenderingIntent intent, std::string& name) override {
        Note("GetColorSpaceResourceName ", Number(space), Intent(intent));
        name = resourceName;
    }

    void WriteColorSpaceResourceName(const std::string&, bool) override {}

    /// Name under which a Separation or DeviceN space was defined last.
    std::string lastName;

private:
    template <class... Parts>
    void Note(const Parts&... parts) {
        ((calls += parts), ...);
        calls += '\n';
    }

    bool NoteShading(std::int32_t type, COLOR::IConnectionColorSpace* destination,
                     std::int32_t level, bool paint, bool managed) {
        Note("Shading ", std::to_string(type), " into ",
             destination == nullptr ? "none" : Number(destination), " level ",
             std::to_string(level), paint ? " paint" : "", Managed(managed));
        return succeeds;
    }

    static const char* Managed(bool colourManaged) { return colourManaged ? " managed" : ""; }

    static std::string Text(FourCC code) {
        std::string text;
        for (unsigned shift = 32; shift != 0; shift -= 8) {
            text += static_cast<char>((code >> (shift - 8)) & 0xFFU);
        }
        return text;
    }

    /// Four digits are enough to see a colour through rounding.
    static std::string Text(const float* values, std::int32_t count) {
        std::ostringstream text;
        text.precision(4);
        for (std::int32_t i = 0; i < count; ++i) {
            text << ' ' << values[i];
        }
        return text.str();
    }

    static std::string Number(COLOR::IConnectionColorSpace* space) {
        return std::to_string(space->GetIdentifier().Data1);
    }

    static std::string Intent(COLOR::TRenderingIntent intent) {
        return " intent " + std::to_string(static_cast<std::int32_t>(intent));
    }
};

}  // namespace VANTIX::TEST
