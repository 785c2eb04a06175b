// SPDX-License-Identifier: MIT
#include "linux/PreferencesFile.h"

#include "children/SystemLimits.h"
#include "linux/FileDescriptor.h"
#include "linux/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace vorla {
namespace {

namespace fs = std::filesystem;
using Strings = std::vector<std::string>;

constexpr auto folderName = "VorlaUsageMenuBar";
constexpr auto fileName = "VorlaUsageMenuBar/preferences.json";
constexpr auto corruptName = "VorlaUsageMenuBar/preferences.json.corrupt";
constexpr auto lockName = "VorlaUsageMenuBar/preferences.json.lock";

class PreferencesFileTest : public testing::Test {
protected:
    /// As another run of the application would see them.
    PreferencesFile fresh() const { return PreferencesFile(folder.path()); }

    struct stat fileStatus() const {
        struct stat status = {};
        EXPECT_EQ(stat(folder.at(fileName).c_str(), &status), 0);
        return status;
    }

    /// As an editor does it: the file has a new identity afterwards, whatever its size and time.
    void edit(std::string_view content) const {
        folder.write("edited", content);
        fs::create_directories(folder.at(folderName));
        fs::rename(folder.at("edited"), folder.at(fileName));
    }

    const TemporaryFolder folder;
    PreferencesFile preferences{folder.path()};
};

TEST_F(PreferencesFileTest, hasDefaultsWithoutAFile) {
    EXPECT_FALSE(preferences.boolean("flag"));
    EXPECT_EQ(preferences.strings("list"), Strings());
    EXPECT_EQ(folder.count(""), 0);
}

TEST_F(PreferencesFileTest, keepsWhatWasSetAcrossRuns) {
    preferences.setBoolean("flag", true);
    preferences.setStrings("list", {"b", "a", "b"});
    EXPECT_TRUE(preferences.boolean("flag"));
    EXPECT_EQ(preferences.strings("list"), (Strings{"b", "a", "b"}));
    EXPECT_TRUE(fresh().boolean("flag"));
    EXPECT_EQ(fresh().strings("list"), (Strings{"b", "a", "b"}));
    preferences.setBoolean("flag", false);
    preferences.setStrings("list", {});
    EXPECT_FALSE(fresh().boolean("flag"));
    EXPECT_EQ(fresh().strings("list"), Strings());
}

TEST_F(PreferencesFileTest, writesAFileForPeopleAndForTheUserAlone) {
    preferences.setStrings("list", {"x/y"});
    preferences.setBoolean("flag", true);
    EXPECT_EQ(folder.read(fileName), "{\n  \"flag\": true,\n  \"list\": [\n    \"x/y\"\n  ]\n}\n");
    EXPECT_EQ(fileStatus().st_mode & 07777U, 0600U);
    struct stat parent = {};
    ASSERT_EQ(stat(folder.at(folderName).c_str(), &parent), 0);
    EXPECT_EQ(parent.st_mode & 07777U, 0700U);
    // The file and its lock: nothing temporary is left.
    EXPECT_EQ(folder.count(folderName), 2);
}

TEST_F(PreferencesFileTest, keepsStringsWithAnyCharacter) {
    const Strings odd = {
        std::string("a\0b", 3), "\n\r\t\b\f\x01\x1f\x7f", "\"\\/", "é 语 🙂 \u2028\uFEFF", ""};
    preferences.setStrings("list", odd);
    const auto key = std::string("key\0\n\"", 6);
    preferences.setBoolean(key, true);
    EXPECT_EQ(fresh().strings("list"), odd);
    EXPECT_TRUE(fresh().boolean(key));
}

TEST_F(PreferencesFileTest, keepsMembersThatItDoesNotKnow) {
    edit(R"({"later": {"number": 0.1000, "big": 12345678901234567890123, "none": null}, "a": []})");
    preferences.setBoolean("flag", true);
    EXPECT_EQ(
        folder.read(fileName), "{\n"
                               "  \"a\": [],\n"
                               "  \"flag\": true,\n"
                               "  \"later\": {\n"
                               "    \"big\": 12345678901234567890123,\n"
                               "    \"none\": null,\n"
                               "    \"number\": 0.1000\n"
                               "  }\n"
                               "}\n");
}

TEST_F(PreferencesFileTest, takesTheDefaultForAValueOfAnotherType) {
    for (const auto* const value : {"null", "1", "\"true\"", "{}", "[1]", R"(["a", 1])"}) {
        edit(std::string(R"({"key": )") + value + R"(, "flag": true})");
        EXPECT_FALSE(preferences.boolean("key")) << value;
        EXPECT_EQ(preferences.strings("key"), Strings()) << value;
        EXPECT_TRUE(preferences.boolean("flag")) << value;
    }
    edit(R"({"flag": ["a"], "list": true})");
    EXPECT_FALSE(preferences.boolean("flag"));
    EXPECT_EQ(preferences.strings("list"), Strings());
}

TEST_F(PreferencesFileTest, replacesAValueOfAnotherTypeOnlyWhenItIsSet) {
    edit(R"({"flag": "yes", "list": ["a", 1]})");
    EXPECT_FALSE(preferences.boolean("flag"));
    preferences.setBoolean("flag", true);
    EXPECT_EQ(
        folder.read(fileName), "{\n  \"flag\": true,\n  \"list\": [\n    \"a\",\n    1\n  ]\n}\n");
}

TEST_F(PreferencesFileTest, honoursAnEditMadeMeanwhile) {
    preferences.setBoolean("flag", true);
    edit(R"({"flag": false, "list": ["edited"]})");
    EXPECT_FALSE(preferences.boolean("flag"));
    EXPECT_EQ(preferences.strings("list"), Strings{"edited"});
    edit(R"({"flag": false, "list": ["EDITED"]})");
    EXPECT_EQ(preferences.strings("list"), Strings{"EDITED"});
    preferences.setBoolean("other", true);
    EXPECT_EQ(fresh().strings("list"), Strings{"EDITED"});
}

TEST_F(PreferencesFileTest, honoursAnEditWithinTheSameFile) {
    preferences.setBoolean("flag", true);
    folder.write(fileName, R"({"flag": false, "list": ["edited"]})");
    EXPECT_EQ(preferences.strings("list"), Strings{"edited"});
}

/// Edits of which some fall between the writing and whatever the writer does next.
TEST_F(PreferencesFileTest, honoursAnEditMadeWhileItWrites) {
    for (int round = 0; round < 10; ++round) {
        preferences.setBoolean("flag", false);
        const auto before = fileStatus().st_ino;
        const auto edited = folder.write("edited", R"({"flag": false, "list": ["edited"]})");
        const auto path = folder.at(fileName);
        std::jthread editor([&] {
            struct stat status = {};
            while (stat(path.c_str(), &status) == 0 && status.st_ino == before) {}
            fs::rename(edited, path);
        });
        preferences.setBoolean("flag", true);
        editor.join();
        ASSERT_FALSE(preferences.boolean("flag")) << round;
        ASSERT_EQ(preferences.strings("list"), Strings{"edited"}) << round;
        fs::remove(path);
    }
}

TEST_F(PreferencesFileTest, keepsWhatItKnowsWhileTheFileCannotBeRead) {
    edit(R"({"flag": true, "list": ["posted"]})");
    EXPECT_TRUE(preferences.boolean("flag"));
    edit(R"({"flag": true, "list": ["posted", "edited"]})");
    {
        const SystemLimit noMoreFiles(RLIMIT_NOFILE, 0);
        EXPECT_TRUE(preferences.boolean("flag"));
        EXPECT_EQ(preferences.strings("list"), Strings{"posted"});
    }
    EXPECT_EQ(preferences.strings("list"), (Strings{"posted", "edited"}));
}

TEST_F(PreferencesFileTest, hasDefaultsAgainWhenTheFileWasDeleted) {
    preferences.setBoolean("flag", true);
    fs::remove(folder.at(fileName));
    EXPECT_FALSE(preferences.boolean("flag"));
    fs::remove_all(folder.at(folderName));
    preferences.setBoolean("flag", true);
    EXPECT_TRUE(fresh().boolean("flag"));
}

TEST_F(PreferencesFileTest, leavesTheDiskAloneIfNothingChanges) {
    preferences.setStrings("list", {"a"});
    const auto before = fileStatus();
    preferences.setStrings("list", {"a"});
    EXPECT_EQ(fileStatus().st_ino, before.st_ino);
    preferences.setStrings("list", {"b"});
    EXPECT_NE(fileStatus().st_ino, before.st_ino);
}

TEST_F(PreferencesFileTest, setsABrokenFileAside) {
    for (const auto* const broken : {"", "{", "[]", "true", "{\"flag\": true} x", "\xff"}) {
        edit(broken);
        EXPECT_FALSE(preferences.boolean("flag")) << broken;
        EXPECT_FALSE(folder.has(fileName)) << broken;
        EXPECT_EQ(folder.read(corruptName), broken);
    }
    preferences.setBoolean("flag", true);
    EXPECT_TRUE(fresh().boolean("flag"));
    EXPECT_EQ(folder.read(corruptName), "\xff");
}

TEST_F(PreferencesFileTest, setsABrokenFileAsideBeforeItWrites) {
    edit("{broken");
    preferences.setBoolean("flag", true);
    EXPECT_EQ(folder.read(corruptName), "{broken");
    EXPECT_TRUE(fresh().boolean("flag"));
}

TEST_F(PreferencesFileTest, setsAFileAsideThatIsTooLong) {
    const std::string start = R"({"flag": true)";
    edit(start + std::string(PreferencesFile::maximumBytes - start.size() - 1, ' ') + "}");
    EXPECT_TRUE(preferences.boolean("flag"));
    edit(start + std::string(PreferencesFile::maximumBytes - start.size(), ' ') + "}");
    EXPECT_FALSE(preferences.boolean("flag"));
    EXPECT_FALSE(folder.has(fileName));
    EXPECT_EQ(fs::file_size(folder.at(corruptName)), PreferencesFile::maximumBytes + 1);
}

TEST_F(PreferencesFileTest, leavesABrokenFileThatCannotBeSetAside) {
    edit("{broken");
    fs::create_directories(folder.at(corruptName));
    EXPECT_FALSE(preferences.boolean("flag"));
    preferences.setBoolean("flag", true);
    EXPECT_TRUE(preferences.boolean("flag"));
    EXPECT_EQ(folder.read(fileName), "{broken");
}

TEST_F(PreferencesFileTest, leavesWhatIsNoFileWhereItIs) {
    fs::create_directories(folder.at(fileName));
    EXPECT_FALSE(preferences.boolean("flag"));
    preferences.setBoolean("flag", true);
    EXPECT_TRUE(preferences.boolean("flag"));
    EXPECT_TRUE(fs::is_directory(folder.at(fileName)));
    EXPECT_FALSE(folder.has(corruptName));
}

TEST_F(PreferencesFileTest, writesTheTargetOfASymbolicLink) {
    folder.write("dotfiles/preferences", R"({"list": ["linked"]})");
    fs::create_directories(folder.at(folderName));
    fs::create_symlink("../dotfiles/preferences", folder.at(fileName));
    EXPECT_EQ(preferences.strings("list"), Strings{"linked"});
    preferences.setBoolean("flag", true);
    EXPECT_TRUE(fs::is_symlink(folder.at(fileName)));
    EXPECT_TRUE(fresh().boolean("flag"));
    EXPECT_EQ(fresh().strings("list"), Strings{"linked"});
}

TEST_F(PreferencesFileTest, remembersForThisRunWhatCannotBeStored) {
    folder.write(folderName, "a file in the folder's place");
    preferences.setBoolean("flag", true);
    preferences.setStrings("list", {"a"});
    EXPECT_TRUE(preferences.boolean("flag"));
    EXPECT_EQ(preferences.strings("list"), Strings{"a"});
    EXPECT_FALSE(fresh().boolean("flag"));
}

/// In a process for which permissions count, also where the tests run as root.
TEST_F(PreferencesFileTest, remembersForThisRunWhatAReadOnlyHomeRefuses) {
    preferences.setStrings("list", {"old"});
    const auto stored = folder.read(fileName);
    ASSERT_EQ(chmod(folder.path().c_str(), 0755), 0);
    ASSERT_EQ(chmod(folder.at(folderName).c_str(), 0555), 0);
    ASSERT_EQ(chmod(folder.at(fileName).c_str(), 0444), 0);
    const pid_t child = fork();
    ASSERT_NE(child, -1);
    if (child == 0) {
        constexpr uid_t nobody = 65534;
        const bool isBound = geteuid() != 0 || setresuid(nobody, nobody, nobody) == 0;
        auto own = fresh();
        const bool isRead = own.strings("list") == Strings{"old"};
        own.setStrings("list", {"new"});
        own.setBoolean("flag", true);
        const bool isRemembered = own.strings("list") == Strings{"new"} && own.boolean("flag");
        _exit(isBound && isRead && isRemembered ? 0 : 1);
    }
    int status = -1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(folder.read(fileName), stored);
    ASSERT_EQ(chmod(folder.at(folderName).c_str(), 0700), 0);
    EXPECT_EQ(folder.count(folderName), 2);
}

TEST_F(PreferencesFileTest, answersFromMemoryEvenIfTheFileChangesAfterAFailure) {
    folder.write(folderName, "a file in the folder's place");
    preferences.setStrings("list", {"posted"});
    fs::remove(folder.at(folderName));
    edit(R"({"list": [], "flag": true})");
    EXPECT_EQ(preferences.strings("list"), Strings{"posted"});
    EXPECT_TRUE(preferences.boolean("flag"));
}

TEST_F(PreferencesFileTest, storesWhatFailedBeforeWithTheNextValue) {
    folder.write(folderName, "a file in the folder's place");
    preferences.setStrings("list", {"posted"});
    fs::remove(folder.at(folderName));
    preferences.setBoolean("flag", true);
    EXPECT_EQ(fresh().strings("list"), Strings{"posted"});
    EXPECT_TRUE(fresh().boolean("flag"));
    edit(R"({"flag": false})");
    EXPECT_FALSE(preferences.boolean("flag"));
    EXPECT_EQ(preferences.strings("list"), Strings());
}

TEST_F(PreferencesFileTest, remembersWhatAFullDiskRefuses) {
    preferences.setStrings("list", {"old"});
    const Strings values = {std::string(5000, 'n')};
    {
        const FullDisk disk(100);
        preferences.setStrings("list", values);
    }
    EXPECT_EQ(preferences.strings("list"), values);
    EXPECT_EQ(fresh().strings("list"), Strings{"old"});
    EXPECT_EQ(folder.count(folderName), 2);
}

TEST_F(PreferencesFileTest, storesNothingThatItWouldNotReadAgain) {
    preferences.setStrings("list", {""});
    const auto room = PreferencesFile::maximumBytes - folder.read(fileName).size();
    const Strings fitting = {std::string(room, 'x')};
    preferences.setStrings("list", fitting);
    EXPECT_EQ(fresh().strings("list"), fitting);
    const Strings tooLong = {std::string(room + 1, 'x')};
    preferences.setStrings("list", tooLong);
    EXPECT_EQ(preferences.strings("list"), tooLong);
    EXPECT_EQ(fresh().strings("list"), fitting);
}

TEST_F(PreferencesFileTest, storesSixtyFourKeysOf1024BytesThatAreAllEscaped) {
    // The worst that notifications ask for: each of these bytes is written as six.
    const Strings keys(64, std::string(1024, '\x01'));
    preferences.setStrings("keys", keys);
    EXPECT_EQ(fresh().strings("keys"), keys);
}

TEST_F(PreferencesFileTest, worksInMemoryWhereTheHomeDirectoryIsUnknown) {
    PreferencesFile homeless("");
    EXPECT_FALSE(homeless.boolean("flag"));
    homeless.setBoolean("flag", true);
    EXPECT_TRUE(homeless.boolean("flag"));
}

TEST_F(PreferencesFileTest, doesNotWaitForeverForAnotherProcess) {
    preferences.setBoolean("flag", true);
    const FileDescriptor lock(open(folder.at(lockName).c_str(), O_RDWR | O_CLOEXEC));
    ASSERT_EQ(flock(lock.number(), LOCK_EX), 0);
    preferences.setBoolean("other", true);
    EXPECT_TRUE(preferences.boolean("other"));
    EXPECT_FALSE(fresh().boolean("other"));
}

TEST_F(PreferencesFileTest, losesNothingWhenTwoProcessesWriteAtOnce) {
    constexpr int count = 100;
    const auto setAll = [this](const std::string& prefix) {
        auto own = fresh();
        for (int number = 0; number < count; ++number) {
            own.setBoolean(prefix + std::to_string(number), true);
        }
    };
    const pid_t child = fork();
    ASSERT_NE(child, -1);
    if (child == 0) {
        setAll("child");
        _exit(0);
    }
    setAll("parent");
    int status = -1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_EQ(status, 0);
    auto later = fresh();
    for (int number = 0; number < count; ++number) {
        EXPECT_TRUE(later.boolean("child" + std::to_string(number)));
        EXPECT_TRUE(later.boolean("parent" + std::to_string(number)));
    }
}

TEST_F(PreferencesFileTest, seesAtOnceWhatAnotherObjectWrote) {
    auto other = fresh();
    for (int round = 0; round < 20; ++round) {
        const Strings values = {std::to_string(round)};
        other.setStrings("list", values);
        EXPECT_EQ(preferences.strings("list"), values);
        preferences.setBoolean("flag", round % 2 == 0);
        EXPECT_EQ(other.boolean("flag"), round % 2 == 0);
    }
}

} // namespace
} // namespace vorla
