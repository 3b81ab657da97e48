// SPDX-License-Identifier: MIT
#pragma once

#include "basefontbuilder.h"

namespace VANTIX::PS {

/// Writes a CFF font as a FontSet resource (Technical Note 5176; PostScript Language Reference,
/// 5.8.1), its data unchanged. The job's policy, which may be aggregated into it, says whether
/// "%%EOF" follows.
class CFFBuilder : public FontResourceBuilder {
public:
    bool Init(GRAPHICS::IFontPackageHandler* handler, const char* name,
              IO::IPacketDataProvider& packet) override;
    bool BuildFont() override;
    bool DefineFont(GRAPHICS::IFontPackageHandler* handler, const char* name) override;

private:
    void WriteFontSet(std::span<const std::uint8_t> data);
};

}  // namespace VANTIX::PS
