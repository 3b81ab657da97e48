// SPDX-License-Identifier: MIT
#include "postscriptexporter.h"

#include <array>
#include <cstdint>

#include "core/libsupport/abstractio/libutils.h"
#include "core/libsupport/vlogger/logmessage.h"
#include "platform/randomsource.h"
#include "postscriptconnectionspace/postscriptconnectionspace.h"
#include "postscriptdocument.h"

namespace VANTIX::GRAPHICS {
namespace {

constexpr const char* kModule = "src/postscriptexporter";

/// What the host shows and asks of the file type: type codes, extensions, name.
void FillFileTypeDictionary(IO::IDictionary& dictionary) {
    // A count of two and the type code in both byte orders; a count of one and the extension.
    constexpr std::array<std::uint8_t, 12> kTypes{2,   0,   0,   0,   'P', 'S',
                                                  ' ', ' ', ' ', ' ', 'S', 'P'};
    constexpr std::array<std::uint8_t, 4> kExtensions{1, 'P', 'S', 0};
    dictionary.SetBinary(1, kTypes.data(), kTypes.size());
    dictionary.SetBinary(2, kExtensions.data(), kExtensions.size());
    dictionary.SetWideString(3, u"PS Format");
}

/// The space of a job as the plug-in made it (borrowed), or null.
PS::PostScriptConnectionSpace* DrawingOf(const TInterfacePtr<IDelegateConnectionSpace>& job) {
    return FindInterface<PS::PostScriptConnectionSpace>(job.Get(), CLSID_POSTSCRIPTCONNECTIONSPACE);
}

}  // namespace

IObject* CreateIGraphicExporter(IClassFactory* factory) {
    if (factory == nullptr) {
        LogError(kModule) << "cannot instantiate this object without a valid core registry.";
        return nullptr;
    }
    auto exporter = MakeObject<PostscriptExporter>();
    TInterfacePtr<IO::IDictionary> dictionary;
    if (CreatePersistentDictionary(factory, dictionary) == STATUS::kOk && dictionary) {
        FillFileTypeDictionary(*dictionary);
        exporter->Aggregate(dictionary.Get(), IO::IID_IDICTIONARY);
    } else {
        LogError(kModule) << "Could no create dictionary.";
    }
    exporter->SetClassFactory(factory);
    return exporter.Detach();
}

Status PostscriptExporter::SetClassFactory(IObject* factory) {
    Aggregate(factory, IID_CLASSFACTORY);
    return STATUS::kOk;
}

IConnectionSpace* PostscriptExporter::Begin(IO::IDataProvider& stream,
                                            const IO::IDictionary* options) {
    auto* factory = FindInterface<IClassFactory>(this, IID_CLASSFACTORY);
    if (factory == nullptr) {
        LogError(kModule) << "I require a valid class factory.";
        return nullptr;
    }
    const auto lock = mLock.Enter();
    if (!lock.owns_lock()) {
        LogError(kModule) << "Could not grab the mutex";
        return nullptr;
    }
    return BeginLocked(stream, options, factory);
}

IConnectionSpace* PostscriptExporter::BeginLocked(IO::IDataProvider& stream,
                                                  const IO::IDictionary* options,
                                                  IClassFactory* factory) {
    PLATFORM::AdoptRunEnvironment(factory);
    const auto document = TInterfacePtr<PS::IPostScriptDocument>::Adopt(
        PS::CreatePostscriptDocument(stream, factory, options));
    if (!document) {
        LogError(kModule) << "Could not create an Postscript document.";
        return nullptr;
    }
    document->WriteHeader();

    const Job space =
        CreateObject<IDelegateConnectionSpace>(factory, CLSID_POSTSCRIPTCONNECTIONSPACE);
    const bool ready = space && space->Init(&stream, factory, options);
    auto* base =
        ready ? FindInterface<IConnectionSpace>(space.Get(), IID_IBASECONNECTIONSPACE) : nullptr;
    if (base == nullptr) {
        LogError(kModule) << "CreatePostScriptConnectionSpace returned NULL.";
        return nullptr;
    }
    space->Aggregate(document.Get(), PS::IID_IPOSTSCRIPTDOCUMENT);
    mJobs.push_back(space);
    return base;
}

Status PostscriptExporter::End() {
    const auto lock = mLock.Enter();
    if (!lock.owns_lock()) {
        LogError(kModule) << "Could not grab the mutex";
        return STATUS::kOk;
    }
    if (mJobs.empty()) {
        return STATUS::kOk;
    }
    const Job space = std::move(mJobs.back());
    mJobs.pop_back();
    auto* document =
        FindInterface<PS::IPostScriptDocument>(space.Get(), PS::IID_IPOSTSCRIPTDOCUMENT);
    if (document == nullptr) {
        LogError(kModule) << "No document was aggregated to the target connection space. Bad!";
        return STATUS::kOk;
    }
    if (auto* drawing = DrawingOf(space)) {
        drawing->CloseGroups();
    }
    document->WriteTrailer();
    if (!document->FinishWritingDocument()) {
        LogError(kModule) << "FinishWritingDocument failed.";
    }
    return STATUS::kOk;
}

PostscriptExporter::~PostscriptExporter() {
    // Without the lock somebody still draws or ends: their job is better released than kept
    // forever.
    const auto lock = mLock.Enter();
    for (const Job& job : mJobs) {
        if (auto* drawing = DrawingOf(job)) {
            drawing->ForgetSoftMasks();
        }
    }
    mJobs.clear();
}

}  // namespace VANTIX::GRAPHICS
