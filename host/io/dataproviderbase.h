// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>

#include "core/io/idataprovider.h"
#include "core/object/tobject.h"
#include "host/export.h"

namespace VANTIX::HOST {

/// A size or position as the interface tells it: at most 2^31 - 1.
inline std::int32_t ReportedOffset(std::int64_t offset) {
    return static_cast<std::int32_t>(
        std::min<std::int64_t>(offset, std::numeric_limits<std::int32_t>::max()));
}

/// Where `offset` from `origin` leads in a stream of `size` bytes that stands at `position`; -1
/// when that is no position.
inline std::int64_t ResolveOffset(std::int64_t offset, IO::Offset origin, std::int64_t position,
                                  std::int64_t size) {
    constexpr std::int64_t kMaxOffset = std::int64_t{1} << 60U;
    std::int64_t base = 0;
    switch (origin) {
        case IO::Offset::kBegin:
            break;
        case IO::Offset::kCurrent:
            base = position;
            break;
        case IO::Offset::kEnd:
            base = size;
            break;
        default:
            return -1;
    }
    if (offset < -base || offset > kMaxOffset - base) {
        return -1;
    }
    return base + offset;
}

/// The operations of a data provider that none of the host's providers has a use for: the
/// initialisers and `SetSize` report `kNotImplemented`, the state code is stored. `I` is
/// `IDataProvider` or `IPacketDataProvider`.
template <class I>
class NORVANE_HOST_API BasicDataProvider : public TObject<I> {
public:
    void InitHandleBased(std::int32_t /*handle*/) override {}

    Status InitReadOnlyMem(const void* /*data*/, std::int32_t /*size*/) override {
        return STATUS::kNotImplemented;
    }

    Status InitURIBased(IO::IURI& /*uri*/, std::int32_t /*mode*/,
                        IO::IReporter* /*reporter*/) override {
        return STATUS::kNotImplemented;
    }

    Status SetSize(std::int64_t /*size*/) override { return STATUS::kNotImplemented; }

    std::uint32_t GetStateCode() override { return mStateCode; }

    bool HasStateCodeOne() override { return mStateCode == 1; }

    std::uint32_t SetStateCode(std::uint32_t code) override { return mStateCode = code; }

    bool HasMoreData() override { return this->GetPosition() < this->GetSize(); }

    bool GetFlushOnClose() override { return mFlushOnClose; }

    void SetFlushOnClose(bool flush) override { mFlushOnClose = flush; }

protected:
    BasicDataProvider() = default;

private:
    std::uint32_t mStateCode = 2;
    bool mFlushOnClose = true;
};

using DataProviderBase = BasicDataProvider<IO::IDataProvider>;

}  // namespace VANTIX::HOST
