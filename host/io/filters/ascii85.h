// SPDX-License-Identifier: MIT
#pragma once

#include "host/io/filters/outputfilter.h"

namespace VANTIX::HOST {

/// ASCII base-85 encoding (PostScript Language Reference, 3.13.3) in lines of at most 80
/// characters. No line begins with a percent sign, so that no data are taken for a comment of the
/// document's structure. Ends with "~>" and a line end.
class Ascii85Filter : public OutputFilter {
public:
    using OutputFilter::OutputFilter;

    Status Put(std::span<const std::uint8_t> bytes) override;
    Status End() override;

private:
    void EmitGroup(const std::uint8_t* group, std::size_t count);
    void EmitText(const std::uint8_t* text, std::size_t count);

    std::array<std::uint8_t, 4> mGroup{};
    std::size_t mHeld = 0;
    std::size_t mColumn = 0;
};

}  // namespace VANTIX::HOST
