// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <vector>

#include "core/io/ioutputfilterstack.h"
#include "core/object/tobject.h"
#include "host/export.h"
#include "host/io/filters/outputfilter.h"

namespace VANTIX::HOST {

/// The encoders of one stream. The counting filter and the filters for Lab samples hand data on
/// unchanged: the host's Lab rasters already hold what PostScript wants.
class NORVANE_HOST_API OutputFilterStack : public TObject<IO::IOutputFilterStack> {
public:
    OutputFilterStack();
    ~OutputFilterStack() override;

    /// Ends what goes to an earlier provider first. Null is refused with `kInvalidArgument`.
    Status Attach(IO::IDataProvider* provider) override;
    /// `kNotSupported` for an unknown code, and beyond `kMaxFilters`.
    Status PushFilter(std::int32_t code) override;
    /// What the newest filter holds back is written first. `kStackUnderflow` without a filter.
    Status PopFilter() override;
    std::int32_t GetFilterCount() const override;
    /// 0 for an index that is out of range.
    std::int32_t GetFilter(std::int32_t index) const override;
    const char* GetFilterName(std::int32_t index) const override;
    /// `kNoProvider` before `Attach`.
    Status Write(const void* data, std::int32_t length) override;
    Status WriteFilteredData(const void* data, std::int32_t length) override;
    Status EndFilteredData() override;

    static constexpr std::size_t kMaxFilters = 16;

private:
    struct Kind;

    struct ProviderSink : ByteSink {
        Status Put(std::span<const std::uint8_t> bytes) override;

        TInterfacePtr<IO::IDataProvider> provider;
    };

    struct Entry {
        const Kind* kind;
        std::unique_ptr<OutputFilter> encoder;  // null: data pass unchanged
    };

    static const Kind* FindKind(std::int32_t code);
    Status Put(ByteSink& sink, const void* data, std::int32_t length) const;
    [[nodiscard]] const Kind* KindAt(std::int32_t index) const;
    ByteSink& NewestSink();

    ProviderSink mSink;
    std::vector<Entry> mFilters;
    bool mPending = false;  // data came since the last end
};

}  // namespace VANTIX::HOST
