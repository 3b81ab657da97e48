// SPDX-License-Identifier: MIT
#include "postscriptcompositegraphic.h"

#include <array>
#include <cstdint>

#include "core/libsupport/abstractio/libutils.h"
#include "core/libsupport/vlogger/logmessage.h"

namespace VANTIX::COREREGISTRY {
namespace {

constexpr const char* kModule = "src/postscriptcompositegraphic";

/// Aggregates what the host shows of the filter: type code, extension, name.
Status CreateDictionaryWithFilterInfoKeys(IClassFactory* factory, IObject& graphic) {
    TInterfacePtr<IO::IDictionary> dictionary;
    if (CreatePersistentDictionary(factory, dictionary) != STATUS::kOk || !dictionary) {
        LogError(kModule)
            << "Could not create a dictionary or find one to give back filter information.";
        return STATUS::kNoDictionary;
    }
    // A count of one each, before the type code and before the extension.
    constexpr std::array<std::uint8_t, 8> kTypes{1, 0, 0, 0, 'P', 'S', ' ', ' '};
    constexpr std::array<std::uint8_t, 4> kExtensions{1, 'P', 'S', 0};
    dictionary->SetBinary(1, kTypes.data(), kTypes.size());
    dictionary->SetBinary(2, kExtensions.data(), kExtensions.size());
    dictionary->SetWideString(3, u"PS Connection Space");
    return graphic.Aggregate(dictionary.Get(), IO::IID_IDICTIONARY);
}

}  // namespace

IObject* CreateICompositeGraphic(IClassFactory* factory) {
    if (factory == nullptr) {
        LogError(kModule) << "cannot instantiate this object without a valid core registry.";
        return nullptr;
    }
    auto graphic = MakeObject<PostscriptCompositeGraphic>();
    const Status status = CreateDictionaryWithFilterInfoKeys(factory, *graphic);
    if (status != STATUS::kOk) {
        LogError(kModule) << "CreateDictionaryWithFilterInfoKeys failed. Error = " << status;
        return nullptr;
    }
    graphic->Aggregate(factory, IID_CLASSFACTORY);
    return graphic.Detach();
}

Status PostscriptCompositeGraphic::AdaptTile(ITile* inputTile, ITile* outputTile) {
    if (inputTile == nullptr && outputTile == nullptr) {
        LogError(kModule) << "Need either a inputTile or outputTile" << STATUS::kNoTile;
        return STATUS::kNoTile;
    }
    return STATUS::kOk;
}

Status PostscriptCompositeGraphic::Init(IClassFactory& /*factory*/, IO::IDataProvider& /*stream*/,
                                        const IO::IDictionary* /*options*/) {
    LogError(kModule) << "Postscript import not supported";
    return STATUS::kNotSupported;
}

const GUID* PostscriptCompositeGraphic::GetClassID() const {
    return &CLSID_COMPOSITEGRAPHICCLASS;
}

}  // namespace VANTIX::COREREGISTRY
