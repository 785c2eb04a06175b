// SPDX-License-Identifier: MIT
#include "linux/ProcessLauncher.h"

#include "children/SystemLimits.h"
#include "fakes/RefusingLoop.h"
#include "linux/LauncherFixture.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <memory>
#include <string>
#include <system_error>
#include <vector>

namespace vorla {

namespace {

/// Launches that fail, of which nothing may be left.
class LaunchError : public LauncherFixture {};

} // namespace

TEST_F(LaunchError, throwsTheReasonOfALaunchThatFails) {
    struct Case {
        std::string path;
        int number = 0;
        std::string message;
    };

    const std::vector<Case> cases = {
        {folder() / "none", 2, "No such file or directory"},
        {"", 2, "No such file or directory"},
        {folder(), 13, "Permission denied"},
        {makeFile("#!/bin/true\n", 0644), 13, "Permission denied"},
        {goPath() + "/below", 20, "Not a directory"}};
    for (const auto& [path, number, message] : cases) {
        const auto error = launchError(path);
        EXPECT_EQ(error.value(), number) << path;
        EXPECT_EQ(error.message(), message) << path;
    }
}

TEST_F(LaunchError, throwsForAFileThatIsNoProgram) {
    const auto error = launchError(makeFile("echo\n", 0755));
    EXPECT_EQ(error.value(), 8);
    EXPECT_EQ(error.message(), "Exec format error");
}

TEST_F(LaunchError, throwsForAMissingInterpreter) {
    EXPECT_EQ(launchError(makeFile("#!/nowhere/interpreter\n", 0755)).value(), 2);
}

TEST_F(LaunchError, throwsWhereverDescriptorsRunOut) {
    // A sanitizer needs descriptors to look at a type for the first time, so it sees them all here.
    outputOf("exitsWithStatus", {"STATUS=0"});
    EXPECT_EQ(launchError(folder() / "none").value(), ENOENT);
    recorder = {};
    const auto descriptors = entries("/proc/self/fd");
    std::size_t failures = 0;
    for (rlim_t limit = 3; limit < 200; ++limit) {
        std::error_code error;
        std::unique_ptr<ChildProcess> running;
        {
            const SystemLimit lowered(RLIMIT_NOFILE, limit);
            try {
                running = start(child("exitsWithStatus"), {"STATUS=0"});
            } catch (const std::system_error& thrown) {
                error = thrown.code();
            }
        }
        if (running != nullptr) {
            ASSERT_TRUE(loop().runUntil([&] { return recorder.isComplete(); }));
            break;
        }
        ++failures;
        EXPECT_EQ(error.value(), EMFILE);
        EXPECT_EQ(entries("/proc/self/fd"), descriptors);
        EXPECT_TRUE(hasNoChild());
    }
    EXPECT_EQ(recorder.statuses, std::vector<int>{0});
    // There are at least that many descriptors of which each can be the one too many.
    EXPECT_GE(failures, 10U);
}

TEST_F(LaunchError, throwsWhereverThreadsCannotBeStarted) {
    constexpr std::size_t stackBytes = std::size_t{256} << 20U;
    const ThreadStackSize large(stackBytes);
    const auto descriptors = entries("/proc/self/fd");
    // Room for no further thread, and room for one of two.
    for (const rlim_t room : {stackBytes / 2, stackBytes + stackBytes / 2}) {
        std::error_code error;
        {
            const SystemLimit lowered(RLIMIT_AS, addressSpaceInUse() + room);
            error = launchError(child("exitsWithStatus"));
        }
        EXPECT_EQ(error.value(), EAGAIN);
        EXPECT_EQ(entries("/proc/self/fd"), descriptors);
        EXPECT_TRUE(noThreadIsLeft());
        EXPECT_TRUE(hasNoChild());
    }
}

TEST_F(LaunchError, killsAndCollectsAChildThatCannotBeWatched) {
    RefusingLoop full(loop(), RefusingLoop::Refuses::watches);
    LinuxProcessLauncher helpless(full);
    const auto descriptors = entries("/proc/self/fd");
    try {
        helpless.launch(
            {.path = child("ignoresTermination"), .argument = "", .environment = {}}, recorder);
        FAIL() << "nothing was thrown";
    } catch (const std::system_error& error) {
        EXPECT_EQ(error.code(), std::errc::no_space_on_device);
    }
    EXPECT_TRUE(hasNoChild());
    // What was posted meanwhile holds the pipes.
    loop().runPending();
    EXPECT_EQ(entries("/proc/self/fd"), descriptors);
}

} // namespace vorla
