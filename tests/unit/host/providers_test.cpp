// SPDX-License-Identifier: MIT
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <string>
#include <string_view>
#include <thread>

#include "host/io/fileprovider.h"
#include "host/io/memoryprovider.h"
#include "support/temporaryfolder.h"

namespace VANTIX::HOST {
namespace {

std::string ReadAll(IO::IDataProvider& provider, std::int32_t length = 100) {
    std::string text(static_cast<std::size_t>(length), '\0');
    EXPECT_EQ(provider.Read(text.data(), &length), STATUS::kOk);
    text.resize(static_cast<std::size_t>(length));
    return text;
}

Status Put(IO::IDataProvider& provider, std::string_view text) {
    return provider.Write(text.data(), text.size());
}

TInterfacePtr<FileProvider> OpenFile(const std::string& path, int flags) {
    return MakeObject<FileProvider>(open(path.c_str(), flags | O_CREAT, 0600));
}

/// A provider of each kind that can be written and read back.
class ReadableProvider : public testing::TestWithParam<const char*> {
protected:
    TInterfacePtr<IO::IDataProvider> Make() {
        const std::string kind = GetParam();
        if (kind == "File") {
            return OpenFile(mFolder.File("f"), O_RDWR);
        }
        return kind == "Memory" ? MakeObject<MemoryProvider>() : MakeObject<MemoryProvider>(4U);
    }

private:
    TEST::TemporaryFolder mFolder;
};

TEST_P(ReadableProvider, IsWrittenRewoundReadBackAndOverwritten) {
    const TInterfacePtr<IO::IDataProvider> provider = Make();
    EXPECT_EQ(Put(*provider, "0123456789"), STATUS::kOk);
    EXPECT_EQ(provider->GetSize(), 10);
    EXPECT_FALSE(provider->HasMoreData());
    EXPECT_EQ(provider->SetPosition(0, IO::Offset::kBegin), STATUS::kOk);
    EXPECT_TRUE(provider->HasMoreData());
    EXPECT_EQ(ReadAll(*provider, 4), "0123");
    EXPECT_EQ(Put(*provider, "ab"), STATUS::kOk);
    EXPECT_EQ(ReadAll(*provider), "6789");
    EXPECT_EQ(provider->SetPosition(-6, IO::Offset::kEnd), STATUS::kOk);
    EXPECT_EQ(provider->GetPosition(), 4);
    EXPECT_EQ(provider->SetPosition(-1, IO::Offset::kCurrent), STATUS::kOk);
    EXPECT_EQ(ReadAll(*provider), "3ab6789");
    EXPECT_EQ(provider->GetSize(), 10);
}

TEST_P(ReadableProvider, FillsWithZerosBetweenItsEndAndALaterPosition) {
    const TInterfacePtr<IO::IDataProvider> provider = Make();
    Put(*provider, "a");
    EXPECT_EQ(provider->SetPosition(3, IO::Offset::kBegin), STATUS::kOk);
    EXPECT_EQ(ReadAll(*provider), "");
    Put(*provider, "bc");
    provider->SetPosition(0, IO::Offset::kBegin);
    EXPECT_EQ(ReadAll(*provider), std::string("a\0\0bc", 5));
}

TEST_P(ReadableProvider, RefusesPositionsThatAreNone) {
    const TInterfacePtr<IO::IDataProvider> provider = Make();
    Put(*provider, "abc");
    EXPECT_EQ(provider->SetPosition(-1, IO::Offset::kBegin), STATUS::kBadPosition);
    EXPECT_EQ(provider->SetPosition(-4, IO::Offset::kEnd), STATUS::kBadPosition);
    EXPECT_EQ(provider->SetPosition(INT64_MAX, IO::Offset::kCurrent), STATUS::kBadPosition);
    EXPECT_EQ(provider->SetPosition(INT64_MIN, IO::Offset::kCurrent), STATUS::kBadPosition);
    EXPECT_EQ(provider->SetPosition(0, static_cast<IO::Offset>(3)), STATUS::kBadPosition);
    EXPECT_EQ(provider->GetPosition(), 3);
}

INSTANTIATE_TEST_SUITE_P(Providers, ReadableProvider,
                         testing::Values("File", "Memory", "SpilledMemory"),
                         [](const auto& kind) { return std::string(kind.param); });

TEST(MemoryProvider, OffersItsPacketInterface) {
    const auto provider = MakeObject<MemoryProvider>();
    auto* packet =
        FindInterface<IO::IPacketDataProvider>(provider.Get(), IO::IID_IPACKETDATAPROVIDER);
    ASSERT_EQ(packet, provider.Get());
    EXPECT_EQ(packet->Init(), STATUS::kFileExists);
    EXPECT_EQ(packet->Open("r"), STATUS::kOk);
}

TEST(MemoryProvider, ALargeStreamKeepsItsBytesAndItsSizeBeyondTheSpill) {
    const auto provider = MakeObject<MemoryProvider>(1000U);
    std::string expected;
    for (int i = 0; i < 40000; ++i) {
        const std::string number = std::to_string(i) + " ";
        expected += number;
        ASSERT_EQ(Put(*provider, number), STATUS::kOk);
    }
    EXPECT_EQ(provider->GetSize(), static_cast<std::int32_t>(expected.size()));
    EXPECT_EQ(provider->Flush(), STATUS::kOk);
    provider->SetPosition(0, IO::Offset::kBegin);
    EXPECT_TRUE(ReadAll(*provider, provider->GetSize()) == expected);
}

TEST(FileProvider, SmallAndLargeWritesComeOutInOrderAndAreCounted) {
    const TEST::TemporaryFolder folder;
    std::string expected;
    auto provider = OpenFile(folder.File("f"), O_WRONLY);
    for (const std::size_t size : {2U, 65534U, 1U, 200000U, 65535U, 3U}) {
        const std::string piece(size, static_cast<char>('a' + expected.size() % 26));
        ASSERT_EQ(Put(*provider, piece), STATUS::kOk);
        expected += piece;
    }
    EXPECT_EQ(provider->BytesWritten(), expected.size());
    EXPECT_EQ(provider->GetPosition(), static_cast<std::int32_t>(expected.size()));
    provider = nullptr;
    EXPECT_TRUE(TEST::ReadFile(folder.File("f")) == expected);
}

TEST(FileProvider, RemembersThatTheDiskIsFull) {
    const auto provider = MakeObject<FileProvider>(open("/dev/full", O_WRONLY));
    EXPECT_EQ(Put(*provider, "lost"), STATUS::kOk);
    EXPECT_EQ(provider->FirstError(), 0);
    EXPECT_EQ(provider->Flush(), STATUS::kWriteFailed);
    EXPECT_EQ(provider->FirstError(), ENOSPC);
    EXPECT_EQ(Put(*provider, "too"), STATUS::kWriteFailed);
}

TEST(FileProvider, RemembersThatTheReaderOfAPipeWentAway) {
    std::signal(SIGPIPE, SIG_IGN);
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    const auto provider = MakeObject<FileProvider>(ends[1]);
    close(ends[0]);
    EXPECT_EQ(Put(*provider, std::string(70000, 'x')), STATUS::kWriteFailed);
    EXPECT_EQ(provider->FirstError(), EPIPE);
}

TEST(FileProvider, RemembersThatThereIsNoFile) {
    const auto provider = MakeObject<FileProvider>(-1);
    EXPECT_EQ(provider->FirstError(), EBADF);
    EXPECT_EQ(Put(*provider, "x"), STATUS::kWriteFailed);
}

TEST(FileProvider, WaitsForASlowReaderOfANonBlockingPipe) {
    int ends[2];
    ASSERT_EQ(pipe2(ends, O_NONBLOCK), 0);
    std::size_t received = 0;
    std::thread reader([&] {
        char buffer[4096];
        for (ssize_t count = -1; count != 0; count = read(ends[0], buffer, sizeof buffer)) {
            if (count > 0) {
                received += static_cast<std::size_t>(count);
            } else {
                std::this_thread::yield();
            }
        }
    });
    {
        const auto provider = MakeObject<FileProvider>(ends[1]);
        EXPECT_EQ(Put(*provider, std::string(1000000, 'x')), STATUS::kOk);
        EXPECT_EQ(provider->SetPosition(0, IO::Offset::kBegin), STATUS::kBadPosition);
        EXPECT_EQ(provider->SetPosition(0, IO::Offset::kEnd), STATUS::kOk);
    }
    reader.join();
    close(ends[0]);
    EXPECT_EQ(received, 1000000U);
}

TEST(FileProvider, ReportsNoMoreThanTheInterfaceCanSay) {
    const TEST::TemporaryFolder folder;
    const auto provider = OpenFile(folder.File("sparse"), O_WRONLY);
    EXPECT_EQ(provider->SetPosition(std::int64_t{3} << 30U, IO::Offset::kBegin), STATUS::kOk);
    EXPECT_EQ(Put(*provider, "x"), STATUS::kOk);
    EXPECT_EQ(provider->GetSize(), INT32_MAX);
    EXPECT_EQ(provider->GetPosition(), INT32_MAX);
    EXPECT_EQ(provider->BytesWritten(), 1U);
}

}  // namespace
}  // namespace VANTIX::HOST
