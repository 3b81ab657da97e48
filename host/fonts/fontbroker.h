// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <map>
#include <vector>

#include "core/fonts/ifontbroker.h"
#include "core/fonts/ifontpackagehandler.h"
#include "core/object/tinterfaceptr.h"
#include "core/object/tobject.h"
#include "host/export.h"

namespace VANTIX::HOST {

/// The fonts of a document, found by their selectors: each is a family of its own, in the order in
/// which it was added.
class NORVANE_HOST_API FontBroker : public TObject<GRAPHICS::IFontBroker> {
public:
    /// Makes `handler` the font with this selector; the first one stays.
    void Add(const TInterfacePtr<GRAPHICS::IFontPackageHandler>& handler, std::int32_t selector);

    IObject* FindFont(const char* name, std::int32_t selector, std::int32_t flags) override;
    void EnumerateFontFamilies(GRAPHICS::IFamilyFunctor& functor) override;

private:
    std::vector<TInterfacePtr<GRAPHICS::IFontFamily>> mFamilies;
    std::map<std::int32_t, IObject*> mFonts;  // borrowed of the families
};

}  // namespace VANTIX::HOST
