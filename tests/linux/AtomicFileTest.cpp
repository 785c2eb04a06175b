// SPDX-License-Identifier: MIT
#include "linux/AtomicFile.h"

#include "children/SystemLimits.h"
#include "linux/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <atomic>
#include <cerrno>
#include <filesystem>
#include <stop_token>
#include <string>
#include <thread>

namespace vorla {
namespace {

namespace fs = std::filesystem;

mode_t modeOf(const std::string& path) {
    struct stat status = {};
    EXPECT_EQ(stat(path.c_str(), &status), 0);
    return status.st_mode & 07777U;
}

TEST(AtomicFile, writesANewFileWithTheGivenMode) {
    const TemporaryFolder folder;
    EXPECT_EQ(writeFileAtomically(folder.at("file"), "content", 0640), 0);
    EXPECT_EQ(folder.read("file"), "content");
    EXPECT_EQ(modeOf(folder.at("file")), 0640U);
    EXPECT_EQ(folder.count(""), 1);
}

TEST(AtomicFile, replacesContentAndModeOfAFile) {
    const TemporaryFolder folder;
    const auto path = folder.write("file", "a longer content than the new one");
    EXPECT_EQ(writeFileAtomically(path, std::string("n\0w", 3), 0600), 0);
    EXPECT_EQ(folder.read("file"), std::string("n\0w", 3));
    EXPECT_EQ(modeOf(path), 0600U);
    EXPECT_EQ(folder.count(""), 1);
}

TEST(AtomicFile, givesTheFileANewIdentityInsteadOfWritingIntoIt) {
    const TemporaryFolder folder;
    const auto path = folder.write("file", "old");
    fs::create_hard_link(path, folder.at("other name of the old file"));
    EXPECT_EQ(writeFileAtomically(path, "new", 0600), 0);
    EXPECT_EQ(folder.read("other name of the old file"), "old");
}

TEST(AtomicFile, showsAReaderNothingButWholeContents) {
    const TemporaryFolder folder;
    const auto path = folder.write("file", std::string(100'000, '0'));
    std::atomic<int> reads = 0;
    std::atomic<bool> done = false;
    std::jthread writer([&](const std::stop_token& failed) {
        // One content after another until some were read on the way.
        for (char digit = '1'; reads < 100 && !failed.stop_requested();
             digit = digit == '9' ? '1' : static_cast<char>(digit + 1)) {
            EXPECT_EQ(writeFileAtomically(path, std::string(100'000, digit), 0600), 0);
        }
        done = true;
    });
    while (!done) {
        const auto content = readFile(path, 200'000);
        ++reads;
        ASSERT_EQ(content.error, 0);
        ASSERT_EQ(content.bytes.size(), 100'000U);
        ASSERT_EQ(content.bytes, std::string(100'000, content.bytes.front()));
    }
}

TEST(AtomicFile, writesTheTargetOfASymbolicLink) {
    const TemporaryFolder folder;
    folder.write("elsewhere/target", "old");
    fs::create_symlink("elsewhere/target", folder.at("middle"));
    fs::create_symlink(folder.at("middle"), folder.at("link"));
    EXPECT_EQ(writeFileAtomically(folder.at("link"), "new", 0600), 0);
    EXPECT_TRUE(fs::is_symlink(folder.at("link")));
    EXPECT_TRUE(fs::is_symlink(folder.at("middle")));
    EXPECT_FALSE(fs::is_symlink(folder.at("elsewhere/target")));
    EXPECT_EQ(folder.read("elsewhere/target"), "new");
}

TEST(AtomicFile, createsTheMissingTargetOfASymbolicLink) {
    const TemporaryFolder folder;
    fs::create_symlink("target", folder.at("link"));
    EXPECT_EQ(writeFileAtomically(folder.at("link"), "new", 0600), 0);
    EXPECT_TRUE(fs::is_symlink(folder.at("link")));
    EXPECT_EQ(folder.read("target"), "new");
}

TEST(AtomicFile, refusesLinksInACircle) {
    const TemporaryFolder folder;
    fs::create_symlink("two", folder.at("one"));
    fs::create_symlink("one", folder.at("two"));
    EXPECT_EQ(writeFileAtomically(folder.at("one"), "new", 0600), ELOOP);
    EXPECT_EQ(folder.count(""), 2);
}

TEST(AtomicFile, leavesADeviceAloneThatTheFileIsLinkedTo) {
    const TemporaryFolder folder;
    // A pipe stands in for /dev/null, which a failing test would otherwise destroy.
    ASSERT_EQ(mkfifo(folder.at("device").c_str(), 0600), 0);
    fs::create_symlink("device", folder.at("masked"));
    EXPECT_EQ(writeFileAtomically(folder.at("masked"), "new", 0600), EINVAL);
    EXPECT_TRUE(fs::is_fifo(folder.at("device")));
    EXPECT_EQ(folder.count(""), 2);
}

TEST(AtomicFile, refusesToReplaceAFolder) {
    const TemporaryFolder folder;
    fs::create_directory(folder.at("file"));
    EXPECT_EQ(writeFileAtomically(folder.at("file"), "new", 0600), EISDIR);
    EXPECT_EQ(folder.count(""), 1);
}

TEST(AtomicFile, reportsAFolderThatCannotBeWritten) {
    const TemporaryFolder folder;
    folder.write("file", "");
    EXPECT_EQ(writeFileAtomically(folder.at("file/below"), "new", 0600), ENOTDIR);
    EXPECT_EQ(writeFileAtomically(folder.at("missing/file"), "new", 0600), ENOENT);
}

TEST(AtomicFile, keepsTheOldContentWhenTheDiskIsFull) {
    const TemporaryFolder folder;
    const auto path = folder.write("file", "old");
    {
        const FullDisk disk(1000);
        EXPECT_EQ(writeFileAtomically(path, std::string(5000, 'n'), 0600), EFBIG);
    }
    EXPECT_EQ(folder.read("file"), "old");
    EXPECT_EQ(folder.count(""), 1);
}

TEST(AtomicFile, readsAWholeFile) {
    const TemporaryFolder folder;
    const std::string content = std::string("a\0b", 3) + std::string(50'000, 'c');
    const auto read = readFile(folder.write("file", content), 1'000'000);
    EXPECT_EQ(read.error, 0);
    EXPECT_EQ(read.bytes, content);
}

TEST(AtomicFile, readsUpToTheLimitAndRefusesMore) {
    const TemporaryFolder folder;
    const auto path = folder.write("file", std::string(20'000, 'c'));
    EXPECT_EQ(readFile(path, 20'000).bytes.size(), 20'000U);
    EXPECT_EQ(readFile(path, 19'999).error, EFBIG);
    EXPECT_EQ(readFile(path, 19'999).bytes, "");
    EXPECT_EQ(readFile(folder.write("empty", ""), 0).error, 0);
}

TEST(AtomicFile, saysWhyAFileCannotBeRead) {
    const TemporaryFolder folder;
    const auto file = folder.write("file", "");
    EXPECT_EQ(readFile(folder.at("missing"), 10).error, ENOENT);
    EXPECT_EQ(readFile(file + "/below", 10).error, ENOTDIR);
    EXPECT_EQ(readFile(folder.path(), 10).error, EISDIR);
    EXPECT_EQ(readFile("/dev/zero", 10).error, EINVAL);
    // Its first page cannot be read.
    EXPECT_EQ(readFile("/proc/self/mem", 10).error, EIO);
}

TEST(AtomicFile, doesNotWaitForTheWriterOfAPipe) {
    const TemporaryFolder folder;
    ASSERT_EQ(mkfifo(folder.at("pipe").c_str(), 0600), 0);
    EXPECT_EQ(readFile(folder.at("pipe"), 10).error, EINVAL);
}

TEST(AtomicFile, makesMissingFoldersForTheUserAlone) {
    const TemporaryFolder folder;
    EXPECT_EQ(createFolders(folder.at("one/two//three/")), 0);
    EXPECT_EQ(modeOf(folder.at("one")), 0700U);
    EXPECT_EQ(modeOf(folder.at("one/two/three")), 0700U);
    EXPECT_EQ(createFolders(folder.at("one/two/three")), 0);
}

TEST(AtomicFile, reportsWhatStandsInTheWayOfAFolder) {
    const TemporaryFolder folder;
    folder.write("file", "");
    fs::create_symlink("missing", folder.at("link"));
    EXPECT_EQ(createFolders(folder.at("file")), ENOTDIR);
    EXPECT_EQ(createFolders(folder.at("file/below")), ENOTDIR);
    EXPECT_EQ(createFolders(folder.at("link")), ENOENT);
}

} // namespace
} // namespace vorla
