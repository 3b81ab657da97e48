// SPDX-License-Identifier: MIT
#include "plugin.h"

#include <cstdio>

#include "baseconnectionspacedelegate/iconnectionspacedelegate.h"
#include "core/graphics/iconnectionspace.h"
#include "core/libsupport/vlogger/logmessage.h"
#include "core/object/tobject.h"
#include "core/registry/iregistrar.h"
#include "postscriptcompositegraphic.h"
#include "postscriptconnectionspace/postscriptconnectionspace.h"
#include "postscriptexporter.h"
#include "psfontbuilderfactory.h"

namespace VANTIX::COREREGISTRY {
namespace {

void AddToList(IFilterRegistry* registry, const GUID& id) {
    IGuidList* list = registry == nullptr ? nullptr : registry->GetList();
    if (list != nullptr) {
        list->Add(id);
    }
}

/// The plug-in's class table.
class PluginClassFactories : public TObject<IPluginClassFactories> {
public:
    Status GetFilterCategories(IFilterRegistry* registry) override {
        AddToList(registry, CATID_COMPOSITEGRAPHICS);
        AddToList(registry, CATID_GRAPHICEXPORTERS);
        return STATUS::kOk;
    }

    Status GetFilterClasses(const GUID& category, IFilterRegistry* registry) override {
        if (category == CATID_COMPOSITEGRAPHICS) {
            AddToList(registry, CLSID_POSTSCRIPTCOMPOSITEGRAPHIC);
            return STATUS::kOk;
        }
        if (category == CATID_GRAPHICEXPORTERS) {
            AddToList(registry, GRAPHICS::CLSID_POSTSCRIPTEXPORTER);
            return STATUS::kOk;
        }
        return STATUS::kInvalidArgument;
    }

    const GUID* GetClassID() const override { return &CLSID_PLUGINCLASSFACTORIES; }
};

struct RegisteredClass {
    GUID classId;
    IRegistrar::Creator creator;
};

/// What the host's class factory makes for the rest of the plug-in, in the
/// order of registration.
constexpr RegisteredClass kRegisteredClasses[] = {
    {RENDERING::CLSID_CONNECTIONSPACEDELEGATEFACTORY,
     RENDERING::CreateConnectionSpaceDelegateFactory},
    {PS::CLSID_PSFONTBUILDERFACTORY, PS::CreatePSFontBuilderFactory},
    {GRAPHICS::CLSID_POSTSCRIPTCONNECTIONSPACE, PS::CreatePostScriptConnectionSpace},
};

Status InitPlugin(const IDir* /*pluginFolder*/, IClassFactory* factory) {
    if (factory == nullptr) {
        return STATUS::kInvalidArgument;
    }
    const auto registrar = CreateObject<IRegistrar>(factory, CLSID_REGISTRAR);
    if (!registrar) {
        LogError("src/plugin") << "Could not find a registrar.";
        return STATUS::kInvalidArgument;
    }
    for (const RegisteredClass& entry : kRegisteredClasses) {
        if (!CreateObject<IObject>(factory, entry.classId)) {
            registrar->RegisterClass(entry.classId, entry.creator);
        }
    }
    return STATUS::kOk;
}

void PrintUnknownClass(const GUID& id) {
    std::printf("%s: No interface for 0x%X-0x%X-0x%X-%d-%d-%d-%d-%d-%d-%d-%d\n",
                "CreateClassFactory", id.Data1, id.Data2, id.Data3, id.Data4[0], id.Data4[1],
                id.Data4[2], id.Data4[3], id.Data4[4], id.Data4[5], id.Data4[6], id.Data4[7]);
}

}  // namespace
}  // namespace VANTIX::COREREGISTRY

using namespace VANTIX;

extern "C" {

[[gnu::visibility("default")]] Status Init(const COREREGISTRY::IDir* pluginFolder,
                                           IClassFactory* factory) {
    return COREREGISTRY::InitPlugin(pluginFolder, factory);
}

[[gnu::visibility("default")]] Status DeInit() {
    return STATUS::kOk;
}

[[gnu::visibility("default")]] Status GetClassObject(const GUID& classId, void* /*reserved*/,
                                                     IObject** out, IClassFactory* factory) {
    if (out == nullptr) {
        return STATUS::kInvalidArgument;
    }
    *out = nullptr;
    if (classId == COREREGISTRY::CLSID_PLUGINCLASSFACTORIES) {
        *out = new COREREGISTRY::PluginClassFactories;
    } else if (classId == COREREGISTRY::CLSID_POSTSCRIPTCOMPOSITEGRAPHIC) {
        *out = COREREGISTRY::CreateICompositeGraphic(factory);
    } else if (classId == GRAPHICS::CLSID_POSTSCRIPTEXPORTER) {
        *out = GRAPHICS::CreateIGraphicExporter(factory);
    } else {
        COREREGISTRY::PrintUnknownClass(classId);
    }
    return *out == nullptr ? STATUS::kOutOfMemory : STATUS::kOk;
}
}
