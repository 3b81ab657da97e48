// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <vector>

#include "core/io/idataprovider.h"
#include "core/io/ioutputfilterstack.h"
#include "core/object/tobject.h"

namespace VANTIX::TEST {

/// A filter stack that notes its filters and hands data on unchanged.
class FakeFilterStack : public TObject<IO::IOutputFilterStack> {
public:
    std::vector<std::int32_t> filters;
    int filteredWrites = 0;
    int ends = 0;

    Status Attach(IO::IDataProvider* provider) override {
        mProvider = TInterfacePtr<IO::IDataProvider>(provider);
        return STATUS::kOk;
    }

    Status PushFilter(std::int32_t code) override {
        filters.push_back(code);
        return STATUS::kOk;
    }

    Status PopFilter() override {
        if (filters.empty()) {
            return STATUS::kStackUnderflow;
        }
        filters.pop_back();
        return STATUS::kOk;
    }

    std::int32_t GetFilterCount() const override {
        return static_cast<std::int32_t>(filters.size());
    }

    std::int32_t GetFilter(std::int32_t index) const override {
        return filters.at(static_cast<std::size_t>(index));
    }

    const char* GetFilterName(std::int32_t index) const override {
        switch (GetFilter(index)) {
            case IO::FILTER::kRunLength:
                return "/RunLengthDecode";
            case IO::FILTER::kFlate:
                return "/FlateDecode";
            case IO::FILTER::kAscii85:
                return "/ASCII85Decode";
            default:
                return "";
        }
    }

    Status Write(const void* data, std::int32_t length) override {
        return mProvider ? mProvider->Write(data, static_cast<std::size_t>(length))
                         : STATUS::kNoProvider;
    }

    Status WriteFilteredData(const void* data, std::int32_t length) override {
        ++filteredWrites;
        return Write(data, length);
    }

    Status EndFilteredData() override {
        ++ends;
        return STATUS::kOk;
    }

private:
    TInterfacePtr<IO::IDataProvider> mProvider;
};

}  // namespace VANTIX::TEST
