// SPDX-License-Identifier: MIT
#include <vector>

#include "core/io/ioutputfilterstack.h"
#include "postscriptdatastream/ipostscriptdatastream.h"
#include "support.h"

namespace VANTIX::BENCH {
namespace {

using StreamPtr = TInterfacePtr<PS::IPostScriptDataStream>;

StreamPtr OpenStream() {
    const auto out = OpenNullProvider();
    return StreamPtr::Adopt(PS::CreatePostscriptDataStream(out.Get()));
}

void StreamReals(benchmark::State& state) {
    const auto stream = OpenStream();
    double value = 0.1;
    const AllocationMeter meter(state);
    for ([[maybe_unused]] auto _ : state) {
        *stream << value;
        value = value < 1e5 ? value * 1.37 : 0.1;
    }
}

BENCHMARK(StreamReals);

void StreamIntegers(benchmark::State& state) {
    const auto stream = OpenStream();
    std::int32_t value = 1;
    const AllocationMeter meter(state);
    for ([[maybe_unused]] auto _ : state) {
        *stream << value;
        value = (value * 7 + 3) % 100003;
    }
}

BENCHMARK(StreamIntegers);

void StreamHexBytes(benchmark::State& state) {
    const auto stream = OpenStream();
    stream->SetHexMode();
    const std::vector<std::uint8_t> bytes(4096, 0xA5);
    const AllocationMeter meter(state);
    for ([[maybe_unused]] auto _ : state) {
        stream->WriteBytes(bytes.data(), static_cast<std::int32_t>(bytes.size()));
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytes.size()));
}

BENCHMARK(StreamHexBytes);

/// Data that compresses about as image lines do.
std::vector<std::uint8_t> ImageLikeBytes() {
    std::vector<std::uint8_t> bytes(65536);
    std::uint32_t chance = 1;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        chance = chance * 1664525U + 1013904223U;
        bytes[i] = static_cast<std::uint8_t>((i / 64) + (chance >> 30U));
    }
    return bytes;
}

void Filters(benchmark::State& state, const std::vector<std::int32_t>& codes) {
    HOST::Host host;
    const auto stack =
        CreateObject<IO::IOutputFilterStack>(&host.Factory(), IO::IID_IOUTPUTFILTERSTACK);
    if (!stack) {
        state.SkipWithError("the host has no filter stack");
        return;
    }
    stack->Attach(OpenNullProvider().Get());
    for (const std::int32_t code : codes) {
        stack->PushFilter(code);
    }
    const std::vector<std::uint8_t> bytes = ImageLikeBytes();
    for ([[maybe_unused]] auto _ : state) {
        stack->WriteFilteredData(bytes.data(), static_cast<std::int32_t>(bytes.size()));
        stack->EndFilteredData();
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytes.size()));
}

BENCHMARK_CAPTURE(Filters, Ascii85, {IO::FILTER::kAscii85});
BENCHMARK_CAPTURE(Filters, RunLengthAscii85, {IO::FILTER::kAscii85, IO::FILTER::kRunLength});
BENCHMARK_CAPTURE(Filters, FlateAscii85, {IO::FILTER::kAscii85, IO::FILTER::kFlate});

}  // namespace
}  // namespace VANTIX::BENCH
