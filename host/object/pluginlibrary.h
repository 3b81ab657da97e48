// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>

#include "core/object/iclassfactory.h"
#include "core/registry/ipluginclassfactories.h"
#include "host/export.h"

namespace VANTIX::HOST {

/// A plug-in in this process. Its code stays loaded until the process ends, even when this object
/// is gone: creators that it registered, and objects whose references others still hold, point into
/// it.
class NORVANE_HOST_API PluginLibrary {
public:
    /// Loads the file at `path`, finds its three entry points and calls `Init` with `factory`. Null
    /// with the reason in `error`.
    static std::unique_ptr<PluginLibrary> Load(const std::string& path, IClassFactory& factory,
                                               std::string& error);

    /// Calls `DeInit`.
    ~PluginLibrary();
    PluginLibrary(const PluginLibrary&) = delete;
    PluginLibrary& operator=(const PluginLibrary&) = delete;
    PluginLibrary(PluginLibrary&&) = delete;
    PluginLibrary& operator=(PluginLibrary&&) = delete;

    /// A new object of the first class that the plug-in lists in `category`, or null.
    TInterfacePtr<IObject> CreateFirst(const GUID& category, IClassFactory& factory) const;

private:
    PluginLibrary() = default;

    TInterfacePtr<IObject> Create(const GUID& classId, IClassFactory& factory) const;

    COREREGISTRY::PluginInit mInit = nullptr;
    COREREGISTRY::PluginDeInit mDeInit = nullptr;
    COREREGISTRY::PluginGetClassObject mGetClassObject = nullptr;
};

/// The path of the plug-in that belongs to this host library: beside it, in ../lib, or in the
/// folder norvane beside it, where it is installed. Empty when it is in none of them.
NORVANE_HOST_API std::string FindPluginFile();

}  // namespace VANTIX::HOST
