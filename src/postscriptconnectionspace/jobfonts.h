// SPDX-License-Identifier: MIT
#pragma once

#include <map>
#include <set>
#include <string>

#include "core/fonts/ifontbroker.h"
#include "core/fonts/ifontpackagehandler.h"
#include "core/object/tinterfaceptr.h"

namespace VANTIX::PS {

/// The order of fonts that the host gives them.
struct HandlerOrder {
    using is_transparent = void;
    using Handler = GRAPHICS::IFontPackageHandler;
    using HandlerPtr = TInterfacePtr<Handler>;

    static const Handler& Get(const HandlerPtr& handler) { return *handler; }

    static const Handler& Get(const Handler& handler) { return handler; }

    template <class A, class B>
    bool operator()(const A& a, const B& b) const {
        return Get(a).Less(Get(b));
    }
};

/// What a job knows of the fonts that it has downloaded.
struct JobFonts {
    using NameMap =
        std::map<TInterfacePtr<GRAPHICS::IFontPackageHandler>, std::string, HandlerOrder>;

    /// Those whose fonts are in the document, by address.
    std::map<const GRAPHICS::IFontBroker*, TInterfacePtr<GRAPHICS::IFontBroker>> brokers;
    /// PostScript names that are taken.
    std::set<std::string> usedNames;
    /// PostScript name of each font.
    NameMap names;
};

}  // namespace VANTIX::PS
