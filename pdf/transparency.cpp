// SPDX-License-Identifier: MIT
#include "pdf/transparency.h"

#include <array>
#include <exception>
#include <string>
#include <string_view>
#include <utility>

#include "pdf/objects.h"

namespace VANTIX::PDF {

namespace TR = TRANSPARENCY;

bool IsNormalBlendMode(QPDFObjectHandle mode) {
    const QPDFObjectHandle first =
        mode.isArray() ? (mode.getArrayNItems() > 0 ? mode.getArrayItem(0) : QPDFObjectHandle())
                       : mode;
    const std::string name = NameOf(first);
    return name.empty() || name == "Normal" || name == "Compatible";
}

unsigned TransparencyOf(QPDFObjectHandle parameters) {
    if (!parameters.isDictionary()) {
        return TR::kNone;
    }
    unsigned kinds = TR::kNone;
    for (const char* alpha : {"/ca", "/CA"}) {
        if (NumberOf(Get(parameters, alpha)).value_or(1.0) < 1.0) {
            kinds |= TR::kAlpha;
        }
    }
    kinds |= IsNormalBlendMode(Get(parameters, "/BM")) ? TR::kNone : TR::kBlending;
    kinds |= Get(parameters, "/SMask").isDictionary() ? TR::kMask : TR::kNone;
    return kinds;
}

template <class Visit>
unsigned TransparencySurvey::OfAll(QPDFObjectHandle dictionary, Visit visit) {
    unsigned kinds = TR::kNone;
    if (dictionary.isDictionary()) {
        for (const auto& entry : dictionary.ditems()) {
            kinds |= visit(entry.second);
        }
    }
    return kinds;
}

unsigned TransparencySurvey::Find(const QPDFObjectHandle& resources) {
    try {
        return FindNested(resources, 0);
    } catch (const std::exception&) {
        return TR::kNone;
    }
}

unsigned TransparencySurvey::FindNested(QPDFObjectHandle resources, int depth) {
    if (!resources.isDictionary() || depth > kMaxDepth) {
        return TR::kNone;
    }
    if (resources.isIndirect()) {
        const auto [known, isNew] = mKnown.emplace(resources.getObjGen(), TR::kNone);
        if (!isNew) {
            return known->second;
        }
    }
    const auto ofOwner = [&](const QPDFObjectHandle& owner) {
        return FindNested(Get(owner, "/Resources"), depth + 1);
    };
    const unsigned kinds = OfAll(Get(resources, "/ExtGState"),
                                 [](const QPDFObjectHandle& v) { return TransparencyOf(v); }) |
                           OfAll(Get(resources, "/XObject"),
                                 [&](const QPDFObjectHandle& v) { return OfXObject(v, depth); }) |
                           OfAll(Get(resources, "/Pattern"), ofOwner) |
                           OfAll(Get(resources, "/Font"), ofOwner);
    if (resources.isIndirect()) {
        mKnown[resources.getObjGen()] = kinds;
    }
    return kinds;
}

unsigned TransparencySurvey::OfXObject(const QPDFObjectHandle& object, int depth) {
    const QPDFObjectHandle mask = Get(object, "/SMask");
    const bool isSoft = !IsNull(mask) || IntegerOf(Get(object, "/SMaskInData")).value_or(0) != 0;
    if (NameOf(Get(object, "/Subtype")) == "Image") {
        return isSoft ? TR::kAlpha : TR::kNone;
    }
    if (!object.isIndirect()) {
        return FindNested(Get(object, "/Resources"), depth + 1);
    }
    // Forms mostly hold their resources directly.
    const auto [known, isNew] = mKnown.emplace(object.getObjGen(), TR::kNone);
    if (!isNew) {
        return known->second;
    }
    const unsigned kinds = FindNested(Get(object, "/Resources"), depth + 1);
    mKnown[object.getObjGen()] = kinds;
    return kinds;
}

void LostTransparency::Report(Reporter& reporter) {
    static constexpr std::array<std::pair<unsigned, std::string_view>, 4> kNames = {{
        {TR::kAlpha, "constant alpha or images with opacity"},
        {TR::kBlending, "blend modes"},
        {TR::kMask, "soft masks"},
        {TR::kKnockout, "knockout groups"},
    }};
    const unsigned kinds = std::exchange(mKinds, TR::kNone);
    std::string list;
    for (const auto& [kind, name] : kNames) {
        if ((kinds & kind) != 0) {
            list += (list.empty() ? "" : ", ") + std::string(name);
        }
    }
    if (!list.empty()) {
        reporter.WarnOfPage("transparency", "Transparency is painted opaque (" + list +
                                                "); --transparency pdfmark keeps it for a "
                                                "distiller");
    }
}

}  // namespace VANTIX::PDF
