// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include "host/fonts/cidfont.h"
#include "pdf/fonts/rangemap.h"
#include "pdf/qpdfheaders.h"

namespace VANTIX::PDF {

/// The metrics of a CIDFont by its dictionary: /DW, /W, /DW2 and /W2 (PDF Reference, 5.6.3). What
/// makes no sense there is passed over.
class CIDMetrics {
public:
    explicit CIDMetrics(const QPDFObjectHandle& font);

    /// Fills in what the glyph of a CID has.
    void Apply(std::uint16_t cid, HOST::CIDCharacter& character) const;

private:
    struct Vertical {
        float advance = 0.0F;
        float x = 0.0F;
        float y = 0.0F;
    };

    float mWidth = 1.0F;
    float mOriginY = 0.88F;
    float mAdvance = -1.0F;
    RangeMap<float> mWidths;
    RangeMap<Vertical> mVertical;
};

}  // namespace VANTIX::PDF
