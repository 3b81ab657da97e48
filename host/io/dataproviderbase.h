// SPDX-License-Identifier: MIT
#pragma once

#include "core/io/idataprovider.h"
#include "core/object/tobject.h"
#include "host/export.h"

namespace VANTIX::HOST {

/// The operations of a data provider that none of the host's providers has a use for: the
/// initialisers and `SetSize` report `kNotImplemented`, the state code is stored.
class NORVANE_HOST_API DataProviderBase : public TObject<IO::IDataProvider> {
public:
    void InitHandleBased(std::int32_t handle) override;
    Status InitReadOnlyMem(const void* data, std::int32_t size) override;
    Status InitURIBased(IO::IURI& uri, std::int32_t mode, IO::IReporter* reporter) override;
    Status SetSize(std::int64_t size) override;
    std::uint32_t GetStateCode() override;
    bool HasStateCodeOne() override;
    std::uint32_t SetStateCode(std::uint32_t code) override;
    bool HasMoreData() override;
    bool GetFlushOnClose() override;
    void SetFlushOnClose(bool flush) override;

private:
    std::uint32_t mStateCode = 2;
    bool mFlushOnClose = true;
};

}  // namespace VANTIX::HOST
