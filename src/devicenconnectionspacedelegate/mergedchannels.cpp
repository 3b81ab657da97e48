// SPDX-License-Identifier: MIT
#include "devicenconnectionspacedelegate/mergedchannels.h"

#include <algorithm>
#include <cstring>
#include <string_view>
#include <utility>
#include <vector>

#include "baseconnectionspacedelegate/channels.h"
#include "baseconnectionspacedelegate/madechanneldata.h"
#include "core/graphics/pluginhelper/rasterhelpers.h"
#include "core/libsupport/vlogger/logmessage.h"

namespace VANTIX::RENDERING {

namespace {

constexpr const char* kModule = "src/devicenconnectionspacedelegate";

/// The coverage of one ink printed twice: a + b (1 - a), in whole steps of 1 / Most.
template <class Sample, unsigned Bits>
Sample Union(Sample a, Sample b) {
    constexpr std::uint32_t kMost = (1U << Bits) - 1;
    const std::uint32_t t = b * (kMost - a) + (1U << (Bits - 1));
    return static_cast<Sample>(a + ((t + (t >> Bits)) >> Bits));
}

/// Several channels of one ink as one, of 8 or 16 bits.
class MergedChannelData : public MadeChannelData {
public:
    MergedChannelData(std::vector<TInterfacePtr<IChannelData>> members, std::int32_t width,
                      std::int32_t bits, bool complements)
        : MadeChannelData(static_cast<std::size_t>(width) * (bits == 16 ? 2 : 1)),
          mMembers(std::move(members)),
          mSamples(static_cast<std::size_t>(width)),
          mHasWords(bits == 16),
          mComplements(complements),
          mLine(static_cast<std::size_t>(GetLineBytes())) {}

    const std::uint8_t* GetLine(std::int32_t y) override {
        for (std::size_t i = 0; i < mMembers.size(); ++i) {
            const std::uint8_t* line = mMembers[i]->GetLine(y);
            if (line == nullptr) {
                return nullptr;
            }
            if (i == 0) {
                std::copy_n(line, mLine.size(), mLine.data());
            } else if (mHasWords) {
                Add<std::uint16_t, 16>(line);
            } else {
                Add<std::uint8_t, 8>(line);
            }
        }
        return mLine.data();
    }

private:
    template <class Sample, unsigned Bits>
    void Add(const std::uint8_t* line) {
        const auto mask = static_cast<Sample>(mComplements ? ~0U : 0U);
        for (std::size_t x = 0; x < mSamples; ++x) {
            Sample a;
            Sample b;
            std::memcpy(&a, mLine.data() + x * sizeof a, sizeof a);
            std::memcpy(&b, line + x * sizeof b, sizeof b);
            const auto sum =
                Union<Sample, Bits>(static_cast<Sample>(a ^ mask), static_cast<Sample>(b ^ mask));
            a = static_cast<Sample>(sum ^ mask);
            std::memcpy(mLine.data() + x * sizeof a, &a, sizeof a);
        }
    }

