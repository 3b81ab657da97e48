// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "core/libsupport/vlogger/logmessage.h"
#include "host/support/dictionary.h"
#include "host/support/keyedproperties.h"
#include "host/support/logger.h"

namespace VANTIX::HOST {
namespace {

TEST(Dictionary, AGetterOfAnotherKindLeavesItsArgumentAlone) {
    const auto dictionary = MakeObject<Dictionary>();
    dictionary->SetBinary(1, "PS  ", 4);
    dictionary->SetWideString(2, u"PS");
    dictionary->SetBool(3, true);
    dictionary->SetInt(4, 1);
    dictionary->SetByte(5, 1);
    for (std::int32_t key = 0; key < 6; ++key) {
        std::vector<std::uint8_t> binary{9};
        std::u16string text = u"old";
        bool flag = false;
        bool filter = false;
        std::int32_t number = 9;
        std::uint8_t byte = 9;
        EXPECT_EQ(dictionary->GetBinary(key, binary), key == 1);
        EXPECT_EQ(dictionary->GetWideString(key, text), key == 2);
        EXPECT_EQ(dictionary->GetBool(key, flag), key == 3);
        EXPECT_EQ(dictionary->GetFilter(key, filter), key == 3);
        EXPECT_EQ(dictionary->GetInt(key, number), key == 4);
        EXPECT_EQ(dictionary->GetByte(key, byte), key == 5);
        EXPECT_EQ(binary, key == 1 ? std::vector<std::uint8_t>({'P', 'S', ' ', ' '})
                                   : std::vector<std::uint8_t>{9});
        EXPECT_EQ(text, key == 2 ? std::u16string(u"PS\0", 3) : u"old");
        EXPECT_EQ(flag && filter, key == 3);
        EXPECT_EQ(number, key == 4 ? 1 : 9);
        EXPECT_EQ(byte, key == 5 ? 1 : 9);
    }
}

TEST(Dictionary, AValueOfAnotherKindReplacesTheOldOne) {
    const auto dictionary = MakeObject<Dictionary>();
    bool flag = false;
    dictionary->SetBool(106, true);
    dictionary->SetInt(106, 7);
    EXPECT_FALSE(dictionary->GetBool(106, flag));
}

TEST(Dictionary, ACopyLivesByItself) {
    auto dictionary = MakeObject<Dictionary>();
    dictionary->SetInt(103, 2);
    TInterfacePtr<IO::IDictionary> copy;
    ASSERT_EQ(dictionary->CopyTo(copy), STATUS::kOk);
    copy->SetBool(110, true);
    dictionary->SetInt(103, 3);
    bool flag = false;
    EXPECT_FALSE(dictionary->GetBool(110, flag));
    dictionary = nullptr;
    std::int32_t level = 0;
    EXPECT_TRUE(copy->GetInt(103, level));
    EXPECT_EQ(level, 2);
}

TEST(Dictionary, RefusesNoTextAndBytesThatAreNone) {
    const auto dictionary = MakeObject<Dictionary>();
    EXPECT_EQ(dictionary->SetWideString(1, nullptr), STATUS::kInvalidArgument);
    EXPECT_EQ(dictionary->SetBinary(1, nullptr, 3), STATUS::kInvalidArgument);
    EXPECT_EQ(dictionary->SetBinary(1, "x", -1), STATUS::kInvalidArgument);
    EXPECT_EQ(dictionary->SetBinary(1, nullptr, 0), STATUS::kOk);
}

TEST(KeyedProperties, LendsBytesWithoutTheirTerminator) {
    const auto properties = MakeObject<KeyedProperties>();
    const char* value = nullptr;
    std::size_t length = 0;
    EXPECT_FALSE(properties->Get("PSNM"_cc, value, length));
    EXPECT_EQ(properties->Set("PSNM"_cc, "SEPCS-1", 7), STATUS::kOk);
    ASSERT_TRUE(properties->Get("PSNM"_cc, value, length));
    EXPECT_EQ(std::string(value, length), "SEPCS-1");
    EXPECT_EQ(properties->Set("PSNM"_cc, nullptr, 1), STATUS::kInvalidArgument);
}

/// Takes the log for the time of a test.
class Log : public testing::Test {
protected:
    Log() {
        SetLogSink([this](const LogEntry& entry) { entries.push_back(entry); });
    }

    ~Log() override { SetLogSink({}); }

    std::vector<LogEntry> entries;
};

TEST_F(Log, AnEntryArrivesWithItsPlaceAndItsKind) {
    LogError("src/module") << "Error = " << 12;
    LogNotice("host/room") << "level " << 0.5;
    ASSERT_EQ(entries.size(), 2U);
    EXPECT_EQ(entries[0].text, "Error = 12");
    EXPECT_EQ(entries[0].file, "src/module");
    EXPECT_EQ(entries[0].type, LogType::kError);
    EXPECT_EQ(entries[0].level, LogLevel::kHigh);
    EXPECT_NE(entries[0].function.find("AnEntryArrivesWithItsPlaceAndItsKind"), std::string::npos);
    EXPECT_EQ(entries[1].text, "level 0.5");
    EXPECT_EQ(entries[1].type, LogType::kNotice);
}

TEST_F(Log, WideTextBecomesUTF8AndLoneSurrogatesAreReplaced) {
    std::wstring text;
    for (const int code : {0x41, 0xE9, 0x20AC, 0x1F600, 0xD800}) {
        text.push_back(static_cast<std::wstring::value_type>(code));
    }
    VLoggerLibInterface::GetInstance()->QLogMessage(LogType::kNotice, nullptr, nullptr, 1, text,
                                                    LogLevel::kNormal);
    ASSERT_EQ(entries.size(), 1U);
    EXPECT_EQ(entries[0].text, "A\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80\xEF\xBF\xBD");
    EXPECT_EQ(entries[0].file, "");
}

TEST_F(Log, AReceiverMayThrowAndMayReplaceItself) {
    SetLogSink([](const LogEntry&) {
        SetLogSink({});
        throw std::runtime_error("full");
    });
    LogError("host/room") << "first";
    LogError("host/room") << "dropped";
    EXPECT_TRUE(entries.empty());
}

}  // namespace
}  // namespace VANTIX::HOST
