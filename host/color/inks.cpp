// SPDX-License-Identifier: MIT
#include "host/color/inks.h"

#include <algorithm>
#include <utility>

#include "core/object/tobject.h"

namespace VANTIX::HOST {

namespace {

class Ink : public TObject<COLOR::IInk> {
public:
    explicit Ink(InkDescription description)
        : mDescription(std::move(description)), mName(mDescription.name) {}

    const CoreString* GetName() const override { return mName.empty() ? nullptr : &mName; }

    COLOR::InkColorKind GetColorKind() const override { return mDescription.kind; }

    FourCC GetColorSignature() const override { return mDescription.signature; }

    float GetColorComponent(std::int32_t index) const override {
        return index >= 0 && index < 4 ? mDescription.color[static_cast<std::size_t>(index)] : 0.0F;
    }

    std::int32_t GetSignatureValues(float values[4]) const override {
        const std::int32_t count = std::clamp(mDescription.signatureCount, 0, 4);
        std::copy_n(mDescription.signatureValues.begin(), count, values);
        return count;
    }

private:
    InkDescription mDescription;
    CoreString mName;
};

class InkInstance : public TObject<COLOR::IInkInstance> {
public:
    explicit InkInstance(InkDescription description)
        : mInk(MakeObject<Ink>(std::move(description))) {}

    COLOR::IInk* GetInk() const override { return mInk.Get(); }

private:
    TInterfacePtr<COLOR::IInk> mInk;
};

class InkCollection : public TObject<COLOR::IInkCollection> {
public:
    explicit InkCollection(std::vector<InkDescription> inks) {
        for (InkDescription& ink : inks) {
            mInstances.emplace_back(MakeObject<InkInstance>(std::move(ink)));
        }
    }

    std::int32_t GetInkCount() const override {
        return static_cast<std::int32_t>(mInstances.size());
    }

    COLOR::IInkInstance* GetInkInstance(std::int32_t index) const override {
        return index >= 0 && index < GetInkCount()
                   ? mInstances[static_cast<std::size_t>(index)].Get()
                   : nullptr;
    }

private:
    std::vector<TInterfacePtr<COLOR::IInkInstance>> mInstances;
};

}  // namespace

TInterfacePtr<COLOR::IInkCollection> MakeInkCollection(std::vector<InkDescription> inks) {
    return MakeObject<InkCollection>(std::move(inks));
}

}  // namespace VANTIX::HOST
