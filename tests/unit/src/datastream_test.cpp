// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <limits>
#include <string>

#include "postscriptdatastream/ipostscriptdatastream.h"
#include "postscriptdatastream/postscriptstreamstack.h"
#include "support/fakedictionary.h"
#include "support/memoryprovider.h"
#include "support/recordinglogger.h"

namespace VANTIX::PS {
namespace {

using TEST::MemoryProvider;
using TEST::RecordingLogger;

class DataStream : public ::testing::Test {
protected:
    DataStream()
        : provider(MakeObject<MemoryProvider>()),
          stream(TInterfacePtr<IPostScriptDataStream>::Adopt(
              CreatePostscriptDataStream(provider.Get()))) {
        RecordingLogger::Get().Clear();
    }

    template <class T>
    std::string Written(const T& value) {
        *stream << value;
        return provider->Take();
    }

    std::string Bytes(std::size_t count) {
        const std::vector<std::uint8_t> data(count, 0xA5);
        stream->WriteBytes(data.data(), static_cast<std::int32_t>(count));
        return provider->Take();
    }

    TInterfacePtr<MemoryProvider> provider;
    TInterfacePtr<IPostScriptDataStream> stream;
};

struct RealCase {
    double value;
    const char* text;
};

TEST_F(DataStream, RealsAreRoundedToSixPlacesWithoutExponent) {
    const RealCase cases[] = {
        {12.345, "12.345"},
        {0.05, "0.05"},
        {2.0, "2"},
        {0.9999999, "1"},
        {100.0, "100"},
        {0.000001, "0.000001"},
        {0.0000004, "0"},
        {-0.0000004, "-0"},
        {-0.0, "0"},
        {-1234.5, "-1234.5"},
        {0.1, "0.1"},
        {1e12, "1000000000000"},
        {1.0000005, "1.000001"},
        {-0.5, "-0.5"},
        {0.000123, "0.000123"},
        {999999.999999, "999999.999999"},
    };
    for (const RealCase& c : cases) {
        EXPECT_EQ(Written(c.value), c.text);
    }
    EXPECT_EQ(Written(1.5F), "1.5");
    EXPECT_EQ(Written(0.1F), "0.1");
    EXPECT_TRUE(RecordingLogger::Get().Entries().empty());
}

TEST_F(DataStream, RealsBeyondSixtyFourBitsAreClampedAndLogged) {
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    EXPECT_EQ(Written(9.2e12), "9200000000000");
    EXPECT_TRUE(RecordingLogger::Get().Entries().empty());
    for (const double value : {1e13, 1e300, kInfinity}) {
        EXPECT_EQ(Written(value), "9223372036854.775807");
        EXPECT_EQ(Written(-value), "-9223372036854.775807");
    }
    EXPECT_EQ(Written(std::numeric_limits<float>::quiet_NaN()), "0");
    EXPECT_EQ(RecordingLogger::Get().Count("clamped"), 7);
}

TEST_F(DataStream, IntegersAreDecimalAtFirst) {
    EXPECT_EQ(Written(std::numeric_limits<std::int64_t>::min()), "-9223372036854775808");
    EXPECT_EQ(Written(std::numeric_limits<std::uint64_t>::max()), "18446744073709551615");
    EXPECT_EQ(Written(std::numeric_limits<std::int32_t>::min()), "-2147483648");
    EXPECT_EQ(Written(std::uint32_t{0xFFFFFFFF}), "4294967295");
    EXPECT_EQ(Written(std::int16_t{-32768}), "-32768");
    EXPECT_EQ(Written(std::uint16_t{65535}), "65535");
    EXPECT_EQ(Written(std::int8_t{-1}), "-1");
    EXPECT_EQ(Written(std::uint8_t{200}), "200");
    EXPECT_EQ(Written(true), "true");
}

TEST_F(DataStream, OnlyUnsignedIntegersFollowTheRadix) {
    stream->SetHexMode().SetUpperCase();
    EXPECT_EQ(Written(std::uint8_t{10}), "0A");
    EXPECT_EQ(Written(std::uint16_t{0xFEFF}), "FEFF");
    EXPECT_EQ(Written(std::uint16_t{1}), "0001");
    EXPECT_EQ(Written(std::uint32_t{0}), "0");
    EXPECT_EQ(Written(std::uint32_t{0xABC}), "ABC");
    EXPECT_EQ(Written(std::uint64_t{0xFEDCBA9876543210}), "FEDCBA9876543210");
    EXPECT_EQ(Written(std::int8_t{-1}), "-1");
    EXPECT_EQ(Written(std::int16_t{-1}), "-1");
    EXPECT_EQ(Written(std::int32_t{255}), "255");
    EXPECT_EQ(Written(std::int64_t{255}), "255");
    stream->SetLowerCase();
    EXPECT_EQ(Written(std::uint16_t{0xFEFF}), "feff");
    stream->SetMode2();
    EXPECT_EQ(Written(std::uint16_t{0xFEFF}), "65279");
}

TEST_F(DataStream, SeparatedScalarsEndInABlankWithinTheSameWrite) {
    stream->SetSeparated();
    *stream << std::int32_t{7} << 0.25F << false << std::uint8_t{9};
    EXPECT_EQ(provider->writes, 4);
    EXPECT_EQ(provider->Take(), "7 0.25 false 9 ");
    stream->ClearSeparated();
    EXPECT_EQ(Written(true), "true");
}

TEST_F(DataStream, ByteLinesBreakBehindUnsignedBytesOnly) {
    stream->SetByteLines();
    EXPECT_EQ(Written(std::uint8_t{10}), "10\n");
    EXPECT_EQ(Written(std::int8_t{10}), "10");
    stream->SetSeparated();
    EXPECT_EQ(Written(std::uint8_t{10}), "10 ");
    stream->SetHexMode();
    EXPECT_EQ(Written(std::uint8_t{10}), "0a\n ");
    EXPECT_EQ(Written(std::uint16_t{10}), "000a ");
    stream->ClearSeparatedAndByteLines();
    EXPECT_EQ(Written(std::uint8_t{10}), "0a");
}

TEST_F(DataStream, GuidsAndTextTakeTheFormOfTheirParts) {
    constexpr GUID kId = "00C7F9E5-07E0-4B14-AC27-09483C2E02D3"_guid;
    stream->SetHexMode().SetUpperCase();
    EXPECT_EQ(Written(kId), "C7F9E507E04B14AC2709483C2E02D3");
    EXPECT_EQ(Written(CoreString(u"\uFEFFA")), "FEFF0041");
    EXPECT_EQ(Written(CoreString()), "");
    stream->SetDecimalMode().SetSeparated();
    EXPECT_EQ(Written(kId), "13105637 2016 19220 172 39 9 72 60 46 2 211 ");
    EXPECT_EQ(Written(CoreString(u"AB")), "65 66 ");
}

TEST_F(DataStream, HexLinesBreakEveryFortyBytesAcrossCalls) {
    stream->SetSeparated().SetHexMode();
    const std::string first = Bytes(100);
    ASSERT_EQ(first.size(), 202U);
    EXPECT_EQ(first[80], '\n');
    EXPECT_EQ(first[161], '\n');
    const std::string second = Bytes(20);
    EXPECT_EQ(second.size(), 41U);
    EXPECT_EQ(second.back(), '\n');
}

TEST_F(DataStream, TheLineCounterIsResetByTheOperationsThatSaySo) {
    using Operation = std::function<void(IPostScriptDataStream&)>;
    const Operation resets[] = {
        [](auto& s) { s.SetSeparatedAndResetCounter(); },
        [](auto& s) { s.SetDecimalMode().SetHexMode(); },
        [](auto& s) { s.SetMode2().SetHexMode(); },
        [](auto& s) { s.ClearSeparatedAndResetCounter().SetSeparated(); },
    };
    for (const Operation& reset : resets) {
        stream->SetHexMode().SetSeparatedAndResetCounter();
        Bytes(39);
        reset(*stream);
        EXPECT_EQ(Bytes(1), "a5");
    }
    const Operation others[] = {
        [](auto& s) { s.SetHexMode(); },
        [](auto& s) { s.ClearSeparated().SetSeparated(); },
        [](auto& s) { s.SetByteLines().ClearByteLines(); },
    };
    for (const Operation& other : others) {
        stream->SetHexMode().SetSeparatedAndResetCounter();
        Bytes(39);
        other(*stream);
        EXPECT_EQ(Bytes(1), "a5\n");
    }
}

TEST_F(DataStream, BytesAreRawOrHexByMode) {
    const std::uint8_t data[] = {0x00, 0xFF, '(', '\n'};
    stream->WriteBytes(data, 4);
    EXPECT_EQ(provider->Take(), std::string("\0\xFF(\n", 4));
    stream->SetHexMode().WriteBytes(data, 4).WriteBytes(nullptr, 4).WriteBytes(data, -1);
    EXPECT_EQ(provider->Take(), "00ff280a");
    EXPECT_EQ(Bytes(1000).size(), 2000U);
}

TEST_F(DataStream, StringsEscapeWhatAnInterpreterWouldMisread) {
    stream->WriteString("a(b)\\c");
    EXPECT_EQ(provider->Take(), "(a\\(b\\)\\\\c)");
    stream->WriteString("\b\t\n\f\r");
    EXPECT_EQ(provider->Take(), "(\\\b\\\t\\\n\\\f\\\r)");
    stream->WriteString("\xA8\xE9");  // 0xA8 is "(" in its low seven bits
    EXPECT_EQ(provider->Take(), "(\\\xA8\xE9)");
    stream->WriteString(nullptr);
    EXPECT_EQ(provider->Take(), "()");
    const std::string many(1000, ')');
    stream->WriteString(many.c_str());
    EXPECT_EQ(provider->Take().size(), 2002U);
}

TEST_F(DataStream, HexStringsKeepTheLastOfARunOfLineEnds) {
    stream->SetHexMode().WriteString("A\r\n\rB\n");
    EXPECT_EQ(provider->Take(), "<410d420a>");
}

TEST_F(DataStream, CommentsNeverLeaveTheirLines) {
    const auto comment = [this](const char* text, bool multiline) {
        stream->WriteComment(text, static_cast<std::uint32_t>(std::strlen(text)), multiline);
        return provider->Take();
    };
    EXPECT_EQ(comment("one\r\ntwo\n", true), "% one\n% two\n");
    EXPECT_EQ(comment("one\n\n\ntwo\r\n", true), "% one\n% two\n");
    EXPECT_EQ(comment("one", true), "% one");
    EXPECT_EQ(comment("one\ntwo", false), "% one\ntwo");
    EXPECT_EQ(comment("", true), "% ");
}

TEST_F(DataStream, NamesFollowTheModeOfBytes) {
    stream->WriteName("Foo Bar", 3);
    EXPECT_EQ(provider->writes, 1);
    EXPECT_EQ(provider->Take(), "/Foo");
    stream->SetHexMode().WriteName("Foo", 3);
    EXPECT_EQ(provider->Take(), "/466f6f");
}

TEST_F(DataStream, CopiesAProviderFromItsPositionAndAStreamFromItsBeginning) {
    const std::string text(100000, 'x');
    const auto source = MakeObject<MemoryProvider>(text + "end");
    source->position = text.size();
    stream->WriteDataProvider(*source);
    EXPECT_EQ(provider->Take(), "end");

    const auto other =
        TInterfacePtr<IPostScriptDataStream>::Adopt(CreatePostscriptDataStream(source.Get()));
    stream->WriteDataStream(*other);
    EXPECT_EQ(provider->Take(), text + "end");
    EXPECT_EQ(source->flushes, 1);

    *stream << "self";
    stream->WriteDataStream(*stream);
    EXPECT_EQ(provider->Take(), "self");
}

TEST_F(DataStream, WhatItCannotDoIsLoggedAndChangesNothing) {
    TEST::FakeDictionary dictionary;
    const IObject& object = *provider;
    *stream << object << static_cast<const IO::IDictionary&>(dictionary);
    double number = 1.5;
    CoreString text(u"kept");
    *stream >> number;
    *stream >> text;
    EXPECT_EQ(RecordingLogger::Get().Count("Unimplemented"), 4);
    EXPECT_EQ(RecordingLogger::Get().Entries().front().file, "src/postscriptdatastream");
    EXPECT_EQ(number, 1.5);
    EXPECT_EQ(text, CoreString(u"kept"));
    EXPECT_EQ(provider->Take(), "");
    *stream << static_cast<const char*>(nullptr);
    EXPECT_EQ(provider->Take(), "");
}

TEST_F(DataStream, HoldsOneReferenceToItsProvider) {
    EXPECT_EQ(provider->AddRef(), 3U);
    provider->Release();
    EXPECT_EQ(stream->GetPacketDataProvider(), provider.Get());
    const auto other = MakeObject<MemoryProvider>();
    stream->SetDataProvider(other.Get());
    EXPECT_EQ(provider->AddRef(), 2U);
    provider->Release();
    stream = nullptr;
    EXPECT_EQ(other->AddRef(), 2U);
    other->Release();
    EXPECT_EQ(CreatePostscriptDataStream(nullptr), nullptr);
}

TEST(StreamStack, PopOnAnEmptyStackIsAnUnderflow) {
    RecordingLogger::Get().Clear();
    PostScriptStreamStack stack;
    EXPECT_EQ(stack.Top(), nullptr);
    EXPECT_EQ(stack.Base(), nullptr);
    EXPECT_EQ(stack.Pop(), STATUS::kStackUnderflow);
    EXPECT_EQ(RecordingLogger::Get().Messages(), "PostScript Data stream stack underflow.\n");

    const auto provider = MakeObject<MemoryProvider>();
    const auto page =
        TInterfacePtr<IPostScriptDataStream>::Adopt(CreatePostscriptDataStream(provider.Get()));
    const auto form =
        TInterfacePtr<IPostScriptDataStream>::Adopt(CreatePostscriptDataStream(provider.Get()));
    stack.Push(page.Get());
    stack.Push(form.Get());
    EXPECT_EQ(stack.Top(), form.Get());
    EXPECT_EQ(stack.Base(), page.Get());
    EXPECT_EQ(stack.Pop(), STATUS::kOk);
    EXPECT_EQ(stack.Top(), page.Get());
    EXPECT_EQ(stack.Pop(), STATUS::kOk);
    EXPECT_EQ(stack.Pop(), STATUS::kStackUnderflow);
    EXPECT_EQ(page->AddRef(), 2U);
    page->Release();
}

}  // namespace
}  // namespace VANTIX::PS
