// SPDX-License-Identifier: MIT
#include "pdf/fonts/fontwalker.h"

#include <string>

#include "pdf/objects.h"

namespace VANTIX::PDF {

namespace {

template <class Visit>
void ForEach(QPDFObjectHandle dictionary, const Visit& visit) {
    if (dictionary.isDictionary()) {
        for (const auto& entry : dictionary.getDictAsMap()) {
            visit(entry.second);
        }
    }
}

}  // namespace

void FontWalker::Walk(const QPDFObjectHandle& resources, const TakeFont& take) {
    mOpen.push_back(resources);
    while (!mOpen.empty()) {
        QPDFObjectHandle next = mOpen.back();
        mOpen.pop_back();
        if (!next.isIndirect() || mSeen.insert(next.getObjGen()).second) {
            WalkOne(next, take);
        }
    }
}

void FontWalker::WalkOne(const QPDFObjectHandle& resources, const TakeFont& take) {
    const auto takeFont = [&](QPDFObjectHandle font) {
        if (!font.isDictionary()) {
            return;
        }
        take(font);
        // A Type 3 font leads on to the fonts that its glyphs show.
        if (NameOf(Get(font, "/Subtype")) == "Type3" &&
            (!font.isIndirect() || mSeen.insert(font.getObjGen()).second)) {
            mOpen.push_back(Get(font, "/Resources"));
            ForEach(Get(font, "/CharProcs"),
                    [this](const QPDFObjectHandle& glyph) { Enter(glyph); });
        }
    };
    ForEach(Get(resources, "/Font"), takeFont);
    ForEach(Get(resources, "/ExtGState"), [&](const QPDFObjectHandle& state) {
        QPDFObjectHandle font = Get(state, "/Font");
        if (font.isArray() && font.getArrayNItems() > 0) {
            takeFont(font.getArrayItem(0));
        }
        Enter(Get(Get(state, "/SMask"), "/G"));
    });
    for (const char* category : {"/XObject", "/Pattern"}) {
        ForEach(Get(resources, category),
                [this](const QPDFObjectHandle& stream) { Enter(stream); });
    }
}

void FontWalker::Enter(QPDFObjectHandle stream) {
    if (stream.isStream() && mSeen.insert(stream.getObjGen()).second) {
        mOpen.push_back(Get(stream, "/Resources"));
    }
}

}  // namespace VANTIX::PDF
