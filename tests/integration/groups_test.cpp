// SPDX-License-Identifier: MIT
// Groups and soft masks that a host opens and closes in ways that no document does.
#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <fstream>
#include <limits>
#include <string>
#include <utility>

#include "core/object/tobject.h"
#include "integration/job.h"
#include "support/distiller.h"

namespace VANTIX::HOST {
namespace {

constexpr std::int32_t kTransparencyKey = 101;
constexpr std::array<float, 4> kBox{0, 0, 500, 500};

/// What a connection space hangs on it goes with it.
class Holder : public TObject<IObject> {};

void BeginGroup(BaseConnectionSpace& base, const std::array<float, 4>& box = kBox) {
    base.BeginTransparencyGroup(box.data(), nullptr, true, false, nullptr);
}

void BeginMask(BaseConnectionSpace& base) {
    auto* gray = base.State().Current().fill.space.Get();
    base.BeginSoftMask(nullptr, nullptr, kBox[0], kBox[1], kBox[2], kBox[3], gray, nullptr, 0,
                       false, false, GRAPHICS::IGraphicsState::TSoftMaskType::kAlpha);
}

/// Lets go of the mask of the moment, which ends it.
void Release(BaseConnectionSpace& base) {
    const auto released = std::move(base.State().Current().softMaskHolder);
}

void EndMask(BaseConnectionSpace& base) {
    base.State().Current().softMaskHolder = MakeObject<Holder>();
    base.EndSoftMask();
}

void Paint(BaseConnectionSpace& base, float x) {
    Rectangle(base, x, 300, 50);
    base.Fill();
    base.NewPath();
}

void Mask(BaseConnectionSpace& base) {
    BeginMask(base);
    Paint(base, 100);
    EndMask(base);
}

/// A mask whose content is painted through a mask, and so on.
void NestMasks(BaseConnectionSpace& base, int depth) {
    BeginMask(base);
    if (depth > 1) {
        const auto outer = base.State().Current().softMaskHolder;
        NestMasks(base, depth - 1);
        Paint(base, 100);
        Release(base);
        base.State().Current().softMaskHolder = outer;
    }
    Paint(base, 100);
    EndMask(base);
}

void ManyTimes(int count, BaseConnectionSpace& base, void (*call)(BaseConnectionSpace&)) {
    for (int i = 0; i < count; ++i) {
        call(base);
    }
}

struct GroupCase {
    const char* name;
    void (*draw)(BaseConnectionSpace& base);
    const char* message = nullptr;  // a part of what is reported, or nothing is to be
    std::size_t forms = 0;          // that are defined
    bool isBalanced = true;         // what comes next is seen
};

const float kNoNumber = std::numeric_limits<float>::quiet_NaN();
const float kInfinite = std::numeric_limits<float>::infinity();

const GroupCase kCases[] = {
    {"500Groups",
     [](BaseConnectionSpace& base) {
         ManyTimes(500, base, [](BaseConnectionSpace& space) {
             BeginGroup(space);
             Paint(space, 100);
         });
         ManyTimes(500, base, [](BaseConnectionSpace& space) { space.EndTransparencyGroup(); });
     },
     nullptr, 500},
    {"GroupsBeyondTheDepth",
     [](BaseConnectionSpace& base) {
         ManyTimes(1100, base, [](BaseConnectionSpace& space) { BeginGroup(space); });
         ManyTimes(1100, base, [](BaseConnectionSpace& space) { space.EndTransparencyGroup(); });
     },
     "nested too deeply", 1024},
    {"20MasksOfMasks",
     [](BaseConnectionSpace& base) {
         NestMasks(base, 20);
         Release(base);
     },
     nullptr, 40},
    {"GroupsNeverClosed",
     [](BaseConnectionSpace& base) {
         ManyTimes(3, base, [](BaseConnectionSpace& space) { BeginGroup(space); });
     },
     "A transparency group or a soft mask was left open", 3, false},
    {"MaskNeverClosed", BeginMask, "The content of a soft mask was left open", 2, false},
    {"GroupOpenInAMask",
     [](BaseConnectionSpace& base) {
         BeginMask(base);
         BeginGroup(base);
         Paint(base, 100);
         EndMask(base);
         Release(base);
     },
     "was left open", 3},
    {"EndsWithoutBeginnings",
     [](BaseConnectionSpace& base) {
         base.EndTransparencyGroup();
         base.EndSoftMask();
     },
     "Transparency Group stack is empty\nExpected a soft mask here", 0},
    {"MaskEndedAsAGroup",
     [](BaseConnectionSpace& base) {
         BeginMask(base);
         base.EndTransparencyGroup();
         EndMask(base);
         Release(base);
     },
     "Transparency Group stack is empty", 2},
    {"GroupEndedAsAMask",
     [](BaseConnectionSpace& base) {
         BeginGroup(base);
         base.EndSoftMask();
         base.EndTransparencyGroup();
     },
     "Expected a soft mask here", 1},
    {"EmptyBoxes",
     [](BaseConnectionSpace& base) {
         BeginGroup(base, {7, 7, 7, 7});
         Paint(base, 100);
         base.EndTransparencyGroup();
         base.BeginTransparencyGroup(nullptr, nullptr, false, false, nullptr);
         base.EndTransparencyGroup();
     },
     nullptr, 2},
    {"BoxesOfNoNumbers",
     [](BaseConnectionSpace& base) {
         BeginGroup(base, {kNoNumber, -kInfinite, kInfinite, kNoNumber});
         Paint(base, 100);
         base.EndTransparencyGroup();
     },
     "", 1},
    {"MaskWithoutAHolder",
     [](BaseConnectionSpace& base) {
         BeginMask(base);
         base.EndSoftMask();
     },
     nullptr, 2},
    {"HolderDroppedInAGroup",
     [](BaseConnectionSpace& base) {
         Mask(base);
         BeginGroup(base);
         Release(base);
         base.EndTransparencyGroup();
     },
     "", 3},
    {"HolderDroppedInAMask",
     [](BaseConnectionSpace& base) {
         Mask(base);
         BeginMask(base);
         Release(base);
         EndMask(base);
         Release(base);
     },
     "", 4, false},
    {"HolderDroppedAfterSaving",
     [](BaseConnectionSpace& base) {
         Mask(base);
         base.SaveGraphicsState();
         Release(base);
         base.RestoreGraphicsState();
         Release(base);
     },
     nullptr, 2},
    {"HolderNeverDropped", Mask, "", 2, false},
};

void PrintTo(const GroupCase& test, std::ostream* out) {
    *out << test.name;
}

class GroupsOfAHost : public Job, public testing::WithParamInterface<GroupCase> {
protected:
    /// Draws the case and a mark behind it, and distils the job.
    std::string Draw() {
        std::string job = Run(
            [this](BaseConnectionSpace& base, IO::IDataProvider& /*output*/) {
                GetParam().draw(base);
                Paint(base, 400);
                mLate = base.State().Current().softMaskHolder;
            },
            kGuard);
        // What is left open ends with the job.
        std::ofstream(Path("job.ps"), std::ios::app) << "showpage\n";
        mLate = nullptr;
        EXPECT_EQ(TEST::DistilTransparency(Path("job.ps"), Path("job.pdf")), "");
        return job;
    }

