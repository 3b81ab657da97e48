// SPDX-License-Identifier: MIT
#include "host/object/pluginlibrary.h"

#include <dlfcn.h>

#include <filesystem>
#include <system_error>
#include <vector>

#include "core/object/tobject.h"

namespace VANTIX::HOST {

namespace {

namespace fs = std::filesystem;

/// A list of identifiers, and the registry that holds it.
class IdList : public TObject<COREREGISTRY::IGuidList> {
public:
    std::vector<GUID> ids;

    Status Add(const GUID& id) override {
        ids.push_back(id);
        return STATUS::kOk;
    }
};

class IdRegistry : public TObject<COREREGISTRY::IFilterRegistry> {
public:
    COREREGISTRY::IGuidList* GetList() override { return mList.Get(); }

    [[nodiscard]] const std::vector<GUID>& Ids() const { return mList->ids; }

private:
    TInterfacePtr<IdList> mList = MakeObject<IdList>();
};

std::string LastLoaderError() {
    const char* text = dlerror();
    return text == nullptr ? "unknown error" : text;
}

template <class Function>
bool FindSymbol(void* library, const char* name, Function& function) {
    // POSIX lets the address of a symbol stand for a function.
    function = reinterpret_cast<Function>(dlsym(library, name));
    return function != nullptr;
}

}  // namespace

std::unique_ptr<PluginLibrary> PluginLibrary::Load(const std::string& path, IClassFactory& factory,
                                                   std::string& error) {
    std::error_code problem;
    if (!fs::is_regular_file(path, problem)) {
        error = "plug-in '" + path + "' does not exist";
        return nullptr;
    }
    // A name without a slash would be searched for in the system's library folders.
    const std::string file = fs::absolute(path, problem).string();
    void* library = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) {
        error = "plug-in '" + path + "' cannot be loaded: " + LastLoaderError();
        return nullptr;
    }
    std::unique_ptr<PluginLibrary> plugin(new PluginLibrary);
    const char* missing = nullptr;
    if (!FindSymbol(library, "Init", plugin->mInit)) {
        missing = "Init";
    } else if (!FindSymbol(library, "GetClassObject", plugin->mGetClassObject)) {
        missing = "GetClassObject";
    } else if (!FindSymbol(library, "DeInit", plugin->mDeInit)) {
        missing = "DeInit";
    }
    if (missing != nullptr) {
        error = "'" + path + "' is not a plug-in: it has no function " + missing;
        plugin = nullptr;
        dlclose(library);
        return nullptr;
    }
    const Status status = plugin->mInit(nullptr, &factory);
    if (status != STATUS::kOk) {
        error = "plug-in '" + path + "' refused to start with status " + std::to_string(status);
        return nullptr;
    }
    return plugin;
}

PluginLibrary::~PluginLibrary() {
    if (mDeInit != nullptr) {
        mDeInit();
    }
}

TInterfacePtr<IObject> PluginLibrary::Create(const GUID& classId, IClassFactory& factory) const {
    IObject* object = nullptr;
    if (mGetClassObject(classId, nullptr, &object, &factory) != STATUS::kOk) {
        return nullptr;
    }
    return TInterfacePtr<IObject>::Adopt(object);
}

TInterfacePtr<IObject> PluginLibrary::CreateFirst(const GUID& category,
                                                  IClassFactory& factory) const {
    const TInterfacePtr<IObject> table = Create(COREREGISTRY::CLSID_PLUGINCLASSFACTORIES, factory);
    if (!table) {
        return nullptr;
    }
    const auto registry = MakeObject<IdRegistry>();
    auto* classes = static_cast<COREREGISTRY::IPluginClassFactories*>(table.Get());
    if (classes->GetFilterClasses(category, registry.Get()) != STATUS::kOk ||
        registry->Ids().empty()) {
        return nullptr;
    }
    return Create(registry->Ids().front(), factory);
}

std::string FindPluginFile() {
    Dl_info place{};
    if (dladdr(reinterpret_cast<const void*>(&FindPluginFile), &place) == 0 ||
        place.dli_fname == nullptr) {
        return {};
    }
    std::error_code problem;
    const fs::path library = fs::canonical(place.dli_fname, problem);
    if (problem) {
        return {};
    }
    const fs::path folder = library.parent_path();
    for (const char* candidate :
         {"Norvane.plugin", "../lib/Norvane.plugin", "norvane/Norvane.plugin"}) {
        const fs::path file = (folder / candidate).lexically_normal();
        if (fs::is_regular_file(file, problem)) {
            return file.string();
        }
    }
    return {};
}

}  // namespace VANTIX::HOST
