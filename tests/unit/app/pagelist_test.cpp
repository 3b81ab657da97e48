// SPDX-License-Identifier: MIT
#include "app/pagelist.h"

#include <gmock/gmock.h>

namespace VANTIX::APP {
namespace {

using testing::ElementsAre;

std::vector<int> Pages(const std::string& text, int count) {
    PageList list;
    std::string error;
    std::vector<int> pages;
    EXPECT_TRUE(text.empty() || list.Parse(text, error)) << error;
    EXPECT_TRUE(list.Resolve(count, pages, error)) << error;
    return pages;
}

TEST(PageList, KeepsTheOrderAskedFor) {
    EXPECT_THAT(Pages("3,1-2,3", 3), ElementsAre(2, 0, 1, 2));
}

TEST(PageList, OpenRangeEndsWithTheDocument) {
    EXPECT_THAT(Pages("4-", 5), ElementsAre(3, 4));
}

TEST(PageList, WithoutRangesMeansAllPages) {
    EXPECT_THAT(Pages("", 2), ElementsAre(0, 1));
}

TEST(PageList, RefusesWhatIsNoList) {
    for (const char* text : {"", ",", "1,", "0", "-3", "3-1", "a", "1-2-3", "1 2", "99999999999"}) {
        PageList list;
        std::string error;
        EXPECT_FALSE(list.Parse(text, error)) << text;
        EXPECT_FALSE(error.empty()) << text;
    }
}

TEST(PageList, NamesThePageThatIsNotThere) {
    for (const char* text : {"9", "1-9", "9-"}) {
        PageList list;
        std::string error;
        std::vector<int> pages;
        ASSERT_TRUE(list.Parse(text, error));
        EXPECT_FALSE(list.Resolve(5, pages, error)) << text;
        EXPECT_THAT(error, testing::HasSubstr("page 9")) << text;
    }
}

}  // namespace
}  // namespace VANTIX::APP
