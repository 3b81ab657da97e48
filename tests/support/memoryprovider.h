// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>

#include "core/io/idataprovider.h"
#include "core/object/tobject.h"

namespace VANTIX::TEST {

/// A packet data provider over a text in memory. It answers the query for
/// `IID_IPACKETDATAPROVIDER`, so that a data stream finds its packet interface.
class MemoryProvider : public TObject<IO::IPacketDataProvider> {
public:
    MemoryProvider() = default;

    explicit MemoryProvider(std::string text) : contents(std::move(text)) {}

    std::string contents;
    std::size_t position = 0;
    int writes = 0;
    int flushes = 0;
    /// What `Write` answers; a failure leaves the contents alone.
    Status writeStatus = STATUS::kOk;

    /// What was written since the last call.
    std::string Take() {
        std::string taken;
        taken.swap(contents);
        position = 0;
        writes = 0;
        return taken;
    }

    Status QueryInterface(const GUID& id, void** out) override {
        if (id == IO::IID_IPACKETDATAPROVIDER) {
            *out = static_cast<IObject*>(this);
            return STATUS::kOk;
        }
        return TObject::QueryInterface(id, out);
    }

    void InitHandleBased(std::int32_t /*handle*/) override {}

    Status InitReadOnlyMem(const void* /*data*/, std::int32_t /*size*/) override {
        return STATUS::kNotImplemented;
    }

    Status InitURIBased(IO::IURI& /*uri*/, std::int32_t /*mode*/,
                        IO::IReporter* /*reporter*/) override {
        return STATUS::kNotImplemented;
    }

    Status Write(const void* buffer, std::size_t length) override {
        ++writes;
        if (writeStatus == STATUS::kOk) {
            contents.resize(std::max(contents.size(), position + length));
            contents.replace(position, length, static_cast<const char*>(buffer), length);
            position += length;
        }
        return writeStatus;
    }

    Status Read(void* buffer, std::int32_t* length) override {
        const std::size_t left = contents.size() - std::min(position, contents.size());
        const std::size_t count = std::min(left, static_cast<std::size_t>(*length));
        std::copy_n(contents.data() + contents.size() - left, count, static_cast<char*>(buffer));
        position += count;
        *length = static_cast<std::int32_t>(count);
        return STATUS::kOk;
    }

    std::int32_t GetSize() override { return static_cast<std::int32_t>(contents.size()); }

    Status SetSize(std::int64_t size) override {
        contents.resize(static_cast<std::size_t>(size));
        return STATUS::kOk;
    }

    Status SetPosition(std::int64_t offset, IO::Offset origin) override {
        const std::size_t bases[] = {0, contents.size(), position};
        const auto target =
            static_cast<std::int64_t>(bases[static_cast<std::size_t>(origin)]) + offset;
        if (target < 0) {
            return STATUS::kBadPosition;
        }
        position = static_cast<std::size_t>(target);
        return STATUS::kOk;
    }

    std::int32_t GetPosition() override { return static_cast<std::int32_t>(position); }

    std::uint32_t GetStateCode() override { return 0; }

    bool HasStateCodeOne() override { return false; }

    std::uint32_t SetStateCode(std::uint32_t code) override { return code; }

    bool HasMoreData() override { return position < contents.size(); }

    Status Flush() override {
        ++flushes;
        return STATUS::kOk;
    }

    bool GetFlushOnClose() override { return true; }

    void SetFlushOnClose(bool /*flush*/) override {}

    Status Init() override { return STATUS::kOk; }

    Status Open(const char* /*mode*/) override { return STATUS::kOk; }

    Status Close() override { return STATUS::kOk; }
};

}  // namespace VANTIX::TEST
