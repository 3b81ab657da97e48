// SPDX-License-Identifier: MIT
#include "host/graphics/rasters.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <vector>

#include "core/graphics/pluginhelper/rasterhelpers.h"
#include "host/host.h"

namespace VANTIX::HOST {
namespace {

using GRAPHICS::IChannelData;
using GRAPHICS::IChannelDesc;
using GRAPHICS::IRasterComponent;
using Bytes = std::vector<std::uint8_t>;

constexpr std::int32_t kHuge = std::numeric_limits<std::int32_t>::max();

class Rasters : public testing::Test {
protected:
    template <class T>
    TInterfacePtr<T> Make(const GUID& id) {
        return CreateObject<T>(&mHost.Factory(), id);
    }

    TInterfacePtr<IChannelData> Data(std::int32_t width, std::int32_t height, std::int32_t bits,
                                     std::int32_t lineBytes) {
        auto data = Make<IChannelData>(GRAPHICS::CLSID_CHANNELDATA);
        EXPECT_EQ(data->Init(width, height, bits, lineBytes), STATUS::kOk);
        return data;
    }

    TInterfacePtr<IChannelDesc> Channel(FourCC type) {
        auto channel = Make<IChannelDesc>(GRAPHICS::CLSID_CHANNELDESC);
        EXPECT_EQ(channel->Init(type, 0, 8, 2, 2, 1.0F), STATUS::kOk);
        return channel;
    }

    ColorSpacePtr Device(FourCC family) { return mHost.ColorSpaces().DeviceSpace(family); }

    ColorSpacePtr Palette() {
        std::string error;
        return mHost.ColorSpaces().IndexedSpace(Device("cmyk"_cc), 2, Bytes(8), error);
    }

    Host mHost;
};

/// Writes its own calls down, and the number of the line and the plane into the samples.
class CountingSource : public PlaneSource {
public:
    CountingSource(std::vector<std::int32_t>& calls, std::size_t planes)
        : mCalls(calls), mPlanes(planes) {}

