// SPDX-License-Identifier: MIT
#include "host/fonts/fontbroker.h"

#include <utility>

namespace VANTIX::HOST {
namespace {

/// A font object: it lends the handler that is aggregated into it.
class Font : public TObject<IObject> {
public:
    explicit Font(GRAPHICS::IFontPackageHandler& handler) {
        Aggregate(&handler, GRAPHICS::IID_IFONTPACKAGEHANDLER);
    }
};

class SingleFontFamily : public TObject<GRAPHICS::IFontFamily> {
public:
    explicit SingleFontFamily(TInterfacePtr<Font> font) : mFont(std::move(font)) {}

    std::int32_t GetFontCount() const override { return 1; }

    IObject* GetFont(std::int32_t index) const override {
        return index == 0 ? mFont.Get() : nullptr;
    }

private:
    TInterfacePtr<Font> mFont;
};

}  // namespace

void FontBroker::Add(const TInterfacePtr<GRAPHICS::IFontPackageHandler>& handler,
                     std::int32_t selector) {
    if (!handler || mFonts.contains(selector)) {
        return;
    }
    mFamilies.emplace_back(MakeObject<SingleFontFamily>(MakeObject<Font>(*handler)));
    mFonts[selector] = mFamilies.back()->GetFont(0);
}

IObject* FontBroker::FindFont(const char* /*name*/, std::int32_t selector, std::int32_t /*flags*/) {
    const auto found = mFonts.find(selector);
    return found == mFonts.end() ? nullptr : found->second;
}

void FontBroker::EnumerateFontFamilies(GRAPHICS::IFamilyFunctor& functor) {
    for (const auto& family : mFamilies) {
        functor(family.Get());
    }
}

}  // namespace VANTIX::HOST
