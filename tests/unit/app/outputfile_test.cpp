// SPDX-License-Identifier: MIT
#include "app/outputfile.h"

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <thread>

#include "support/temporaryfolder.h"

namespace VANTIX::APP {
namespace {

namespace fs = std::filesystem;

void Append(const OutputFile& file, const std::string& text) {
    const int writer = file.OpenWriter();
    EXPECT_EQ(write(writer, text.data(), text.size()), static_cast<ssize_t>(text.size()));
    close(writer);
}

std::size_t FilesIn(const fs::path& folder) {
    return static_cast<std::size_t>(
        std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
}

class OutputFileTest : public testing::TestWithParam<OutputFile::Staging> {
protected:
    static std::unique_ptr<OutputFile> Create(const std::string& path) {
        std::string error;
        auto file = OutputFile::Create(path, error, GetParam());
        EXPECT_NE(file, nullptr) << error;
        return file;
    }

    static void Replace(const std::string& path, const std::string& text) {
        std::string error;
        const auto file = Create(path);
        Append(*file, text);
        EXPECT_TRUE(file->Commit(error)) << error;
    }

    TEST::TemporaryFolder mFolder;
    std::string mPath = mFolder.File("out.ps");
};

INSTANTIATE_TEST_SUITE_P(Staging, OutputFileTest,
                         testing::Values(OutputFile::Staging::kUnnamed,
                                         OutputFile::Staging::kNamed));

TEST_P(OutputFileTest, OldFileStaysUntilTheCommit) {
    TEST::WriteFile(mPath, "old");
    std::string error;
    const auto file = Create(mPath);
    Append(*file, "new");
    EXPECT_EQ(TEST::ReadFile(mPath), "old");
    ASSERT_TRUE(file->Commit(error)) << error;
    EXPECT_EQ(TEST::ReadFile(mPath), "new");
    EXPECT_EQ(FilesIn(mFolder.Path()), 1U);
}

TEST_P(OutputFileTest, WithoutCommitNothingIsLeft) {
    Append(*Create(mPath), "half");
    EXPECT_EQ(FilesIn(mFolder.Path()), 0U);
}

TEST_P(OutputFileTest, InterruptedRunLeavesNothing) {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        const pid_t child = fork();
        if (child == 0) {
            const auto file = Create(mPath);
            Append(*file, "half");
            raise(signal);
            _exit(0);
        }
        int status = 0;
        waitpid(child, &status, 0);
        EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == signal) << signal;
        EXPECT_EQ(FilesIn(mFolder.Path()), 0U) << signal;
    }
}

TEST_P(OutputFileTest, ReplacesTheTargetOfALinkAndKeepsItsPermissions) {
    fs::create_directory(mFolder.Path() / "deep");
    const std::string target = mFolder.File("deep/target.ps");
    TEST::WriteFile(target, "old");
    fs::permissions(target, fs::perms(0640));
    fs::create_symlink("deep/target.ps", mFolder.File("first"));
    fs::create_symlink("first", mPath);
    Replace(mPath, "new");
    EXPECT_TRUE(fs::is_symlink(mPath));
    EXPECT_TRUE(fs::is_symlink(mFolder.File("first")));
    EXPECT_EQ(TEST::ReadFile(target), "new");
    EXPECT_EQ(fs::status(target).permissions(), fs::perms(0640));
}

TEST_P(OutputFileTest, MakesTheTargetOfADanglingLink) {
    fs::create_symlink("later.ps", mPath);
    Replace(mPath, "new");
    EXPECT_TRUE(fs::is_symlink(mPath));
    EXPECT_EQ(TEST::ReadFile(mFolder.File("later.ps")), "new");
}

TEST_P(OutputFileTest, NewFilesHaveTheUsualPermissions) {
    const mode_t mask = umask(027);
    Replace(mPath, "new");
    umask(mask);
    EXPECT_EQ(fs::status(mPath).permissions(), fs::perms(0640));
}

TEST(OutputFile, WritesAPipeStraight) {
    const TEST::TemporaryFolder folder;
    const std::string path = folder.File("pipe");
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    std::string received;
    std::thread reader([&] { received = TEST::ReadFile(path); });
    std::string error;
    auto file = OutputFile::Create(path, error);
    ASSERT_NE(file, nullptr) << error;
    Append(*file, "through");
    EXPECT_TRUE(file->Commit(error)) << error;
    reader.join();
    EXPECT_EQ(received, "through");
    EXPECT_TRUE(fs::is_fifo(path));
}

TEST(OutputFile, SaysWhyItCannotBeWritten) {
    const TEST::TemporaryFolder folder;
    fs::create_symlink("loop", folder.File("loop"));
    for (const std::string& path :
         {folder.Path().string(), folder.File("none/out.ps"), folder.File("loop")}) {
        std::string error;
        EXPECT_EQ(OutputFile::Create(path, error), nullptr) << path;
        EXPECT_FALSE(error.empty()) << path;
    }
}

TEST(OutputFile, KnowsAFileByAllItsNames) {
    const TEST::TemporaryFolder folder;
    const std::string path = folder.File("a");
    TEST::WriteFile(path, "x");
    fs::create_symlink("a", folder.File("soft"));
    fs::create_hard_link(path, folder.File("hard"));
    TEST::WriteFile(folder.File("b"), "x");
    EXPECT_TRUE(IsSameFile(path, folder.File("soft")));
    EXPECT_TRUE(IsSameFile(folder.File("hard"), path));
    EXPECT_TRUE(IsSameFile(path, folder.File("../" + folder.Path().filename().string() + "/a")));
    EXPECT_FALSE(IsSameFile(path, folder.File("b")));
    EXPECT_FALSE(IsSameFile(path, folder.File("none")));
    EXPECT_FALSE(IsSameFile("/dev/null", "/dev/null"));
}

}  // namespace
}  // namespace VANTIX::APP
