// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "postscriptdatastream/ipostscriptdatastream.h"
#include "support/memoryprovider.h"
#include "support/recordinglogger.h"
#include "wpacketdataprovider.h"

namespace VANTIX::IO {
namespace {

using TEST::RecordingLogger;

/// A folder of its own for temporary files, in TMPDIR while it lives.
class ScopedTempFolder {
public:
    ScopedTempFolder() : mPath(std::filesystem::temp_directory_path() / "norvane-XXXXXX") {
        std::string path = mPath.string();
        mPath = mkdtemp(path.data());
        const char* before = std::getenv("TMPDIR");
        mBefore = before == nullptr ? "" : before;
        setenv("TMPDIR", mPath.c_str(), 1);
    }

    ~ScopedTempFolder() {
        mBefore.empty() ? unsetenv("TMPDIR") : setenv("TMPDIR", mBefore.c_str(), 1);
        std::filesystem::remove_all(mPath);
    }

    ScopedTempFolder(const ScopedTempFolder&) = delete;
    ScopedTempFolder& operator=(const ScopedTempFolder&) = delete;
    ScopedTempFolder(ScopedTempFolder&&) = delete;
    ScopedTempFolder& operator=(ScopedTempFolder&&) = delete;

    [[nodiscard]] std::filesystem::path operator/(const char* name) const { return mPath / name; }

    [[nodiscard]] bool IsEmpty() const { return std::filesystem::is_empty(mPath); }

private:
    std::filesystem::path mPath;
    std::string mBefore;
};

constexpr std::int64_t kLimit = BasePacketDataProvider::kMemoryBytes;

class PacketDataProvider : public ::testing::Test {
protected:
    PacketDataProvider() { RecordingLogger::Get().Clear(); }

    static TInterfacePtr<IPacketDataProvider> Create() {
        return TInterfacePtr<IPacketDataProvider>::Adopt(CreateWPacketDataProvider());
    }

    static std::string ReadAt(IPacketDataProvider& provider, std::int64_t position,
                              std::int32_t length) {
        EXPECT_EQ(provider.SetPosition(position, Offset::kBegin), STATUS::kOk);
        std::string text(static_cast<std::size_t>(length), '?');
        EXPECT_EQ(provider.Read(text.data(), &length), STATUS::kOk);
        text.resize(static_cast<std::size_t>(length));
        return text;
    }

    static Status WriteText(IPacketDataProvider& provider, const std::string& text) {
        return provider.Write(text.data(), text.size());
    }

