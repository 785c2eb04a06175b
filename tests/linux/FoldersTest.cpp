// SPDX-License-Identifier: MIT
#include "linux/Folders.h"

#include "linux/FileDescriptor.h"
#include "linux/TemporaryFolder.h"
#include "model/ScopedVariable.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <pwd.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>

namespace vorla {
namespace {

namespace fs = std::filesystem;

std::string thisExecutable() {
    return fs::read_symlink("/proc/self/exe");
}

TEST(Folders, takeTheConfigurationFolderFromItsVariable) {
    const ScopedVariable variable("XDG_CONFIG_HOME", "/somewhere/else");
    EXPECT_EQ(configurationDirectory(), "/somewhere/else");
}

TEST(Folders, ignoreARelativeConfigurationFolder) {
    const ScopedVariable home("HOME", "/home/user");
    for (const auto* const relative : {"", "relative/folder"}) {
        const ScopedVariable variable("XDG_CONFIG_HOME", relative);
        EXPECT_EQ(configurationDirectory(), "/home/user/.config");
    }
}

TEST(Folders, knowTheHomeOfTheUserWithoutItsVariable) {
    const std::string expected = getpwuid(geteuid())->pw_dir;
    for (const auto& home :
         {std::optional<std::string>(), std::optional<std::string>("relative")}) {
        const ScopedVariable variable("HOME", home);
        EXPECT_EQ(homeDirectory(), expected);
    }
}

TEST(Folders, knowTheProgramByItsExecutable) {
    const ScopedVariable image("APPIMAGE", "");
    EXPECT_EQ(lastingProgramPath(), thisExecutable());
}

TEST(Folders, knowAnAppImageByItsOwnPath) {
    const ScopedVariable image("APPIMAGE", "/home/user/Vorla.AppImage");
    const ScopedVariable unknown("APPDIR", std::nullopt);
    EXPECT_EQ(lastingProgramPath(), "/home/user/Vorla.AppImage");
    const ScopedVariable mounted("APPDIR", fs::path(thisExecutable()).parent_path());
    EXPECT_EQ(lastingProgramPath(), "/home/user/Vorla.AppImage");
}

TEST(Folders, recogniseAnAppImageThroughASymbolicLink) {
    const TemporaryFolder folder;
    fs::create_symlink(fs::path(thisExecutable()).parent_path(), folder.at("mounted"));
    const ScopedVariable image("APPIMAGE", "/home/user/Vorla.AppImage");
    const ScopedVariable mounted("APPDIR", folder.at("mounted"));
    EXPECT_EQ(lastingProgramPath(), "/home/user/Vorla.AppImage");
}

TEST(Folders, doNotTakeThePathOfAnotherProgramsAppImage) {
    const ScopedVariable image("APPIMAGE", "/home/user/Terminal.AppImage");
    const ScopedVariable mounted("APPDIR", "/tmp/.mount_Terminal");
    EXPECT_EQ(lastingProgramPath(), thisExecutable());
}

TEST(Folders, ignoreARelativeAppImage) {
    const ScopedVariable image("APPIMAGE", "Vorla.AppImage");
    EXPECT_EQ(lastingProgramPath(), thisExecutable());
}

/// A program that runs until this object is destroyed.
class RunningProgram final {
public:
    explicit RunningProgram(std::string path) {
        std::array<int, 2> ends = {};
        EXPECT_EQ(pipe2(ends.data(), O_CLOEXEC), 0);
        const FileDescriptor readEnd(ends[0]);
        input_ = FileDescriptor(ends[1]);
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_adddup2(&actions, readEnd.number(), STDIN_FILENO);
        std::array<char*, 2> arguments = {path.data(), nullptr};
        EXPECT_EQ(
            posix_spawn(&child_, path.c_str(), &actions, nullptr, arguments.data(), environ), 0);
        posix_spawn_file_actions_destroy(&actions);
    }

    ~RunningProgram() {
        input_.close();
        EXPECT_EQ(waitpid(child_, nullptr, 0), child_);
    }

    RunningProgram(const RunningProgram&) = delete;
    RunningProgram& operator=(const RunningProgram&) = delete;

    std::string linkToExecutable() const { return "/proc/" + std::to_string(child_) + "/exe"; }

private:
    pid_t child_ = -1;
    FileDescriptor input_;
};

TEST(Folders, knowTheExecutableAfterItWasDeletedOrReplaced) {
    const TemporaryFolder folder;
    const auto path = folder.at("program");
    fs::copy_file(std::string(VORLA_TEST_CHILDREN) + "/waitsForEndOfInput", path);
    const RunningProgram program(path);
    EXPECT_EQ(executableBehind(program.linkToExecutable()), path);
    fs::remove(path);
    EXPECT_EQ(executableBehind(program.linkToExecutable()), path);
    folder.write("program", "its next version");
    EXPECT_EQ(executableBehind(program.linkToExecutable()), path);
}

TEST(Folders, keepANameThatOnlyLooksDeleted) {
    const TemporaryFolder folder;
    const auto program = folder.write("program (deleted)", "");
    fs::create_symlink(program, folder.at("link"));
    EXPECT_EQ(executableBehind(folder.at("link")), program);
}

TEST(Folders, knowThatOfTheResourcesAlsoWhereItIsNotThereYet) {
    const auto prefix = fs::path(thisExecutable()).parent_path().parent_path();
    const auto folder = prefix / "libexec" / "VorlaUsageMenuBar";
    ASSERT_FALSE(fs::exists(folder));
    EXPECT_EQ(resourcesDirectory(), folder.string());
}

TEST(Folders, knowNoExecutableBehindAMissingLink) {
    EXPECT_EQ(executableBehind("/proc/self/missing"), "");
}

} // namespace
} // namespace vorla
