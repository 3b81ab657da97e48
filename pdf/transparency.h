// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>

#include "pdf/qpdfheaders.h"
#include "pdf/reporter.h"

namespace VANTIX::PDF {

/// Kinds of transparency (PDF Reference, chapter 7), as a set of bits.
namespace TRANSPARENCY {
inline constexpr unsigned kNone = 0;
inline constexpr unsigned kAlpha = 1;     ///< constant alpha, or images with opacity
inline constexpr unsigned kBlending = 2;  ///< blend modes other than Normal
inline constexpr unsigned kMask = 4;      ///< soft masks of the graphics state
inline constexpr unsigned kKnockout = 8;  ///< knockout groups
}  // namespace TRANSPARENCY

/// Finds out what transparency content can show, by the resources that it names: a group of nothing
/// but opaque paint is painted without one. Each object of a document is looked at once.
class TransparencySurvey {
public:
    /// The kinds that content with these resources (a dictionary) can show, its forms, patterns and
    /// fonts included.
    unsigned Find(const QPDFObjectHandle& resources) {
        return Find(Source{resources, resources.getObjGen()});
    }

    /// The same of a form, a pattern or a font, by resources of its own.
    unsigned FindOf(const QPDFObjectHandle& owner) { return Find(SourceOf(owner)); }

private:
    /// Resources, and the object that they are known by: they themselves where they are indirect,
    /// else what holds them. No object where that is direct too: then nothing else holds them.
    struct Source {
        QPDFObjectHandle resources;
        QPDFObjGen object;
    };
    class Search;

    static Source SourceOf(const QPDFObjectHandle& owner);
    unsigned Find(const Source& source);

    std::map<QPDFObjGen, unsigned> mKnown;
};

/// What of transparency a page asked for and did not get, for one warning at its end.
class LostTransparency {
public:
    /// `kinds` are bits of `TRANSPARENCY`.
    void Add(unsigned kinds) { mKinds |= kinds; }

    /// Warns, once for each page that lost something, and forgets. `isKept`: what is drawn on the
    /// page itself lost nothing.
    void Report(Reporter& reporter, bool isKept);

private:
    unsigned mKinds = TRANSPARENCY::kNone;
};

/// The kinds of one graphics-state parameter dictionary.
unsigned TransparencyOf(QPDFObjectHandle parameters);

/// A blend mode, or an array of which the first known one counts (PDF Reference, 7.2.4).
bool IsNormalBlendMode(QPDFObjectHandle mode);

}  // namespace VANTIX::PDF
