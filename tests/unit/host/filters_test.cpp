// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "host/io/outputfilterstack.h"
#include "support/ghostscriptpages.h"
#include "support/memoryprovider.h"
#include "support/temporaryfolder.h"

namespace VANTIX::HOST {
namespace {

using namespace std::string_literals;
using IO::FILTER::kAscii85;
using IO::FILTER::kCount;
using IO::FILTER::kFlate;
using IO::FILTER::kLabBytes;
using IO::FILTER::kRunLength;
using Codes = std::vector<std::int32_t>;

struct Filters {
    explicit Filters(const Codes& codes) {
        stack->Attach(provider.Get());
        for (const std::int32_t code : codes) {
            EXPECT_EQ(stack->PushFilter(code), STATUS::kOk);
        }
    }

    Status Write(std::string_view data) const {
        return stack->WriteFilteredData(data.data(), static_cast<std::int32_t>(data.size()));
    }

    /// What comes out for one block of data.
    [[nodiscard]] std::string Encode(std::string_view data) const {
        Write(data);
        stack->EndFilteredData();
        return provider->Take();
    }

    TInterfacePtr<TEST::MemoryProvider> provider = MakeObject<TEST::MemoryProvider>();
    TInterfacePtr<OutputFilterStack> stack = MakeObject<OutputFilterStack>();
};

std::string RandomBytes(std::size_t count, unsigned seed) {
    std::mt19937 random(seed);
    std::string bytes(count, '\0');
    std::generate(bytes.begin(), bytes.end(), [&] { return static_cast<char>(random()); });
    return bytes;
}

/// Short and long runs between stretches without any.
std::string Runs() {
    std::mt19937 random(7);
    std::string bytes;
    while (bytes.size() < 30000) {
        bytes.append(random() % 300, static_cast<char>(random()));
        bytes += RandomBytes(random() % 200, static_cast<unsigned>(random()));
    }
    return bytes;
}

/// Four bytes that base 85 writes as five percent signs, over and over.
std::string Percents() {
    std::string bytes;
    for (int i = 0; i < 200; ++i) {
        bytes.append("\x0C\x6B\x6B\x6F", 4);
    }
    return bytes;
}

struct Sample {
    const char* name;
    std::string data;
};

const std::vector<Sample>& Samples() {
    static const std::vector<Sample> samples{
        {"OneByte", "a"},
        {"Zeros", std::string(100001, '\0')},
        {"Percents", Percents()},
        {"Runs", Runs()},
        {"Random", RandomBytes(100003, 1)},
        {"Text", std::string(4000, '~') + ">~> %%EOF\n"},
    };
    return samples;
}

class FilterChain : public testing::TestWithParam<Codes> {};

/// A program that prints decoded blocks of data, each of which stands behind `decode`, as image
/// data stand behind their operator.
std::string Decoder(const OutputFilterStack& stack) {
    std::string rest;
    for (std::int32_t i = 1; i < stack.GetFilterCount(); ++i) {
        const std::string name = stack.GetFilterName(i);
        rest += name.empty() ? "" : name + " filter ";
    }
    return "%!\n/out (%stdout) (w) file def /buffer 1000 string def\n"
           "/decode {/outer currentfile " +
           std::string(stack.GetFilterName(0)) + " filter def outer " + rest +
           "{dup buffer readstring exch out exch writestring not {exit} if} loop pop "
           "outer flushfile} bind def\n";
}

TEST_P(FilterChain, IsUndoneByAnInterpreterBlockAfterBlock) {
    const Filters filters(GetParam());
    std::string program = Decoder(*filters.stack);
    for (const Sample& sample : Samples()) {
        program += "decode\n" + filters.Encode(sample.data) + "\n";
    }
    const TEST::ProgramOutput output = TEST::RunPostScript(program);
    EXPECT_EQ(output.complaint, "");
    std::string_view decoded = output.text;
    for (const Sample& sample : Samples()) {
        const std::size_t size = std::min(sample.data.size(), decoded.size());
        ASSERT_TRUE(decoded.substr(0, size) == sample.data) << sample.name;
        decoded.remove_prefix(size);
    }
    EXPECT_EQ(decoded, "");
}

TEST_P(FilterChain, DoesNotDependOnThePiecesThatDataComeIn) {
    const Filters filters(GetParam());
    for (const Sample& sample : Samples()) {
        const std::string whole = filters.Encode(sample.data);
        for (std::size_t at = 0, size = 1; at < sample.data.size(); at += size, ++size) {
            filters.Write(std::string_view(sample.data).substr(at, size));
        }
        filters.stack->EndFilteredData();
        EXPECT_TRUE(filters.provider->Take() == whole) << sample.name;
    }
}

std::string ChainName(const testing::TestParamInfo<Codes>& info) {
    std::string name = "Filters";
    for (const std::int32_t code : info.param) {
        name += "_" + std::to_string(code);
    }
    return name;
}

INSTANTIATE_TEST_SUITE_P(OutputFilterStack, FilterChain,
                         testing::Values(Codes{kAscii85}, Codes{kRunLength}, Codes{kFlate},
                                         Codes{kAscii85, kFlate}, Codes{kAscii85, kRunLength},
                                         Codes{kAscii85, kCount, kFlate, kRunLength, kLabBytes}),
                         ChainName);

TEST(Ascii85, LinesStayShortAndNeverBeginWithAPercentSign) {
    const Filters filters({kAscii85});
    for (const Sample& sample : Samples()) {
        std::istringstream text(filters.Encode(sample.data));
        for (std::string line; std::getline(text, line);) {
            EXPECT_LE(line.size(), 80U) << sample.name;
            EXPECT_FALSE(line.empty() || line[0] == '%') << sample.name;
        }
    }
}

TEST(Ascii85, GroupsZerosAndTheRestAreWrittenInTheirForms) {
    const Filters filters({kAscii85});
    EXPECT_EQ(filters.Encode("Man "), "9jqo^~>\n");
    EXPECT_EQ(filters.Encode(std::string("Man \0\0\0\0\0\0", 10)), "9jqo^z!!!~>\n");
}

TEST(RunLength, RunsOfThreeAreRunsAndShorterOnesStayInTheirLiterals) {
    const Filters filters({kRunLength});
    EXPECT_EQ(filters.Encode("abbcccd"),
              "\x02"
              "abb\xFE"
              "c"
              "\x00"s
              "d\x80");
    EXPECT_EQ(filters.Encode(std::string(130, 'x')), "\x81x\x01xx\x80");
}

TEST(OutputFilterStack, EndWritesNothingUnlessDataCameSinceTheLastEnd) {
    const Filters filters({kAscii85, kFlate});
    EXPECT_EQ(filters.stack->EndFilteredData(), STATUS::kOk);
    EXPECT_EQ(filters.Write(""), STATUS::kOk);
    EXPECT_EQ(filters.Encode(""), "");
    EXPECT_NE(filters.Encode("data"), "");
    EXPECT_EQ(filters.Encode(""), "");
}

TEST(OutputFilterStack, UnfilteredBytesGoStraightToTheProvider) {
    const Filters filters({kAscii85});
    EXPECT_EQ(filters.stack->Write("%%raw\n", 6), STATUS::kOk);
    EXPECT_EQ(filters.provider->Take(), "%%raw\n");
}

TEST(OutputFilterStack, ListsItsFiltersOldestFirstAndNamesOnlyThoseToBeUndone) {
    const Filters filters({kAscii85, kCount, kFlate, kRunLength});
    ASSERT_EQ(filters.stack->GetFilterCount(), 4);
    EXPECT_EQ(filters.stack->GetFilter(0), kAscii85);
    EXPECT_EQ(filters.stack->GetFilter(3), kRunLength);
    EXPECT_STREQ(filters.stack->GetFilterName(0), "/ASCII85Decode");
    EXPECT_STREQ(filters.stack->GetFilterName(1), "");
    EXPECT_STREQ(filters.stack->GetFilterName(2), "/FlateDecode");
    EXPECT_STREQ(filters.stack->GetFilterName(3), "/RunLengthDecode");
    EXPECT_STREQ(filters.stack->GetFilterName(4), "");
    EXPECT_EQ(filters.stack->GetFilter(-1), 0);
}

TEST(OutputFilterStack, ARemovedFilterGivesWhatItHeldBackToTheOnesBelow) {
    const Filters filters({kAscii85, kRunLength});
    filters.Write("M");
    EXPECT_EQ(filters.stack->PopFilter(), STATUS::kOk);
    EXPECT_EQ(filters.stack->GetFilterCount(), 1);
    filters.stack->EndFilteredData();
    EXPECT_EQ(filters.provider->Take(), Filters({kAscii85}).Encode(std::string("\0M\x80", 3)));
}

TEST(OutputFilterStack, RefusesWhatItCannotDo) {
    const auto stack = MakeObject<OutputFilterStack>();
    EXPECT_EQ(stack->WriteFilteredData("a", 1), STATUS::kNoProvider);
    EXPECT_EQ(stack->Attach(nullptr), STATUS::kInvalidArgument);
    EXPECT_EQ(stack->PopFilter(), STATUS::kStackUnderflow);
    EXPECT_EQ(stack->PushFilter(99), STATUS::kNotSupported);
    for (std::size_t i = 0; i < OutputFilterStack::kMaxFilters; ++i) {
        EXPECT_EQ(stack->PushFilter(kRunLength), STATUS::kOk);
    }
    EXPECT_EQ(stack->PushFilter(kRunLength), STATUS::kNotSupported);
}

TEST(OutputFilterStack, TellsThatTheProviderFailed) {
    const Filters filters({kAscii85, kFlate});
    filters.provider->writeStatus = STATUS::kWriteFailed;
    filters.Write("data");
    EXPECT_EQ(filters.stack->EndFilteredData(), STATUS::kWriteFailed);
}

}  // namespace
}  // namespace VANTIX::HOST
