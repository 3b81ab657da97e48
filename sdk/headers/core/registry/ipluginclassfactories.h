// SPDX-License-Identifier: MIT
#pragma once

#include "core/object/iclassfactory.h"

namespace VANTIX::COREREGISTRY {

inline constexpr GUID CLSID_PLUGINCLASSFACTORIES = "937382D8-98F7-4613-8212-5EEAF4EDED31"_guid;
/// Category of composite-graphic filters (importers).
inline constexpr GUID CATID_COMPOSITEGRAPHICS = "FC3E0E3F-9589-4FE6-9D08-E339589B791C"_guid;
/// Category of graphic exporters.
inline constexpr GUID CATID_GRAPHICEXPORTERS = "E3B17BEA-629A-4DDD-9FDD-F2E11F6B6133"_guid;

/// The folder that a plug-in was loaded from.
class IDir;

/// A list of identifiers that grows.
class IGuidList : public IObject {
public:
    virtual Status Add(const GUID& id) = 0;
};

/// What the host hands to a class table to be filled.
class IFilterRegistry : public IObject {
public:
    /// The list to add to (borrowed).
    virtual IGuidList* GetList() = 0;
};

/// A plug-in's class table: which filter categories it serves, and with which classes.
class IPluginClassFactories : public IObject {
public:
    virtual Status GetFilterCategories(IFilterRegistry* registry) = 0;

    /// Adds the classes of `category`; `kInvalidArgument` for a category that is not served.
    virtual Status GetFilterClasses(const GUID& category, IFilterRegistry* registry) = 0;

    virtual const GUID* GetClassID() const = 0;
};

/// The three exported functions of a plug-in, by the names "Init", "DeInit" and "GetClassObject".
extern "C" {
using PluginInit = Status (*)(const IDir* pluginFolder, IClassFactory* factory);
using PluginDeInit = Status (*)();
using PluginGetClassObject = Status (*)(const GUID& classId, void* reserved, IObject** out,
                                        IClassFactory* factory);
}

}  // namespace VANTIX::COREREGISTRY
