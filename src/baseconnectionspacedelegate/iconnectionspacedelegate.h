// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include "baseconnectionspacedelegate/names.h"
#include "core/color/ipatterncolorspaces.h"
#include "core/color/ispotcolorspaces.h"
#include "core/graphics/igraphicsstate.h"
#include "core/graphics/irastercomponent.h"
#include "core/object/iclassfactory.h"

namespace VANTIX::IO {
class IDictionary;
}  // namespace VANTIX::IO

namespace VANTIX::RENDERING {

/// Key of the delegate in its connection space.
inline constexpr GUID IID_ICONNECTIONSPACEDELEGATE = "438F204A-300E-4AAB-A887-81DE9C580053"_guid;
/// Class of the plug-in's delegate factory.
inline constexpr GUID CLSID_CONNECTIONSPACEDELEGATEFACTORY =
    "FBBD7A58-FF15-4BB5-A257-32D3195D89B4"_guid;

/// Output colour models, as policy key 100 gives them. 0 and all numbers not listed mean as-is.
enum class TDelegateType : std::int32_t {
    kDeviceGray = 1,
    kManagedGray = 2,
    kGray100 = 3,
    kCalibratedGray = 4,
    kRGB = 5,
    kManagedRGB = 6,
    kCMYK = 7,
    kManagedCMYK = 8,
    kSoftMask = 9,  ///< as-is, for the content of soft masks
    kAsIs = 10,
    kAsIsProcess = 11,
    kAsIsProcess2 = 12,
    kDeviceN = 15,
    kManagedDeviceN = 16
};

/// Turns colours, shadings and rasters into those of one output colour model and hands them to the
/// output context, which is aggregated into the delegate. The trailing `fill` of the colour
/// operations is true for the non-stroking colour.
class IConnectionSpaceDelegate : public IObject {
public:
    /// Finishes set-up once the output context is aggregated; writes the model's default colour
    /// when asked to.
    virtual void Init(bool setDefaultColour) = 0;
    virtual bool SetColorSpace(IConnectionColorSpace* space, bool fill) = 0;
    /// `values` in host form.
    virtual void SetColorSpaceAndValues(IConnectionColorSpace* space, const float* values,
                                        std::int32_t count, bool fill) = 0;
    virtual bool SetUncoloredPattern(const char* patternName, IConnectionColorSpace* underlying,
                                     bool fill) = 0;
    virtual bool SetPatternColorSpace(const char* patternName) = 0;
    virtual void Image(Raster& raster, float x, float y, float width, float height) = 0;
    /// Paints a shading; `paint` asks for the painting operator behind its dictionary.
    virtual void FillWithColorSpace(IConnectionColorSpace* shading, ResourceId id, float x, float y,
                                    float width, float height, bool paint) = 0;
    /// The state is not referenced.
    virtual void SetGraphicsState(GRAPHICS::IGraphicsState* state) = 0;
    virtual bool CanMarkTheCanvas() const = 0;
    virtual bool WasDefaultColourSet() const = 0;
};

/// Makes the delegate for a colour model.
class IConnectionSpaceDelegateFactory : public IObject {
public:
    /// A new reference, or null. `options` may be null.
    virtual IConnectionSpaceDelegate* CreateConnectionSpaceDelegate(
        IClassFactory& factory, TDelegateType type, const IO::IDictionary* options) const = 0;
};

/// Creator of the factory for the host's registrar: one new reference.
IObject* CreateConnectionSpaceDelegateFactory();

}  // namespace VANTIX::RENDERING
