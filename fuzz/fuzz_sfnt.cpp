// SPDX-License-Identifier: MIT
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "core/object/tobject.h"
#include "sfntbuilder.h"
#include "sfntbuilder_bytes.h"
#include "wpacketdataprovider.h"

namespace VANTIX::FUZZ {
namespace {

class Data : public TObject<GRAPHICS::IFontData> {
public:
    explicit Data(std::vector<std::uint8_t> bytes) : mBytes(std::move(bytes)) {}

    const std::uint8_t* GetData() const override { return mBytes.data(); }

    std::int32_t GetSize() const override { return static_cast<std::int32_t>(mBytes.size()); }

private:
    std::vector<std::uint8_t> mBytes;
};

}  // namespace
}  // namespace VANTIX::FUZZ

/// Reads any bytes as an sfnt and writes its strings. The number of glyphs, the format of their
/// locations and a number of kilobytes that follow the data come first.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace VANTIX;
    constexpr std::size_t kHead = 4;
    if (size < kHead) {
        return 0;
    }
    const std::uint32_t glyphs = PS::ReadU16(data);
    std::vector<std::uint8_t> bytes(data + kHead, data + size);
    bytes.resize(bytes.size() + std::size_t{data[3]} * 1024);
    const auto builder = MakeObject<PS::SFNTStringsBuilder>();
    if (!builder->Init(MakeObject<FUZZ::Data>(std::move(bytes)).Get(), glyphs, data[2])) {
        return 0;
    }
    const auto packet =
        TInterfacePtr<IO::IPacketDataProvider>::Adopt(IO::CreateWPacketDataProvider());
    const auto stream = TInterfacePtr<PS::IPostScriptDataStream>::Adopt(
        PS::CreatePostscriptDataStream(packet.Get()));
    builder->Buid(stream.Get());
    std::uint32_t length = 0;
    for (std::uint32_t i = 0; i < std::min<std::uint32_t>(glyphs, 8); ++i) {
        builder->SetGlyphLocation(i, builder->GetGlyphLocation(i, length) + length);
    }
    return 0;
}
