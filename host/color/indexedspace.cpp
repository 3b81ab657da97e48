// SPDX-License-Identifier: MIT
#include <array>
#include <cmath>
#include <utility>

#include "host/color/functionbase.h"
#include "host/color/outputvalues.h"
#include "host/color/spaces.h"

namespace VANTIX::HOST {

namespace {

constexpr std::int32_t kMaxEntries = 256;

class IndexedSpace : public SpaceBase<COLOR::IIndexedConnectionColorSpace> {
public:
    IndexedSpace(ColorSpacePtr base, std::int32_t entries, std::vector<std::uint8_t> table)
        : SpaceBase(COLOR::IID_IINDEXEDCOLORSPACE, 1,
                    Digest("indexed")
                        .Add(base->GetIdentifier())
                        .Add(std::span<const std::uint8_t>(table))
                        .Identifier()),
          mBase(std::move(base)),
          mEntries(entries),
          mTable(std::move(table)) {
        if (FamilyOf(*mBase) != "clab"_cc) {
            return;
        }
        mLabRange = {-128.0F, 127.0F, -128.0F, 127.0F};
        mIsLab = true;
        if (const auto* lab = FindInterface<COLOR::ICalibratedConnectionColorSpace>(
                mBase.Get(), COLOR::IID_ICALIBRATEDCOLORSPACE)) {
            lab->GetLabRange(mLabRange.data());
        }
    }

    COLOR::IConnectionColorSpace* GetBaseSpace() const override { return mBase.Get(); }

    std::int32_t GetEntryCount() const override { return mEntries; }

    const std::uint8_t* GetLUT() const override { return mTable.data(); }

    bool ToPCS(const float* values, float pcs[3], COLOR::TRenderingIntent intent) const override {
        const auto last = static_cast<float>(mEntries - 1);
        const auto entry = static_cast<std::size_t>(std::lround(ClipTo(values[0], 0.0F, last)));
        const auto components = static_cast<std::size_t>(mBase->GetComponentCount());
        std::array<float, COLOR::kMaxComponents> color{};
        for (std::size_t i = 0; i < components; ++i) {
            color[i] = static_cast<float>(mTable[entry * components + i]) / 255.0F;
        }
        if (mIsLab) {
            color[0] *= 100.0F;
            color[1] = mLabRange[0] + color[1] * (mLabRange[1] - mLabRange[0]);
            color[2] = mLabRange[2] + color[2] * (mLabRange[3] - mLabRange[2]);
        }
        return mBase->ToPCS(color.data(), pcs, intent);
    }

private:
    ColorSpacePtr mBase;
    std::int32_t mEntries;
    std::vector<std::uint8_t> mTable;
    std::array<float, 4> mLabRange{};
    bool mIsLab = false;
};

}  // namespace

ColorSpacePtr MakeIndexedSpace(const ColorSpacePtr& base, std::int32_t entries,
                               std::vector<std::uint8_t> table, std::string& error) {
    if (!base || entries < 1 || entries > kMaxEntries ||
        base->GetComponentCount() > COLOR::kMaxComponents ||
        FindInterface<COLOR::IIndexedConnectionColorSpace>(
            base.Get(), COLOR::IID_IINDEXEDCOLORSPACE) != nullptr) {
        error = "an indexed space with a wrong base or number of entries";
        return nullptr;
    }
    table.resize(static_cast<std::size_t>(entries) *
                 static_cast<std::size_t>(base->GetComponentCount()));
    return MakeObject<IndexedSpace>(base, entries, std::move(table));
}

}  // namespace VANTIX::HOST
