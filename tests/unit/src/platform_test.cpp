// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <set>
#include <string>
#include <thread>

#include "core/registry/irunenvironment.h"
#include "platform/criticalsection.h"
#include "platform/randomsource.h"
#include "platform/uniqueid.h"
#include "postscriptconnectionspace/standardhashie.h"
#include "support/fakefactory.h"

namespace VANTIX::PLATFORM {
namespace {

class FakeEnvironment : public TObject<COREREGISTRY::IRunEnvironment> {
public:
    bool GetSeed(std::uint64_t& seed) const override {
        seed = 42;
        return true;
    }

    bool GetTime(std::int64_t& seconds) const override {
        seconds = 951782400;
        return true;
    }
};

class RunEnvironment : public ::testing::Test {
protected:
    RunEnvironment() { factory.Offer<FakeEnvironment>(COREREGISTRY::CLSID_RUNENVIRONMENT); }

    ~RunEnvironment() override { AdoptRunEnvironment(nullptr); }

    TEST::FakeFactory factory;
};

TEST_F(RunEnvironment, ASeededRunCanBeRepeated) {
    AdoptRunEnvironment(&factory);
    const GUID first = CreateUniqueId();
    const std::uint64_t second = NextRandom();
    EXPECT_EQ(Now(), 951782400);
    AdoptRunEnvironment(&factory);
    EXPECT_EQ(CreateUniqueId(), first);
    EXPECT_EQ(NextRandom(), second);
    EXPECT_NE(CreateSystemUniqueId(), CreateSystemUniqueId());
    AdoptRunEnvironment(&factory);
    CreateSystemUniqueId();
    EXPECT_EQ(CreateUniqueId(), first) << "names of files must not shift the names in the output";
}

TEST_F(RunEnvironment, WithoutOneChanceAndTimeAreTheSystems) {
    AdoptRunEnvironment(&factory);
    const GUID seeded = CreateUniqueId();
    factory.creators.clear();
    AdoptRunEnvironment(&factory);
    EXPECT_NE(CreateUniqueId(), seeded);
    EXPECT_NE(NextRandom(), NextRandom());
    EXPECT_GT(Now(), 1700000000);
}

TEST_F(RunEnvironment, SeededIdsGiveDistinctKeysOfColourSpaceNames) {
    AdoptRunEnvironment(&factory);
    std::set<std::string> halves;
    std::set<std::uint64_t> keys;
    for (int i = 0; i < 10000; ++i) {
        const std::string digits = UniqueIdDigits(CreateUniqueId());
        halves.insert(digits.substr(0, 16));
        keys.insert(StandardHashie(("SEPCS-" + digits).c_str()));
    }
    EXPECT_EQ(halves.size(), 10000U);
    EXPECT_EQ(keys.size(), 10000U) << "the hash hardly sees the last ten characters of a name";
}

TEST(UniqueId, TextFormsFollowTheFields) {
    constexpr GUID kId = "00C7F9E5-07E0-4B14-AC27-09483C2E02D3"_guid;
    EXPECT_EQ(UniqueIdDigits(kId), "00C7F9E507E04B14AC2709483C2E02D3");
    EXPECT_EQ(UniqueIdHyphenText(kId), "e5f9c70-e07-144b-ac-27-9-48-3c-2e-2-d3");
}

TEST(CriticalSection, AnotherThreadGivesUpAfterASecond) {
    CriticalSection section;
    const auto held = section.Enter();
    ASSERT_TRUE(held.owns_lock());
    EXPECT_TRUE(section.Enter().owns_lock()) << "the same thread may enter again";
    std::thread([&section] { EXPECT_FALSE(section.Enter().owns_lock()); }).join();
}

}  // namespace
}  // namespace VANTIX::PLATFORM