    void ReadLine(std::int32_t y, std::uint8_t* const* planes) override {
        mCalls.push_back(y);
        for (std::size_t i = 0; i < mPlanes; ++i) {
            planes[i][0] = static_cast<std::uint8_t>(16 * static_cast<std::size_t>(y) + i);
        }
    }

private:
    std::vector<std::int32_t>& mCalls;
    std::size_t mPlanes;
};

TEST_F(Rasters, ChannelsStartAsZerosAndKeepTheirLines) {
    const auto data = Data(3, 2, 16, 8);
    ASSERT_NE(data->GetLine(1), nullptr);
    EXPECT_EQ(Bytes(data->GetLine(0), data->GetLine(0) + 16), Bytes(16));
    const Bytes line{1, 2, 3, 4, 5, 6, 7, 8};
    EXPECT_EQ(data->SetLine(1, line.data()), STATUS::kOk);
    EXPECT_EQ(data->SetLine(1, data->GetLine(1)), STATUS::kOk);
    EXPECT_EQ(Bytes(data->GetLine(1), data->GetLine(1) + data->GetLineBytes()), line);
    EXPECT_EQ(data->GetLine(0)[7], 0);
    for (const std::int32_t y : {-1, 2, kHuge}) {
        EXPECT_EQ(data->GetLine(y), nullptr);
        EXPECT_EQ(data->SetLine(y, line.data()), STATUS::kInvalidArgument);
    }
    EXPECT_EQ(data->SetLine(0, nullptr), STATUS::kInvalidArgument);
}

TEST_F(Rasters, RefuseSizesOfNoUse) {
    struct {
        std::int32_t width, height, bits, lineBytes;
        Status status;
    } const kSizes[] = {
        {0, 1, 8, 1, STATUS::kInvalidArgument},     {-5, 1, 8, 1, STATUS::kInvalidArgument},
        {1, 0, 8, 1, STATUS::kInvalidArgument},     {1, 1, 3, 1, STATUS::kInvalidArgument},
        {1, 1, 0, 1, STATUS::kInvalidArgument},     {9, 1, 1, 1, STATUS::kInvalidArgument},
        {1, 1, 8, -1, STATUS::kInvalidArgument},    {kHuge, 1, 16, kHuge, STATUS::kInvalidArgument},
        {8, kHuge, 8, kHuge, STATUS::kOutOfMemory},
    };

    for (const auto& size : kSizes) {
        auto data = Make<IChannelData>(GRAPHICS::CLSID_CHANNELDATA);
        EXPECT_EQ(data->Init(size.width, size.height, size.bits, size.lineBytes), size.status)
            << size.width << " x " << size.height << " x " << size.bits;
        EXPECT_EQ(data->GetLine(0), nullptr);
    }
    auto raster = Make<IRasterComponent>(GRAPHICS::CLSID_RASTERCOMPONENT);
    auto* rgb = Device("rgb "_cc).Get();
    EXPECT_EQ(raster->Init(nullptr, 1, 1, 8, 0, 0, 0, 0), STATUS::kInvalidArgument);
    EXPECT_EQ(raster->Init(rgb, 1, 1, 8, 0, 0, 0, 1), STATUS::kInvalidArgument);
    EXPECT_EQ(raster->Init(rgb, 1 << 20, 1 << 20, 8, 0, 0, 0, 0), STATUS::kOutOfMemory);
    EXPECT_EQ(raster->Init(rgb, 1, 1, 8, 0, 0, 0, 0), STATUS::kOk);
    EXPECT_EQ(raster->Init(rgb, 1, 1, 8, 0, 0, 0, 0), STATUS::kInvalidArgument);
}

TEST_F(Rasters, AlphaIsOpaqueWhenNoSampleLacksABit) {
    struct {
        std::int32_t width, bits;
        Bytes line;
        bool isOpaque;
    } const kLines[] = {
        {11, 1, {0xFF, 0xE0}, true}, {11, 1, {0xFF, 0xC0}, false}, {8, 1, {0xFF}, true},
        {3, 2, {0xFC}, true},        {3, 4, {0xFF, 0xEF}, false},  {2, 8, {0xFF, 0xFE}, false},
        {1, 16, {0xFF, 0xFF}, true}, {1, 16, {0xFE, 0xFF}, false},
    };

    for (const auto& [width, bits, line, isOpaque] : kLines) {
        const auto bytes = static_cast<std::int32_t>(line.size());
        const auto data = Data(width, 2, bits, bytes);
        data->SetLine(0, line.data());
        EXPECT_FALSE(data->IsFullyOpaque());
        data->SetLine(1, line.data());
        EXPECT_EQ(data->IsFullyOpaque(), isOpaque) << width << " x " << bits;
    }
}

TEST_F(Rasters, HaveAPrimaryForEachComponentAndOneForIndices) {
    struct {
        ColorSpacePtr space;
        std::uint8_t settings;
        std::int32_t primaries;
    } const kCases[] = {
        {Device("gray"_cc), 0, 1}, {Device("rgb "_cc), 0, 3}, {Device("cmyk"_cc), 0, 4},
        {Palette(), 0, 1},         {Device("cmyk"_cc), 1, 0},
    };

    for (const auto& [space, settings, primaries] : kCases) {
        auto raster = Make<IRasterComponent>(GRAPHICS::CLSID_RASTERCOMPONENT);
        ASSERT_EQ(raster->Init(space.Get(), 5, 2, 4, 0, 0, settings, 0), STATUS::kOk);
        EXPECT_EQ(raster->GetPrimaryCount(), primaries);
        EXPECT_EQ(raster->GetPrimary(primaries), nullptr);
        EXPECT_EQ(raster->GetPrimary(-1), nullptr);
        if (primaries > 0) {
            IChannelDesc* last = raster->GetPrimary(primaries - 1);
            EXPECT_EQ(last->GetBits(), 4);
            EXPECT_EQ(last->GetData()->GetLineBytes(), 3);
        }
    }
}

TEST_F(Rasters, KeepAlphaBeforeSpotsAndRefuseTooManyChannels) {
    auto raster = Make<IRasterComponent>(GRAPHICS::CLSID_RASTERCOMPONENT);
    ASSERT_EQ(raster->Init(Device("gray"_cc).Get(), 2, 2, 8, 0, 0, 0, 0), STATUS::kOk);
    EXPECT_EQ(raster->AddExtra(nullptr), STATUS::kInvalidArgument);
    const auto spot = Channel("SPOT"_cc);
    const auto second = Channel("SPOT"_cc);
    const auto alpha = Channel("LPHA"_cc);
    for (const auto& channel : {spot, second, alpha}) {
        EXPECT_EQ(raster->AddExtra(channel.Get()), STATUS::kOk);
    }
    EXPECT_EQ(raster->GetExtra(0), alpha.Get());
    EXPECT_EQ(raster->GetExtra(1), spot.Get());
    EXPECT_EQ(raster->GetExtra(2), second.Get());
    std::int32_t refused = 0;
    for (int i = 0; i < 1000; ++i) {
        refused += raster->AddExtra(spot.Get()) == STATUS::kOk ? 0 : 1;
    }
    EXPECT_GT(refused, 0);
    EXPECT_EQ(raster->GetExtraCount(), 1003 - refused);
}

TEST_F(Rasters, ReadEveryLineOfTheirSourceOnceForAllPlanes) {
    std::vector<std::int32_t> calls;
    const auto raster =
        MakeRaster({Device("cmyk"_cc), 1, 3, 8}, std::make_unique<CountingSource>(calls, 4));
    ASSERT_TRUE(raster);
    for (std::int32_t y = 0; y < 3; ++y) {
        for (std::int32_t i = 0; i < 4; ++i) {
            const std::uint8_t* line = raster->GetPrimary(i)->GetData()->GetLine(y);
            ASSERT_NE(line, nullptr);
            EXPECT_EQ(line[0], 16 * y + i);
        }
    }
    EXPECT_EQ(calls, (std::vector<std::int32_t>{0, 1, 2}));
    IChannelData* first = raster->GetPrimary(0)->GetData();
    EXPECT_EQ(first->GetLine(3), nullptr);
    EXPECT_EQ(first->GetLine(-1), nullptr);
    EXPECT_EQ(first->GetLine(1)[0], 16);
    EXPECT_EQ(calls, (std::vector<std::int32_t>{0, 1, 2, 0, 1}));
    EXPECT_EQ(first->SetLine(0, first->GetLine(0)), STATUS::kNotSupported);
}

TEST_F(Rasters, TakeAlphaOfTheirSizeFromASourceOfItsOwn) {
    std::vector<std::int32_t> calls;
    const auto raster =
        MakeRaster({Device("rgb "_cc), 1, 2, 8}, std::make_unique<CountingSource>(calls, 3));
    ASSERT_TRUE(raster);
    EXPECT_FALSE(AddAlpha(*raster, 5, std::make_unique<CountingSource>(calls, 1), false));
    EXPECT_FALSE(AddAlpha(*raster, 8, nullptr, false));
    ASSERT_TRUE(AddAlpha(*raster, 1, std::make_unique<CountingSource>(calls, 1), false));
    ASSERT_EQ(raster->GetExtraCount(), 1);
    IChannelDesc* alpha = raster->GetExtra(0);
    EXPECT_EQ(alpha->GetType(), "LPHA"_cc);
    EXPECT_EQ(alpha->GetBits(), 1);
    EXPECT_FALSE(alpha->GetData()->IsFullyOpaque());
    EXPECT_EQ(alpha->GetData()->GetLine(1)[0], 16);
}

TEST_F(Rasters, OfASourceRefuseSizesOfNoUse) {
    std::vector<std::int32_t> calls;
    const RasterFormat kFormats[] = {
        {nullptr, 1, 1, 8},
        {Device("gray"_cc), 0, 1, 8},
        {Device("gray"_cc), 1, 1, 12},
        {Device("gray"_cc), 1 << 20, 1 << 20, 1},
        {Device("cmyk"_cc), 1 << 27, 1, 8},
    };
    for (const RasterFormat& format : kFormats) {
        EXPECT_FALSE(MakeRaster(format, std::make_unique<CountingSource>(calls, 4)))
            << format.width << " x " << format.bits;
    }
    EXPECT_FALSE(MakeRaster({Device("gray"_cc), 1, 1, 8}, nullptr));
}

TEST_F(Rasters, AreInterleavedAtEveryWidthWithinTheirBuffers) {
    const auto swizzle = Make<GRAPHICS::ISwizzleServices>(GRAPHICS::CLSID_SWIZZLESERVICES);
    for (std::int32_t width = 0; width < 70; ++width) {
        for (const std::int32_t step : {1, 2}) {
            const std::int32_t planeBytes = width * step;
            std::vector<Bytes> planes(4, Bytes(static_cast<std::size_t>(planeBytes)));
            Bytes three;
            Bytes four;
            for (std::size_t x = 0; x < static_cast<std::size_t>(width); ++x) {
                for (std::size_t i = 0; i < 4; ++i) {
                    const auto sample = static_cast<std::uint8_t>(3 * x + 70 * i + 1);
                    planes[i][x * static_cast<std::size_t>(step)] = sample;
                    four.push_back(sample);
                    if (i < 3) {
                        three.push_back(sample);
                    }
                }
            }
            // The sanitizers watch the ends of these.
            Bytes out3(three.size());
            Bytes out4(four.size());
            swizzle->Interleave3(width, step, planes[0].data(), planes[1].data(), planes[2].data(),
                                 planeBytes, out3.data(), 3 * width);
            swizzle->Interleave4(width, step, planes[0].data(), planes[1].data(), planes[2].data(),
                                 planes[3].data(), planeBytes, out4.data(), 4 * width);
            EXPECT_EQ(out3, three) << width << ", " << step;
            EXPECT_EQ(out4, four) << width << ", " << step;
        }
    }
}

TEST_F(Rasters, AreInterleavedNoFurtherThanTheShorterBuffer) {
    const auto swizzle = Make<GRAPHICS::ISwizzleServices>(GRAPHICS::CLSID_SWIZZLESERVICES);
    const Bytes plane(20, 7);
    const auto* p = plane.data();

    struct {
        std::int32_t width, step, planeBytes, outBytes, pixels;
    } const kCases[] = {
        {30, 1, 20, 120, 20}, {30, 3, 20, 120, 7}, {20, 1, 20, 15, 3}, {-1, 1, 20, 80, 0},
        {20, 0, 20, 80, 0},   {20, 1, 0, 80, 0},   {20, 1, 20, -4, 0},
    };

    for (const auto& [width, step, planeBytes, outBytes, pixels] : kCases) {
        Bytes out(120);
        swizzle->Interleave4(width, step, p, p, p, p, planeBytes, out.data(), outBytes);
        EXPECT_EQ(std::count(out.begin(), out.end(), 7), 4 * pixels) << width << ", " << step;
    }
}

}  // namespace
}  // namespace VANTIX::HOST
