// SPDX-License-Identifier: MIT
#pragma once

#include "basefontbuilder.h"

namespace VANTIX::PS {

/// Writes a TrueType font as a Type 42 font (Technical Note 5012): its data in /sfnts, and
/// CharStrings that give each glyph name an index.
class T42FontBuilder : public BaseFontBuilder {
public:
    T42FontBuilder() : BaseFontBuilder(FontDictionaryType::kType42) {}

    bool Init(GRAPHICS::IFontPackageHandler* handler, const char* name,
              IO::IPacketDataProvider& packet) override;
    bool BuildFont() override;
    bool DefineFont(GRAPHICS::IFontPackageHandler* handler, const char* name) override;

protected:
    bool WriteFontBBox() override;
    bool WriteTypeSpecificEntries() override;
    bool SetEncodingDifferences(GRAPHICS::IFontPackageHandler* handler) override;
    bool WriteFontMatrix() override;

private:
    void WriteFontComments();
    bool WriteCharStrings(GRAPHICS::IFontPackageHandler& handler);
};

}  // namespace VANTIX::PS
