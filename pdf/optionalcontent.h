// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <map>
#include <set>
#include <string>

#include "pdf/qpdfheaders.h"

namespace VANTIX::PDF {

/// Which groups of optional content are printed: the default configuration with its usage for the
/// print event (PDF Reference, 4.10).
class OptionalContent {
public:
    explicit OptionalContent(QPDF& qpdf);

    /// Whether content that belongs to `object`, a group or a membership dictionary, is shown.
    /// Anything else hides nothing.
    bool IsVisible(const QPDFObjectHandle& object);

private:
    void ReadConfiguration(const QPDFObjectHandle& configuration);
    void ApplyUsage(const QPDFObjectHandle& usage);
    void SetStates(QPDFObjectHandle groups, bool visible);
    bool IsGroupVisible(const QPDFObjectHandle& group) const;
    bool IsMembershipVisible(const QPDFObjectHandle& membership);
    bool EvaluatePolicy(const QPDFObjectHandle& membership) const;
    bool EvaluateExpression(QPDFObjectHandle expression, int depth, std::size_t& budget) const;

    bool mBaseVisible = true;
    std::map<QPDFObjGen, bool> mStates;
    std::map<QPDFObjGen, bool> mMemberships;
};

}  // namespace VANTIX::PDF
