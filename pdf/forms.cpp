// SPDX-License-Identifier: MIT
#include "pdf/forms.h"

namespace VANTIX::PDF {

void ReportStream(StreamResult result, const std::string& what, Reporter& reporter) {
    switch (result) {
        case StreamResult::kOk:
            return;
        case StreamResult::kUnknownFilter:
            reporter.Warn("filter", what + " is left out: it is encoded in an unknown way");
            return;
        case StreamResult::kTooLarge:
            reporter.Warn("damaged", what + " is cut off: it is too large");
            return;
        case StreamResult::kNoStream:
            reporter.Warn("damaged", what + " is left out: it is no stream");
            return;
        case StreamResult::kDamaged:
            reporter.Warn("damaged", what + " is incomplete: its data are damaged");
            return;
    }
}

OpenStreams::Mark::Mark(OpenStreams& open, const QPDFObjectHandle& stream)
    : mOpen(open), mStream(QPDFObjectHandle(stream).getObjGen()), mIsSet(open.MayOpen(mStream)) {
    if (mIsSet) {
        mOpen.mStreams.insert(mStream);
    }
}

OpenStreams::Mark::~Mark() {
    if (mIsSet) {
        mOpen.mStreams.erase(mStream);
    }
}

std::shared_ptr<Form> FormCache::Find(const QPDFObjectHandle& stream, const char* label) {
    const auto known = mForms.find(stream.getObjGen());
    if (known != mForms.end()) {
        return known->second;
    }
    auto form = std::make_shared<Form>();
    form->stream = stream;
    ReportStream(AppendStreamData(stream, form->content, kLargestContent), label, mReporter);
    form->matrix = MatrixOf(Get(stream, "/Matrix"));
    form->box = RectangleOf(Get(stream, "/BBox"));
    const QPDFObjectHandle group = Get(stream, "/Group");
    form->group = NameOf(Get(group, "/S")) == "Transparency" ? group : QPDFObjectHandle::newNull();
    QPDFObjectHandle resources = Get(stream, "/Resources");
    if (resources.isDictionary()) {
        form->resources = std::make_unique<Resources>(resources, mColorSpaces);
    }
    if (mForms.size() >= kMaxForms || mBytes + form->content.size() > kMaxBytes) {
        mForms.clear();
        mBytes = 0;
    }
    mBytes += form->content.size();
    mForms.emplace(stream.getObjGen(), form);
    return form;
}

}  // namespace VANTIX::PDF
