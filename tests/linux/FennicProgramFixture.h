// SPDX-License-Identifier: MIT
#pragma once

#include "children/NothingLeftBehind.h"
#include "linux/FennicProgram.h"
#include "model/FileContent.h"

#include <gtest/gtest.h>
#include <poll.h>

#include <csignal>
#include <fstream>
#include <memory>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

namespace vorla {

inline FennicOpening usualOpening() {
    return {
        .quota = {.fiveHourRemainingPercent = 87, .pressureSummary = "calm"},
        .activationToken = "token-1"};
}

/// An opening whose line has this many bytes.
inline FennicOpening openingOfBytes(std::size_t bytes) {
    FennicOpening opening{.quota = {.pressureSummary = ""}};
    opening.quota.pressureSummary = std::string(bytes - opening.encode()->size(), 'x');
    return opening;
}

/// Test children play the window's program.
class FennicProgramFixture : public NothingLeftBehind {
protected:
    void SetUp() override {
        NothingLeftBehind::SetUp();
        pipeBefore_ = std::signal(SIGPIPE, SIG_IGN);
        ASSERT_EQ(mkfifo(readyPath().c_str(), 0600), 0);
        ready_ = FileDescriptor(::open(readyPath().c_str(), O_RDWR | O_CLOEXEC));
        descriptors = entries("/proc/self/fd");
    }

    void TearDown() override {
        window.reset();
        windows.reset();
        ready_.close();
        std::signal(SIGPIPE, pipeBefore_);
        NothingLeftBehind::TearDown();
    }

    std::string readyPath() const { return folder() / "ready"; }

    std::vector<std::string> environment(std::vector<std::string> variables = {}) const {
        variables.push_back(goVariable());
        variables.push_back("READY=" + readyPath());
        variables.push_back("RECORD=" + folder().string());
        return variables;
    }

    /// From now on windows are opened by the first of these that there is.
    void use(const std::vector<std::string>& candidates, std::vector<std::string> variables = {}) {
        windows.emplace(loop(), environment(std::move(variables)), candidates);
    }

    void open(const FennicOpening& opening = usualOpening()) {
        window = windows->open(opening, [this] { ++closings; });
    }

    void openWith(const std::string& name, std::vector<std::string> variables = {}) {
        use({child(name)}, std::move(variables));
        open();
        EXPECT_EQ(closings, 0);
    }

    /// The number of the child that says that it is ready; 0 if none does.
    pid_t waitUntilReady() const {
        pollfd watched = {.fd = ready_.number(), .events = POLLIN, .revents = 0};
        pid_t number = 0;
        if (poll(&watched, 1, 30'000) == 1) {
            EXPECT_EQ(read(ready_.number(), &number, sizeof number), sizeof number);
        }
        EXPECT_NE(number, 0);
        return number;
    }

    static void end(pid_t number) {
        ASSERT_GT(number, 0);
        ::kill(number, SIGKILL);
    }

    testing::AssertionResult closesOnce() {
        if (!loop().runUntil([this] { return closings > 0 && hasNoChild(); })) {
            return testing::AssertionFailure() << closings << " closings";
        }
        loop().runPending();
        return closings == 1 ? testing::AssertionSuccess()
                             : testing::AssertionFailure() << closings << " closings";
    }

    /// Handles what has happened; then there must be nothing that wakes the loop again and again.
    bool comesToRest() {
        for (int count = 0; count < 100; ++count) {
            if (!loop().real().runOnce(std::chrono::milliseconds{0})) {
                return true;
            }
        }
        return false;
    }

    /// The error with which an opening fails, after which nothing is left of it.
    std::error_code openingError(const FennicOpening& opening = usualOpening()) {
        try {
            open(opening);
        } catch (const std::system_error& error) {
            EXPECT_EQ(entries("/proc/self/fd"), descriptors);
            EXPECT_TRUE(hasNoChild());
            EXPECT_EQ(closings, 0);
            return error.code();
        }
        return {};
    }

    std::string makeFile(const std::string& name, const std::string& content, mode_t mode) const {
        const std::string path = folder() / name;
        std::ofstream(path, std::ios::binary) << content;
        chmod(path.c_str(), mode);
        return path;
    }

    /// What a recording child was started with, after its window has been destroyed.
    std::string record(const std::string& about) {
        window.reset();
        EXPECT_TRUE(loop().runUntil(hasNoChild));
        return contentOf(folder() / ("recordsItsStart." + about));
    }

    std::optional<FennicProgramLauncher> windows;
    std::unique_ptr<FennicWindow> window;
    int closings = 0;
    std::ptrdiff_t descriptors = 0;

private:
    FileDescriptor ready_;
    void (*pipeBefore_)(int) = SIG_DFL;
};

} // namespace vorla