    std::vector<TInterfacePtr<IChannelData>> mMembers;
    std::size_t mSamples;
    bool mHasWords;
    bool mComplements;
    std::vector<std::uint8_t> mLine;
};

/// Channels of one ink.
struct Group {
    std::u16string_view name;
    IChannelDesc* first = nullptr;  ///< a spot
    std::vector<TInterfacePtr<IChannelData>> members;
};

std::u16string_view NameOf(const IChannelDesc& spot) {
    const auto* space = spot.GetSeparationSpace();
    const CoreString* name = space == nullptr ? nullptr : space->GetColorantName();
    return name == nullptr ? std::u16string_view()
                           : std::u16string_view(name->c_str(), name->size());
}

/// The spots of the raster by name, in the order of their first channels; those without a name or
/// data, or of another depth, stay by themselves.
std::vector<Group> GroupSpots(const Raster& raster) {
    std::vector<Group> groups;
    for (std::int32_t i = 0; i < raster.GetExtraCount(); ++i) {
        IChannelDesc* spot = raster.GetExtra(i);
        if (spot == nullptr || spot->GetType() != "SPOT"_cc) {
            continue;
        }
        const std::u16string_view name = NameOf(*spot);
        const bool canMerge = !name.empty() && spot->GetData() != nullptr &&
                              spot->GetBits() == raster.GetBitsPerSample();
        const auto same = canMerge
                              ? std::find_if(groups.begin(), groups.end(),
                                             [&](const Group& group) { return group.name == name; })
                              : groups.end();
        Group& group = same == groups.end() ? groups.emplace_back() : *same;
        if (group.first == nullptr) {
            group.first = spot;
            group.name = canMerge ? name : std::u16string_view();
        }
        group.members.emplace_back(spot->GetData());
    }
    return groups;
}

/// The process inks join the spots of their names; answers which of them did.
std::uint32_t JoinProcessInks(const Raster& raster, std::vector<Group>& groups) {
    constexpr std::u16string_view kInks[] = {u"Cyan", u"Magenta", u"Yellow", u"Black"};
    std::uint32_t joined = 0;
    for (std::size_t i = 0; raster.GetPrimaryCount() == 4 && i < std::size(kInks); ++i) {
        IChannelData* data = ProcessData(raster, static_cast<std::int32_t>(i));
        const auto same = std::find_if(groups.begin(), groups.end(),
                                       [&](const Group& group) { return group.name == kInks[i]; });
        if (data != nullptr && same != groups.end()) {
            same->members.emplace_back(data);
            joined |= 1U << i;
        }
    }
    return joined;
}

bool AddSpot(IClassFactory& factory, const Raster& raster, Group& group, std::int32_t index,
             Raster& target) {
    if (group.members.size() == 1) {
        return target.AddExtra(group.first) == STATUS::kOk;
    }
    const std::int32_t width = raster.GetWidth();
    const std::int32_t bits = raster.GetBitsPerSample();
    TInterfacePtr<IChannelDesc> merged;
    if (!GRAPHICS::HELPER::CreateChannelDesc(
            &factory, "SPOT"_cc, index, static_cast<std::int8_t>(bits), width, raster.GetHeight(),
            group.first->GetOpacity(), merged)) {
        return false;
    }
    merged->SetSeparationSpace(group.first->GetSeparationSpace());
    const auto data = MakeObject<MergedChannelData>(std::move(group.members), width, bits,
                                                    HasProcessData(raster));
    merged->SetData(data.Get());
    return target.AddExtra(merged.Get()) == STATUS::kOk;
}

void CarryAlphaOver(const Raster& raster, Raster& target) {
    const IChannelDesc* alpha = AlphaChannel(raster);
    if (alpha == nullptr) {
        LogError(kModule) << " Alpha Channel not there in the raster component";
    } else if (alpha->GetData() == nullptr) {
        LogError(kModule) << " Alpha Channel data not there in raster component";
    } else {
        target.AddExtra(raster.GetExtra(0));
    }
}

}  // namespace

bool MergeSameNameChannels(IClassFactory& factory, Raster& raster, TInterfacePtr<Raster>& out) {
    std::vector<Group> groups = GroupSpots(raster);
    const std::uint32_t joined = JoinProcessInks(raster, groups);
    const bool hasGroups = std::any_of(groups.begin(), groups.end(),
                                       [](const Group& group) { return group.members.size() > 1; });
    const std::int32_t bits = raster.GetBitsPerSample();
    out = TInterfacePtr<Raster>(&raster);
    if (!hasGroups) {
        return true;
    }
    const std::int32_t primaries = raster.GetPrimaryCount();
    // Without primaries of its own the new raster makes none.
    if ((bits != 8 && bits != 16) ||
        !GRAPHICS::HELPER::CreateRasterComponent(
            &factory, raster.GetColorSpace(), raster.GetWidth(), raster.GetHeight(),
            static_cast<std::int8_t>(bits), 0, 0, primaries == 0 ? 1 : 0, 0, out)) {
        LogError(kModule) << "Don't support a bit depth of " << bits;
        out = nullptr;
        return false;
    }
    for (const auto& [id, object] : raster.GetAggregateMap()) {
        out->Aggregate(object, id);
    }
    for (std::int32_t i = 0; i < std::min(primaries, out->GetPrimaryCount()); ++i) {
        const bool isGone = (joined >> static_cast<unsigned>(i) & 1U) != 0;
        out->GetPrimary(i)->SetData(isGone ? nullptr : ProcessData(raster, i));
    }
    CarryAlphaOver(raster, *out);
    for (std::size_t i = 0; i < groups.size(); ++i) {
        if (!AddSpot(factory, raster, groups[i], static_cast<std::int32_t>(i), *out)) {
            out = nullptr;
            return false;
        }
    }
    return true;
}

}  // namespace VANTIX::RENDERING