    ScopedTempFolder folder;
};

/// The same operations with the bytes in memory, around the limit, and in a file.
class PacketDataProviderAt : public PacketDataProvider,
                             public ::testing::WithParamInterface<std::int64_t> {};

TEST_P(PacketDataProviderAt, WhatWasWrittenIsReadBackWhereverItLies) {
    const auto provider = Create();
    ASSERT_TRUE(provider);
    const std::int64_t start = GetParam();
    const std::string fill(static_cast<std::size_t>(start), 'f');
    EXPECT_EQ(WriteText(*provider, fill), STATUS::kOk);
    EXPECT_EQ(WriteText(*provider, "0123456789"), STATUS::kOk);
    EXPECT_EQ(provider->GetSize(), start + 10);  // before any flush
    EXPECT_EQ(provider->GetPosition(), start + 10);
    EXPECT_EQ(provider->Flush(), STATUS::kOk);

    EXPECT_EQ(ReadAt(*provider, 0, static_cast<std::int32_t>(start) + 100), fill + "0123456789");
    EXPECT_FALSE(provider->HasMoreData());
    EXPECT_EQ(ReadAt(*provider, start + 2, 3), "234");
    EXPECT_TRUE(provider->HasMoreData());
    EXPECT_EQ(WriteText(*provider, "XY"), STATUS::kOk);  // right behind a read
    std::int32_t length = 2;
    char next[2] = {};
    provider->Read(next, &length);  // right behind a write
    EXPECT_EQ(std::string(next, 2), "78");
    EXPECT_EQ(ReadAt(*provider, start, 10), "01234XY789");
    EXPECT_EQ(provider->GetSize(), start + 10);

    EXPECT_EQ(provider->SetPosition(-4, Offset::kEnd), STATUS::kOk);
    EXPECT_EQ(provider->SetPosition(6, Offset::kCurrent), STATUS::kOk);
    EXPECT_EQ(WriteText(*provider, "far"), STATUS::kOk);
    EXPECT_EQ(ReadAt(*provider, start + 8, 10), std::string("89\0\0far", 7));
    EXPECT_TRUE(RecordingLogger::Get().Entries().empty());
    EXPECT_TRUE(folder.IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Stores, PacketDataProviderAt,
                         ::testing::Values(0, 1000, kLimit - 10, kLimit - 9, kLimit - 3, kLimit,
                                           3 * kLimit));

TEST_F(PacketDataProvider, PositionsThatAreNoneAreRefused) {
    const auto provider = Create();
    EXPECT_EQ(provider->SetPosition(0, static_cast<Offset>(3)), STATUS::kBadPosition);
    EXPECT_EQ(RecordingLogger::Get().Messages(), "New Offset type?\n");
    EXPECT_EQ(provider->SetPosition(-1, Offset::kBegin), STATUS::kBadPosition);
    constexpr std::int64_t kFar = std::numeric_limits<std::int64_t>::max();
    EXPECT_EQ(provider->SetPosition(std::numeric_limits<std::int64_t>::min(), Offset::kEnd),
              STATUS::kBadPosition);
    EXPECT_EQ(provider->SetPosition(kFar, Offset::kBegin), STATUS::kOk);
    EXPECT_EQ(provider->SetPosition(1, Offset::kCurrent), STATUS::kBadPosition);
    EXPECT_EQ(WriteText(*provider, "x"), STATUS::kWriteFailed);
    EXPECT_EQ(ReadAt(*provider, kFar, 10), "");
    EXPECT_EQ(provider->GetSize(), 0);
}

TEST_F(PacketDataProvider, StatesAndUnusedOperationsAnswerAsStated) {
    const auto provider = Create();
    EXPECT_EQ(provider->GetStateCode(), 2U);
    EXPECT_FALSE(provider->HasStateCodeOne());
    EXPECT_EQ(provider->SetStateCode(2), 1U);
    EXPECT_TRUE(provider->HasStateCodeOne());
    EXPECT_EQ(provider->SetStateCode(0), 0U);
    EXPECT_EQ(provider->GetStateCode(), 0U);
    EXPECT_TRUE(provider->GetFlushOnClose());
    EXPECT_EQ(provider->Init(), STATUS::kFileExists);
    EXPECT_EQ(provider->Open("r"), STATUS::kOk);
    EXPECT_EQ(provider->Close(), STATUS::kOk);
    EXPECT_TRUE(RecordingLogger::Get().Entries().empty());
    provider->InitHandleBased(1);
    EXPECT_EQ(provider->InitReadOnlyMem("x", 1), STATUS::kNotImplemented);
    EXPECT_EQ(provider->SetSize(10), STATUS::kNotImplemented);
    EXPECT_EQ(RecordingLogger::Get().Count("Unimplemented."), 3);
}

TEST_F(PacketDataProvider, WithoutAFolderThereIsNoProvider) {
    setenv("TMPDIR", "/nowhere/at/all", 1);
    EXPECT_FALSE(Create());
    EXPECT_EQ(RecordingLogger::Get().Messages(),
              "Unable to get temporary folder path, failing temporary file generation!\n"
              "Unable to get temporary file's path from lengthy way also, failing temporary file "
              "generation!\n");
    std::string path;
    EXPECT_EQ(WPacketDataProvider::GetUniqueTempFilePath(path), STATUS::kNoTempFolder);
    const auto provider = MakeObject<WPacketDataProvider>();
    EXPECT_EQ(provider->Init(), STATUS::kOpenFailed);
    EXPECT_EQ(WriteText(*provider, "x"), STATUS::kWriteFailed);
}

TEST_F(PacketDataProvider, ATakenNameIsLeftAloneAndRefused) {
    const std::string path = folder / "PD-taken1";
    std::ofstream(path) << "theirs";
    PLATFORM::FilePtr file;
    EXPECT_EQ(WPacketDataProvider::InitFileObj(path, file), STATUS::kFileExists);
    EXPECT_TRUE(RecordingLogger::Get().Has("already exists!"));
    EXPECT_EQ(std::filesystem::file_size(path), 6U);
    const std::string link = folder / "PD-link01";
    std::filesystem::create_symlink("PD-target", link);
    EXPECT_EQ(WPacketDataProvider::InitFileObj(link, file), STATUS::kFileExists);
    EXPECT_EQ(WPacketDataProvider::InitFileObj(folder / "no/file", file), STATUS::kOpenFailed);
    EXPECT_FALSE(file);
}

TEST_F(PacketDataProvider, FilesHaveNoNameAndBelongToTheirOwner) {
    std::string first;
    std::string second;
    WPacketDataProvider::GetUniqueTempFilePath(first);
    WPacketDataProvider::GetUniqueTempFilePath(second);
    EXPECT_NE(first, second);
    EXPECT_EQ(first.find((folder / "PD-").string()), 0U);
    EXPECT_EQ(first.size(), (folder / "PD-XXXXXX").string().size());
    PLATFORM::FilePtr file;
    ASSERT_EQ(WPacketDataProvider::InitFileObj(first, file), STATUS::kOk);
    EXPECT_TRUE(folder.IsEmpty());

    struct stat status {};

    ASSERT_EQ(fstat(fileno(file.get()), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0600U);
    EXPECT_EQ(status.st_nlink, 0U);
}

TEST_F(PacketDataProvider, ManyPacketsDoNotExhaustTheFileDescriptors) {
    rlimit before{};
    getrlimit(RLIMIT_NOFILE, &before);
    rlimit tight = before;
    tight.rlim_cur = 32;
    setrlimit(RLIMIT_NOFILE, &tight);
    std::vector<TInterfacePtr<IPacketDataProvider>> packets;
    for (int i = 0; i < 500; ++i) {
        packets.push_back(Create());
        ASSERT_TRUE(packets.back());
        EXPECT_EQ(WriteText(*packets.back(), "font " + std::to_string(i)), STATUS::kOk);
    }
    EXPECT_TRUE(RecordingLogger::Get().Entries().empty());
    // Large ones beyond the limit stay in memory rather than being lost.
    const std::string large(static_cast<std::size_t>(kLimit) + 1, 'x');
    for (std::size_t i = 0; i < 40; ++i) {
        EXPECT_EQ(WriteText(*packets[i], large), STATUS::kOk);
        EXPECT_EQ(WriteText(*packets[i], "end"), STATUS::kOk);
    }
    setrlimit(RLIMIT_NOFILE, &before);
    EXPECT_TRUE(RecordingLogger::Get().Has("already opened!"));
    for (std::size_t i = 0; i < packets.size(); ++i) {
        const std::string text = "font " + std::to_string(i) + (i < 40 ? large + "end" : "");
        EXPECT_EQ(ReadAt(*packets[i], 0, 300000), text);
    }
}

TEST_F(PacketDataProvider, ADataStreamIsCopiedThroughIt) {
    const auto packet = Create();
    const auto font = TInterfacePtr<PS::IPostScriptDataStream>::Adopt(
        PS::CreatePostscriptDataStream(packet.Get()));
    EXPECT_EQ(font->GetPacketDataProvider(), packet.Get());
    std::string expected;
    for (std::int32_t i = 0; i < 60000; ++i) {
        *font << i << "\n";
        expected += std::to_string(i) + "\n";
    }
    const auto sink = MakeObject<TEST::MemoryProvider>();
    const auto page =
        TInterfacePtr<PS::IPostScriptDataStream>::Adopt(PS::CreatePostscriptDataStream(sink.Get()));
    page->WriteDataStream(*font);
    EXPECT_EQ(sink->contents, expected);
}

}  // namespace
}  // namespace VANTIX::IO
