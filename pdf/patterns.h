// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <map>
#include <memory>
#include <string>

#include "pdf/qpdfheaders.h"
#include "pdf/reporter.h"
#include "pdf/resources.h"
#include "pdf/shadings.h"

namespace VANTIX::PDF {

/// A pattern as a colour.
struct Pattern {
    HOST::ColorSpacePtr space;
    ResourceId id = 0;
    std::shared_ptr<const Shading> shading;
    std::array<double, 6> matrix{};  ///< from its space to that of the page
};

/// Makes the host's patterns of PDF patterns (PDF Reference, 4.6), and keeps those of a page: a
/// pattern starts from the page's own space.
class Patterns {
public:
    Patterns(Shadings& shadings, Reporter& reporter) : mShadings(shadings), mReporter(reporter) {}

    void BeginPage() { mPatterns.clear(); }

    /// The pattern that `object` describes; `parent` leads from the space of the content that uses
    /// it to that of the page. Null, after one warning, for one that cannot be drawn.
    std::shared_ptr<const Pattern> Find(const QPDFObjectHandle& object, Resources& resources,
                                        const std::array<double, 6>& parent);

private:
    using PatternPtr = std::shared_ptr<const Pattern>;

    PatternPtr Make(const QPDFObjectHandle& object, Resources& resources,
                    const std::array<double, 6>& parent);

    Shadings& mShadings;
    Reporter& mReporter;
    std::map<std::string, PatternPtr> mPatterns;
    // Behind the numbers of shadings.
    ResourceId mNextId = 0x20000000;
};

}  // namespace VANTIX::PDF
