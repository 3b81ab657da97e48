// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include "core/color/colorconversion.h"
#include "core/object/iobject.h"
#include "core/types.h"

namespace VANTIX::COLOR {
class IConnectionColorSpace;
}  // namespace VANTIX::COLOR

namespace VANTIX::GRAPHICS {

/// Class of the host's mutable graphics-state stack.
inline constexpr GUID CLSID_MUTABLEGRAPHICSSTATESTACK = "3803B141-8B52-425D-8AF0-388F3FCD1F5B"_guid;

/// Blend modes in the order of the PDF Reference, 7.2.4.
enum class TBlendMode : std::int32_t {
    kNormal = 0,
    kMultiply,
    kScreen,
    kOverlay,
    kDarken,
    kLighten,
    kColorDodge,
    kColorBurn,
    kHardLight,
    kSoftLight,
    kDifference,
    kExclusion,
    kHue,
    kSaturation,
    kColor,
    kLuminosity
};

/// The state of the moment as the host keeps it: one stable object whose getters read the top of
/// the host's stack. "fill" chooses between the non-stroking (true) and the stroking (false)
/// parameter.
class IGraphicsState : public IObject {
public:
    enum class TSoftMaskType : std::int32_t { kAlpha = 1, kLuminosity = 2 };

    /// Text rendering modes as in PDF.
    enum class TTextRendering : std::int32_t {
        kFill = 0,
        kStroke,
        kFillStroke,
        kInvisible,
        kFillClip,
        kStrokeClip,
        kFillStrokeClip,
        kClip
    };

    virtual float GetAlpha(bool fill) const = 0;
    virtual TBlendMode GetBlendMode() const = 0;
    virtual bool GetAlphaIsShape() const = 0;
    virtual bool GetTextKnockout() const = 0;
    virtual bool GetOverprint(bool fill) const = 0;
    /// 0 or 1 as OPM.
    virtual std::int32_t GetOverprintMode() const = 0;
    /// The number of the current space: for a device space its four-character code.
    virtual ResourceId GetColorSpaceID(bool fill) const = 0;
    /// The current space (borrowed), device spaces too; null when there is none.
    virtual COLOR::IConnectionColorSpace* GetColorSpace(bool fill) const = 0;
    /// Copies the first `count` components in host form; missing ones become 0.
    virtual void GetColor(bool fill, float* values, std::int32_t count) const = 0;
    /// Intent of the source side.
    virtual COLOR::TRenderingIntent GetRenderingIntent() const = 0;
    /// Intent of the destination side.
    virtual COLOR::TRenderingIntent GetRenderingIntent2() const = 0;
    /// The object that owns the soft mask in force (borrowed), or null.
    virtual IObject* GetSoftMaskHolder() const = 0;

    virtual float GetCharSpacing() const = 0;
    virtual float GetWordSpacing() const = 0;
    /// A factor: 1 is unscaled.
    virtual float GetHorizontalScaling() const = 0;
    virtual float GetTextLeading() const = 0;
    virtual const char* GetFontName() const = 0;
    virtual std::int32_t GetFontSelector() const = 0;
    virtual float GetFontSize() const = 0;
    virtual TTextRendering GetTextRendering() const = 0;
};

/// Mirror of the interpreter's graphics state for a writer that leaves out what would change
/// nothing.
class IMutableGraphicsStateStack : public IObject {
public:
    /// An intent or overprint value that differs from all that can be set.
    static constexpr std::int32_t kUnknown = -2;

    virtual void Push() = 0;
    /// Does nothing on an empty stack.
    virtual void Pop() = 0;
    /// From now on nothing is known of the top: neither space nor colour, and the intents and
    /// overprint values are `kUnknown`.
    virtual void Forget() = 0;
    virtual std::uint64_t GetColorSpaceKey() const = 0;
    /// Stores the key and forgets the colour, as an interpreter does at setcolorspace, even when
    /// the key is the same.
    virtual void SetColorSpaceKey(std::uint64_t key) = 0;
    /// Copies at most 16 components; `count` is 0 when no colour is known.
    virtual void GetColor(float values[16], std::int32_t& count) const = 0;
    /// Whether the colour is to be written: false refuses it. More than 16 components are accepted
    /// and never compare equal.
    virtual bool SetColor(const float* values, std::int32_t count) = 0;
    /// `index` 0 or 1 for the first or second intent; -1 while not set.
    virtual std::int32_t GetRenderingIntent(std::int32_t index) const = 0;
    virtual void SetRenderingIntent(std::int32_t index, std::int32_t intent) = 0;
    /// `index` 0 fill, 1 stroke, 2 mode, 3 the last set of fill or stroke (read only); all start at
    /// 0.
    virtual std::int32_t GetOverprint(std::int32_t index) const = 0;
    virtual void SetOverprint(std::int32_t index, std::int32_t value) = 0;
    virtual const char* GetFontName() const = 0;
    virtual float GetFontSize() const = 0;
    virtual void SetFont(const char* name, float size) = 0;
    virtual void SetTextMatrix(const float matrix[6]) = 0;
    virtual void PassThrough(const void* arguments) = 0;
};

}  // namespace VANTIX::GRAPHICS
