// SPDX-License-Identifier: MIT
#include "host/io/outputfilterstack.h"

#include <algorithm>
#include <array>
#include <utility>

#include "host/io/filters/ascii85.h"
#include "host/io/filters/flate.h"
#include "host/io/filters/runlength.h"

namespace VANTIX::HOST {

namespace {

using EncoderMaker = std::unique_ptr<OutputFilter> (*)(ByteSink& next);

template <class T>
std::unique_ptr<OutputFilter> MakeEncoder(ByteSink& next) {
    return std::make_unique<T>(next);
}

}  // namespace

struct OutputFilterStack::Kind {
    std::int32_t code;
    const char* name;
    EncoderMaker make;
};

OutputFilterStack::OutputFilterStack() = default;

OutputFilterStack::~OutputFilterStack() {
    // Every encoder stands on the one before it.
    while (!mFilters.empty()) {
        mFilters.pop_back();
    }
}

const OutputFilterStack::Kind* OutputFilterStack::FindKind(std::int32_t code) {
    static constexpr std::array<Kind, 6> kKinds{{
        {IO::FILTER::kAscii85, "/ASCII85Decode", MakeEncoder<Ascii85Filter>},
        {IO::FILTER::kFlate, "/FlateDecode", MakeEncoder<FlateFilter>},
        {IO::FILTER::kRunLength, "/RunLengthDecode", MakeEncoder<RunLengthFilter>},
        {IO::FILTER::kCount, "", nullptr},
        {IO::FILTER::kLabBytes, "", nullptr},
        {IO::FILTER::kLabPacked12, "", nullptr},
    }};
    const auto* found = std::find_if(kKinds.begin(), kKinds.end(),
                                     [code](const Kind& kind) { return kind.code == code; });
    return found == kKinds.end() ? nullptr : found;
}

const OutputFilterStack::Kind* OutputFilterStack::KindAt(std::int32_t index) const {
    const bool inside = index >= 0 && index < GetFilterCount();
    return inside ? mFilters[static_cast<std::size_t>(index)].kind : nullptr;
}

ByteSink& OutputFilterStack::NewestSink() {
    for (std::size_t i = mFilters.size(); i-- > 0;) {
        if (mFilters[i].encoder) {
            return *mFilters[i].encoder;
        }
    }
    return mSink;
}

Status OutputFilterStack::ProviderSink::Put(std::span<const std::uint8_t> bytes) {
    return provider ? provider->Write(bytes.data(), bytes.size()) : STATUS::kNoProvider;
}

Status OutputFilterStack::Attach(IO::IDataProvider* provider) {
    if (provider == nullptr) {
        return STATUS::kInvalidArgument;
    }
    const Status status = EndFilteredData();
    mSink.provider = TInterfacePtr<IO::IDataProvider>(provider);
    return status;
}

Status OutputFilterStack::PushFilter(std::int32_t code) {
    const Kind* kind = FindKind(code);
    if (kind == nullptr || mFilters.size() >= kMaxFilters) {
        return STATUS::kNotSupported;
    }
    mFilters.push_back({kind, kind->make == nullptr ? nullptr : kind->make(NewestSink())});
    return STATUS::kOk;
}

Status OutputFilterStack::PopFilter() {
    if (mFilters.empty()) {
        return STATUS::kStackUnderflow;
    }
    OutputFilter* encoder = mFilters.back().encoder.get();
    const Status status = encoder != nullptr && mPending ? encoder->End() : STATUS::kOk;
    mFilters.pop_back();
    return status;
}

std::int32_t OutputFilterStack::GetFilterCount() const {
    return static_cast<std::int32_t>(mFilters.size());
}

std::int32_t OutputFilterStack::GetFilter(std::int32_t index) const {
    const Kind* kind = KindAt(index);
    return kind == nullptr ? 0 : kind->code;
}

const char* OutputFilterStack::GetFilterName(std::int32_t index) const {
    const Kind* kind = KindAt(index);
    return kind == nullptr ? "" : kind->name;
}

Status OutputFilterStack::Put(ByteSink& sink, const void* data, std::int32_t length) const {
    if (!mSink.provider) {
        return STATUS::kNoProvider;
    }
    if (length < 0 || (data == nullptr && length > 0)) {
        return STATUS::kInvalidArgument;
    }
    if (length == 0) {
        return STATUS::kOk;
    }
    return sink.Put({static_cast<const std::uint8_t*>(data), static_cast<std::size_t>(length)});
}

Status OutputFilterStack::Write(const void* data, std::int32_t length) {
    return Put(mSink, data, length);
}

Status OutputFilterStack::WriteFilteredData(const void* data, std::int32_t length) {
    mPending = mPending || (mSink.provider && data != nullptr && length > 0);
    return Put(NewestSink(), data, length);
}

Status OutputFilterStack::EndFilteredData() {
    Status status = STATUS::kOk;
    if (!std::exchange(mPending, false)) {
        return status;
    }
    for (std::size_t i = mFilters.size(); i-- > 0;) {
        OutputFilter* encoder = mFilters[i].encoder.get();
        const Status ended = encoder == nullptr ? STATUS::kOk : encoder->End();
        status = status == STATUS::kOk ? ended : status;
    }
    return status;
}

}  // namespace VANTIX::HOST
