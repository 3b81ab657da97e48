// SPDX-License-Identifier: MIT
#pragma once

#include "basecidfontbuilder.h"

namespace VANTIX::PS {

/// Writes a CID-keyed TrueType font as a CIDFont of type 2 (PostScript Language Reference, 5.11.3)
/// with its data in /sfnts, in which a CID is the index of a glyph.
class CIDFontType2Builder : public BaseCIDFontBuilder {
public:
    CIDFontType2Builder() : BaseCIDFontBuilder(TPSFontType::kCIDFontType2) {}

    bool Init(GRAPHICS::IFontPackageHandler* handler, const char* name,
              IO::IPacketDataProvider& packet) override;
    bool BuildFont() override;

protected:
    void WriteFontBBox() override;
    void WriteAdditionalFontDictEntries() override;
    [[nodiscard]] const float* GetFontMatrix() const override;
};

}  // namespace VANTIX::PS
