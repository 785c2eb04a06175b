// SPDX-License-Identifier: MIT
#pragma once

#include "children/ComesTrue.h"
#include "fakes/ManualLoop.h"
#include "linux/FileDescriptor.h"
#include "linux/ProcessLauncher.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <optional>
#include <string>
#include <system_error>
#include <thread>

namespace vorla {

/// A descriptor that is readable once the process has ended.
inline FileDescriptor processHandle(pid_t number) {
    // As pidfd_open(2), whose declaration in glibc 2.36 cannot be linked from C++.
    FileDescriptor handle(static_cast<int>(syscall(SYS_pidfd_open, number, 0)));
    if (!handle.isOpen()) {
        throw std::system_error(errno, std::generic_category(), "pidfd_open");
    }
    return handle;
}

/// A test that starts real children. At its end no child, descriptor or thread may be left.
class NothingLeftBehind : public testing::Test {
protected:
    void SetUp() override {
        descriptorsBefore_ = entries("/proc/self/fd");
        letSanitizerStartItsThread();
        threadsBefore_ = entries("/proc/self/task");
        std::string pattern = std::filesystem::temp_directory_path() / "vorla-XXXXXX";
        ASSERT_NE(mkdtemp(pattern.data()), nullptr);
        folder_ = pattern;
        ASSERT_EQ(mkfifo(goPath().c_str(), 0600), 0);
        // Open for both, so that nobody waits for somebody to open the other end.
        go_ = FileDescriptor(open(goPath().c_str(), O_RDWR | O_CLOEXEC));
        ASSERT_TRUE(go_.isOpen());
        loop_.emplace();
        launcher_.emplace(*loop_);
    }

    void TearDown() override {
        launcher_.reset();
        loop_.reset();
        go_.close();
        std::filesystem::remove_all(folder_);
        EXPECT_EQ(entries("/proc/self/fd"), descriptorsBefore_);
        EXPECT_TRUE(noThreadIsLeft());
        EXPECT_TRUE(hasNoChild());
    }

    /// Whether every child, ended or not, has been collected.
    static bool hasNoChild() {
        return waitid(P_ALL, 0, nullptr, WEXITED | WNOHANG | WNOWAIT) != 0 && errno == ECHILD;
    }

    /// Waits until a child has ended that has not been collected yet.
    static void waitUntilCollectable() {
        siginfo_t end = {};
        ASSERT_EQ(waitid(P_ALL, 0, &end, WEXITED | WNOWAIT), 0);
    }

    /// Handles events until the process of this handle has ended. If it never does, it is killed.
    bool runUntilEnded(const FileDescriptor& handle) {
        bool ended = false;
        const auto watch = loop().whenReadable(handle.number(), [&] { ended = true; });
        const bool inTime = loop().runUntil([&] { return ended; });
        if (!inTime) {
            syscall(SYS_pidfd_send_signal, handle.number(), SIGKILL, nullptr, 0);
        }
        return inTime;
    }

    /// Lets one waiting child go on.
    void go() { ASSERT_EQ(write(go_.number(), "!", 1), 1); }

    /// Whether as many have gone on as were let.
    bool wentOn() const {
        pollfd watched = {go_.number(), POLLIN, 0};
        return poll(&watched, 1, 0) == 0;
    }

    std::string goPath() const { return folder_ / "go"; }

    std::string goVariable() const { return "GO=" + goPath(); }

    static std::string child(const std::string& name) { return VORLA_TEST_CHILDREN "/" + name; }

    ManualLoop& loop() { return *loop_; }

    LinuxProcessLauncher& launcher() { return *launcher_; }

    const std::filesystem::path& folder() const { return folder_; }

    static std::ptrdiff_t entries(const char* path) {
        const std::filesystem::directory_iterator all(path);
        return std::distance(begin(all), end(all));
    }

    /// The system lists a thread for a moment longer than it takes to join it.
    bool noThreadIsLeft() const {
        return comesTrue([this] { return entries("/proc/self/task") == threadsBefore_; });
    }

private:
    /// A sanitizer may start a thread of its own, which stays, together with our first.
    static void letSanitizerStartItsThread() {
        std::filesystem::path task = "/proc/self/task";
        std::thread([&task] { task /= std::to_string(gettid()); }).join();
        ASSERT_TRUE(comesTrue([&task] { return !std::filesystem::exists(task); }));
    }

    std::ptrdiff_t descriptorsBefore_ = 0;
    std::ptrdiff_t threadsBefore_ = 0;
    std::filesystem::path folder_;
    FileDescriptor go_;
    std::optional<ManualLoop> loop_;
    std::optional<LinuxProcessLauncher> launcher_;
};

} // namespace vorla
