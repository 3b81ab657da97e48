// SPDX-License-Identifier: MIT
#pragma once

#include <list>

#include "core/graphics/iconnectionspace.h"
#include "core/graphics/igraphicexporter.h"
#include "core/object/tobject.h"
#include "platform/criticalsection.h"

namespace VANTIX::GRAPHICS {

/// Class of the PostScript exporter.
inline constexpr GUID CLSID_POSTSCRIPTEXPORTER = "26A7F9E5-E7E0-4B14-AC27-79483C2E02D3"_guid;

/// Begins and ends PostScript jobs. It owns the connection space of each job that is open, which
/// owns the job's document; the class factory is aggregated under `IID_CLASSFACTORY`. `Begin`,
/// `End` and the destructor exclude one another; drawing is not locked.
class PostscriptExporter : public TObject<IGraphicExporter> {
public:
    Status SetClassFactory(IObject* factory) override;
    /// Writes header and prolog to `stream` before the connection space is made. Logs what keeps it
    /// from beginning.
    IConnectionSpace* Begin(IO::IDataProvider& stream, const IO::IDictionary* options) override;
    /// Writes the trailer of the newest job and releases it. Always 0: failures are logged.
    Status End() override;

    /// Releases the jobs that are still open, without trailers, even when it cannot get the lock.
    ~PostscriptExporter() override;

private:
    using Job = TInterfacePtr<IDelegateConnectionSpace>;

    IConnectionSpace* BeginLocked(IO::IDataProvider& stream, const IO::IDictionary* options,
                                  IClassFactory* factory);

    PLATFORM::CriticalSection mLock;
    /// In the order in which they were begun.
    std::list<Job> mJobs;
};

/// A new exporter on `factory` with its file-type dictionary aggregated under `IID_IDICTIONARY`;
/// null (logged) without a factory.
IObject* CreateIGraphicExporter(IClassFactory* factory);

}  // namespace VANTIX::GRAPHICS
