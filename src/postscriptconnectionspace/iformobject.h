// SPDX-License-Identifier: MIT
#pragma once

#include "core/color/iconnectioncolorspace.h"
#include "postscriptdatastream/ipostscriptdatastream.h"

namespace VANTIX::PS {

/// Key of a form on the data stream that records it.
inline constexpr GUID IID_IFORMOBJECT = "BCD6F5C5-7FC7-46FE-8918-04232EBAC01B"_guid;
/// Key of a soft mask on the form or group that it applies to.
inline constexpr GUID IID_ISOFTMASKGROUP = "54E615B6-384F-4328-9E32-AE0930FB98BA"_guid;
/// Key of what ends a soft mask on the host's soft-mask holder.
inline constexpr GUID IID_ISOFTMASKMESSENGER = "18DB8B9C-3786-4680-9589-92B38168A616"_guid;

/// Content that is defined once, between /BP and /EP, and drawn by /SP (pdfmark Reference, forms).
class IFormObject : public IObject {
public:
    /// The opening of the definition.
    virtual void WriteBeginPicture(IPostScriptDataStream& out) const = 0;
    /// The closing of the definition.
    virtual void WriteEndPicture(IPostScriptDataStream& out) const = 0;
    /// The use of the form.
    virtual void WriteDrawPicture(IPostScriptDataStream& out) const = 0;
    /// The colour space that its content is blended in (borrowed), or null.
    virtual COLOR::IConnectionColorSpace* GetGroupColorSpace() const = 0;
};

/// A soft mask: a group whose alpha or luminosity becomes opacity (PDF Reference, 7.5.4).
class ISoftMaskGroup : public IObject {
public:
    /// Makes the mask current, together with the alpha and the blend mode that it began with.
    virtual void WriteExtGState(IPostScriptDataStream& out) const = 0;
};

}  // namespace VANTIX::PS
