// SPDX-License-Identifier: MIT
#include "pdf/transparency.h"

#include <array>
#include <exception>
#include <numeric>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

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

/// Reaches all resources from one on, however deep and in whatever circles they hold one another,
/// and gives the kinds of each to those that hold it.
class TransparencySurvey::Search {
public:
    /// What is in `known` is not looked at again.
    explicit Search(const std::map<QPDFObjGen, unsigned>& known) : mKnown(known) {}

    void Run(const Source& root) {
        Reach(root, std::nullopt);
        for (std::size_t i = 0; i < mFound.size(); ++i) {
            try {
                Look(i);
            } catch (const std::exception&) {
                // What is damaged shows what was found in it so far.
            }
        }
        Spread();
    }

    [[nodiscard]] unsigned OfRoot() const { return mFound.front().kinds; }

    void AddTo(std::map<QPDFObjGen, unsigned>& known) const {
        for (const auto& [object, number] : mNumbers) {
            known.emplace(object, mFound[number].kinds);
        }
    }

private:
    struct Found {
        QPDFObjectHandle resources;
        unsigned kinds = TR::kNone;
        std::vector<std::size_t> holders;
    };

    void Reach(const Source& source, std::optional<std::size_t> holder);
    void Look(std::size_t number);
    void LookAtXObject(const QPDFObjectHandle& object, std::size_t holder);
    void Spread();

    template <class Visit>
    static void ForAll(QPDFObjectHandle dictionary, Visit visit) {
        if (dictionary.isDictionary()) {
            for (const auto& entry : dictionary.ditems()) {
                visit(entry.second);
            }
        }
    }

    const std::map<QPDFObjGen, unsigned>& mKnown;
    std::vector<Found> mFound;
    std::map<QPDFObjGen, std::size_t> mNumbers;  // of those in mFound that objects tell apart
};

void TransparencySurvey::Search::Reach(const Source& source, std::optional<std::size_t> holder) {
    if (const auto known = mKnown.find(source.object); holder && known != mKnown.end()) {
        mFound[*holder].kinds |= known->second;
        return;
    }
    std::size_t number = mFound.size();
    if (source.object.isIndirect()) {
        number = mNumbers.emplace(source.object, number).first->second;
    }
    if (number == mFound.size()) {
        mFound.push_back({source.resources, TR::kNone, {}});
    }
    if (holder) {
        mFound[number].holders.push_back(*holder);
    }
}

void TransparencySurvey::Search::Look(std::size_t number) {
    const QPDFObjectHandle resources = mFound[number].resources;
    const auto reachOwner = [&](const QPDFObjectHandle& owner) { Reach(SourceOf(owner), number); };
    ForAll(Get(resources, "/ExtGState"), [&](const QPDFObjectHandle& parameters) {
        mFound[number].kinds |= TransparencyOf(parameters);
    });
    ForAll(Get(resources, "/XObject"),
           [&](const QPDFObjectHandle& object) { LookAtXObject(object, number); });
    ForAll(Get(resources, "/Pattern"), reachOwner);
    ForAll(Get(resources, "/Font"), reachOwner);
}

void TransparencySurvey::Search::LookAtXObject(const QPDFObjectHandle& object, std::size_t holder) {
    if (NameOf(Get(object, "/Subtype")) != "Image") {
        Reach(SourceOf(object), holder);
        return;
    }
    const bool isSoft =
        !IsNull(Get(object, "/SMask")) || IntegerOf(Get(object, "/SMaskInData")).value_or(0) != 0;
    mFound[holder].kinds |= isSoft ? TR::kAlpha : TR::kNone;
}

// Each is taken up again only when it has got a kind more.
void TransparencySurvey::Search::Spread() {
    std::vector<std::size_t> changed(mFound.size());
    std::iota(changed.begin(), changed.end(), std::size_t{0});
    while (!changed.empty()) {
        const Found& from = mFound[changed.back()];
        changed.pop_back();
        for (const std::size_t holder : from.holders) {
            unsigned& kinds = mFound[holder].kinds;
            if ((from.kinds & ~kinds) != 0) {
                kinds |= from.kinds;
                changed.push_back(holder);
            }
        }
    }
}

TransparencySurvey::Source TransparencySurvey::SourceOf(const QPDFObjectHandle& owner) {
    const QPDFObjectHandle resources = Get(owner, "/Resources");
    return {resources, resources.isIndirect() ? resources.getObjGen() : owner.getObjGen()};
}

unsigned TransparencySurvey::Find(const Source& source) {
    if (const auto known = mKnown.find(source.object); known != mKnown.end()) {
        return known->second;
    }
    Search search(mKnown);
    search.Run(source);
    search.AddTo(mKnown);
    return search.OfRoot();
}

void LostTransparency::Report(Reporter& reporter, bool isKept) {
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
        reporter.WarnOfPage(
            "transparency",
            isKept ? "Transparency in pattern cells and glyphs is painted opaque (" + list + ")"
                   : "Transparency is painted opaque (" + list +
                         "); --transparency pdfmark keeps it for a distiller");
    }
}

}  // namespace VANTIX::PDF
