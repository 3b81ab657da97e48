// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include "core/fonts/ifontpackagehandler.h"
#include "core/io/idataprovider.h"
#include "postscriptdatastream/ipostscriptdatastream.h"

namespace VANTIX::PS {

/// Kinds of PostScript fonts that are downloaded. 0 is none, or to the factory the natural one of
/// the source.
enum class TPSFontType : std::int32_t {
    kNone = 0,
    kType1 = 1,
    kType42 = 2,
    kType3 = 3,
    kCIDFontType0 = 4,
    kCIDFontType1 = 5,
    kCIDFontType2 = 6,
    kFontSet = 8,
    kCIDKeyedFontSet = 9
};

}  // namespace VANTIX::PS

namespace VANTIX::GRAPHICS {

/// Writes one font program as a PostScript resource into a packet, and further fonts made from it.
class IFontBuilder : public IObject {
public:
    /// `name` may be null for the handler's own. False (logged) when the builder is of no use.
    virtual bool Init(IFontPackageHandler* handler, const char* name,
                      IO::IPacketDataProvider& packet) = 0;
    /// Writes the whole resource.
    virtual bool BuildFont() = 0;
    /// Defines a further font `name` with the encoding of `handler`, from the font that is built
    /// already or resident.
    virtual bool DefineFont(IFontPackageHandler* handler, const char* name) = 0;
    virtual const char* GetFontName() const = 0;
    /// The stream over the packet (borrowed), or null before `Init`.
    virtual PS::IPostScriptDataStream* GetStream() = 0;
};

}  // namespace VANTIX::GRAPHICS