    bool IsMarkSeen() {
        const TEST::PageImage page = TEST::DrawWithPoppler(Path("job.pdf"));
        return page.width > 425 && page.At(425, page.height - 1 - 325, 1) < 50;
    }

private:
    TInterfacePtr<IObject> mLate;  // outlives the job
};

std::size_t CountOf(std::string_view piece, std::string_view text) {
    std::size_t count = 0;
    for (std::size_t at = text.find(piece); at != std::string_view::npos;
         at = text.find(piece, at + 1)) {
        ++count;
    }
    return count;
}

TEST_P(GroupsOfAHost, EndAndLeaveAJobThatRuns) {
    const GroupCase& test = GetParam();
    policy->SetBool(kTransparencyKey, true);
    const std::string job = Draw();
    EXPECT_EQ(CountOf("/BP pdfmark", job), test.forms);
    EXPECT_EQ(CountOf("/EP pdfmark", job) + CountOf("[/EP", job), 2 * test.forms);
    if (test.isBalanced) {
        EXPECT_TRUE(IsMarkSeen());
    }
    if (test.message != nullptr) {
        EXPECT_NE(std::exchange(messages, "").find(test.message), std::string::npos) << messages;
    }
}

TEST_P(GroupsOfAHost, AreNothingWithoutPdfmarks) {
    policy->SetBool(kTransparencyKey, false);
    EXPECT_EQ(CountOf("pdfmark\n", Draw()), 0U);
    messages.clear();
}

INSTANTIATE_TEST_SUITE_P(Cases, GroupsOfAHost, testing::ValuesIn(kCases),
                         [](const auto& param) { return std::string(param.param.name); });

}  // namespace
}  // namespace VANTIX::HOST
