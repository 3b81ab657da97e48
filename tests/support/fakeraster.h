// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include "core/graphics/irastercomponent.h"
#include "core/object/tobject.h"

namespace VANTIX::TEST {

using Line = std::vector<std::uint8_t>;

/// The bytes of native 16-bit words.
inline Line Words(const std::vector<std::uint16_t>& words) {
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(words.data());
    return {bytes, bytes + 2 * words.size()};
}

/// Lines in memory; an empty one is missing.
class FakeChannelData : public TObject<GRAPHICS::IChannelData> {
public:
    FakeChannelData() = default;

    explicit FakeChannelData(std::vector<Line> given) : lines(std::move(given)) {}

    std::vector<Line> lines;
    bool isOpaque = false;

    /// Tells itself from data of other classes.
    Status QueryInterface(const GUID& id, void** out) override {
        if (id == GRAPHICS::CLSID_CHANNELDATA) {
            *out = static_cast<IObject*>(this);
            return STATUS::kOk;
        }
        return TObject::QueryInterface(id, out);
    }

    Status Init(std::int32_t, std::int32_t height, std::int32_t, std::int32_t lineBytes) override {
        lines.assign(static_cast<std::size_t>(height), Line(static_cast<std::size_t>(lineBytes)));
        return STATUS::kOk;
    }

    const std::uint8_t* GetLine(std::int32_t y) override {
        const Line& line = lines.at(static_cast<std::size_t>(y));
        return line.empty() ? nullptr : line.data();
    }

    std::int32_t GetLineBytes() const override {
        return lines.empty() ? 0 : static_cast<std::int32_t>(lines[0].size());
    }

    Status SetLine(std::int32_t y, const std::uint8_t* line) override {
        Line& own = lines.at(static_cast<std::size_t>(y));
        own.assign(line, line + own.size());
        return STATUS::kOk;
    }

    bool IsFullyOpaque() const override { return isOpaque; }
};

class FakeChannel : public TObject<GRAPHICS::IChannelDesc> {
public:
    FourCC type = 0;
    std::int32_t bits = 8;
    float opacity = 1.0F;
    TInterfacePtr<FakeChannelData> data;
    TInterfacePtr<COLOR::ISeparationConnectionColorSpace> space;

    Status Init(FourCC code, std::int32_t, std::int8_t depth, std::int32_t, std::int32_t,
                float amount) override {
        type = code;
        bits = static_cast<std::uint8_t>(depth);
        opacity = amount;
        return STATUS::kOk;
    }

    FourCC GetType() const override { return type; }

    std::int32_t GetBits() const override { return bits; }

    float GetOpacity() const override { return opacity; }

    COLOR::ISeparationConnectionColorSpace* GetSeparationSpace() const override {
        return space.Get();
    }

    void SetSeparationSpace(COLOR::ISeparationConnectionColorSpace* given) override {
        space = TInterfacePtr<COLOR::ISeparationConnectionColorSpace>(given);
    }

    GRAPHICS::IChannelData* GetData() const override {
        return mForeign ? mForeign.Get() : data.Get();
    }

    void SetData(GRAPHICS::IChannelData* given) override {
        data = TInterfacePtr<FakeChannelData>(
            FindInterface<FakeChannelData>(given, GRAPHICS::CLSID_CHANNELDATA));
        mForeign = TInterfacePtr<GRAPHICS::IChannelData>(data ? nullptr : given);
    }

private:
    TInterfacePtr<GRAPHICS::IChannelData> mForeign;  // of another class
};

class FakeRaster : public TObject<GRAPHICS::IRasterComponent> {
public:
    std::int32_t width = 0;
    std::int32_t height = 1;
    std::int32_t bits = 8;
    TInterfacePtr<COLOR::IConnectionColorSpace> space;
    std::vector<TInterfacePtr<FakeChannel>> primaries;
    std::vector<TInterfacePtr<FakeChannel>> extras;
    std::optional<std::uint64_t> mask;

    /// One line for each primary.
    void Plane(Line line) { primaries.push_back(Channel(0, std::move(line))); }

    FakeChannel& Extra(FourCC type, Line line) {
        extras.push_back(Channel(type, std::move(line)));
        return *extras.back();
    }

    Status Init(COLOR::IConnectionColorSpace* given, std::int32_t columns, std::int32_t rows,
                std::int8_t depth, float, float, std::uint8_t settings, std::int32_t) override {
        space = TInterfacePtr<COLOR::IConnectionColorSpace>(given);
        width = columns;
        height = rows;
        bits = static_cast<std::uint8_t>(depth);
        for (std::int32_t i = 0; settings == 0 && i < given->GetComponentCount(); ++i) {
            Plane(Line(static_cast<std::size_t>(width * bits + 7) / 8));
            primaries.back()->data->lines.resize(static_cast<std::size_t>(height),
                                                 primaries.back()->data->lines[0]);
        }
        return STATUS::kOk;
    }

    std::int32_t GetWidth() const override { return width; }

    std::int32_t GetHeight() const override { return height; }

    std::int32_t GetBitsPerSample() const override { return bits; }

    COLOR::IConnectionColorSpace* GetColorSpace() const override { return space.Get(); }

    std::int32_t GetPrimaryCount() const override {
        return static_cast<std::int32_t>(primaries.size());
    }

    GRAPHICS::IChannelDesc* GetPrimary(std::int32_t index) const override {
        return primaries.at(static_cast<std::size_t>(index)).Get();
    }

    std::int32_t GetExtraCount() const override { return static_cast<std::int32_t>(extras.size()); }

    GRAPHICS::IChannelDesc* GetExtra(std::int32_t index) const override {
        return extras.at(static_cast<std::size_t>(index)).Get();
    }

    Status AddExtra(GRAPHICS::IChannelDesc* channel) override {
        extras.emplace_back(static_cast<FakeChannel*>(channel));
        return STATUS::kOk;
    }

    bool GetChannelMask(std::uint64_t& out) const override {
        out = mask.value_or(out);
        return mask.has_value();
    }

private:
    [[nodiscard]] TInterfacePtr<FakeChannel> Channel(FourCC type, Line line) const {
        auto channel = MakeObject<FakeChannel>();
        channel->type = type;
        channel->bits = bits;
        channel->data = MakeObject<FakeChannelData>(std::vector<Line>{std::move(line)});
        return channel;
    }
};

}  // namespace VANTIX::TEST
