// SPDX-License-Identifier: MIT
#pragma once

#include "app/AppDelegate.h"
#include "children/NothingLeftBehind.h"
#include "children/ReadyPipe.h"
#include "fakes/FakeAddressOpener.h"
#include "fakes/FakeClipboard.h"
#include "fakes/FakeClock.h"
#include "fakes/FakeFennicLauncher.h"
#include "fakes/FakeLoginItem.h"
#include "fakes/FakeNotificationCentre.h"
#include "fakes/FakePreferences.h"
#include "fakes/FakeStatusItem.h"
#include "model/FileContent.h"

#include <fstream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace vorla {

/// Makes another folder the current one for as long as it lives.
class CurrentFolder final {
public:
    explicit CurrentFolder(const std::filesystem::path& folder) {
        std::filesystem::current_path(folder);
    }
    ~CurrentFolder() { std::filesystem::current_path(before_); }
    CurrentFolder(const CurrentFolder&) = delete;
    CurrentFolder& operator=(const CurrentFolder&) = delete;

private:
    std::filesystem::path before_ = std::filesystem::current_path();
};

/// The whole application with real child processes and descriptors; the test plays user and time.
///
/// The companion is what lies at companion() when a refresh starts.
class HostileCompanion : public NothingLeftBehind {
protected:
    static constexpr auto missing =
        "vorla-usage missing. Install in ~/.local/bin or PATH, then Refresh.";
    static constexpr auto timedOut = "vorla-usage timed out. Try Refresh.";
    static constexpr auto invalid =
        "Invalid JSON from vorla-usage. Install v0.5 or newer, then Refresh.";

    static std::string cannotRun(const std::string& reason) {
        return "Cannot run vorla-usage: " + reason;
    }

    static std::string failed(int status) {
        return "vorla-usage failed (" + std::to_string(status) + "). Try it in Terminal.";
    }

    void SetUp() override {
        NothingLeftBehind::SetUp();
        ready_.emplace(folder() / "ready");
    }

    void TearDown() override {
        delegate_.reset();
        ready_.reset();
        NothingLeftBehind::TearDown();
    }

    /// Starts the application with a good companion, and waits for the first figures. All
    /// companions get `variables`, besides those by which they talk with the test.
    void startApplication(
        std::vector<std::string> variables = {}, StatusItem* otherItem = nullptr,
        ProcessLauncher* otherLauncher = nullptr) {
        companionIs("printsSnapshot");
        makeApplication(companion(), std::move(variables), otherItem, otherLauncher);
        delegate_->applicationDidFinishLaunching();
    }

    void startWithFigures(std::vector<std::string> variables = {}) {
        startApplication(std::move(variables));
        ASSERT_NO_FATAL_FAILURE(expectFigures());
        // Some things are opened with the first run, and stay.
        descriptors_ = entries("/proc/self/fd");
    }

    void makeApplication(
        const std::string& executable, std::vector<std::string> variables = {},
        StatusItem* otherItem = nullptr, ProcessLauncher* otherLauncher = nullptr) {
        variables.insert(
            variables.end(),
            {"VORLA_USAGE_EXECUTABLE=" + executable, goVariable(), ready_->variable(),
             "OUTPUT=" + (folder() / "output").string(), "ERRORS=" + (folder() / "errors").string(),
             "SNAPSHOT=" VORLA_TEST_DATA "/snapshots/full.json"});
        delegate_.reset();
        delegate_ = std::make_unique<AppDelegate>(Platform{
            .loop = loop(),
            .clock = clock_,
            .statusItem = otherItem == nullptr ? item : *otherItem,
            .launcher = otherLauncher == nullptr ? launcher() : *otherLauncher,
            .preferences = preferences,
            .loginItem = loginItem_,
            .notificationCentre = notificationCentre,
            .clipboard = clipboard_,
            .addressOpener = addressOpener,
            .fennicLauncher = fennicLauncher_,
            .companionPlaces =
                {.environment = Environment(std::move(variables)),
                 .homeDirectory = "/nonexistent",
                 .resourcesDirectory = std::nullopt},
            .replyToTerminate = [this] { ++replies; },
        });
    }

    std::filesystem::path companion() const { return folder() / "vorla-usage"; }

    /// A program from tests/children/, or any other by its path.
    void companionIs(const std::string& program) {
        std::filesystem::remove_all(companion());
        create_symlink(std::filesystem::path(VORLA_TEST_CHILDREN) / program, companion());
    }

    void companionHolds(const std::string& content, mode_t mode = 0755) {
        std::filesystem::remove_all(companion());
        std::ofstream(companion(), std::ios::binary) << content;
        ASSERT_EQ(chmod(companion().c_str(), mode), 0);
    }

    void makeFile(const std::string& name, const std::string& content) const {
        std::ofstream(folder() / name, std::ios::binary) << content;
    }

    /// What the good companion prints.
    static std::string goodDocument() { return contentOf(VORLA_TEST_DATA "/snapshots/full.json"); }

    bool isRefreshing() const {
        const auto line = item.line(LineRole::refresh);
        return line && !line->enabled;
    }

    /// The user chooses "Refresh".
    void refresh() {
        ASSERT_FALSE(isRefreshing());
        item.listener->chosen(MenuAction::refresh);
    }

    void refreshWith(const std::string& program) {
        companionIs(program);
        refresh();
    }

    void expectFigures() {
        ASSERT_TRUE(loop().runUntil([this] { return !isRefreshing(); }));
        EXPECT_EQ(item.last().title, "5h 87% · W 62%");
        EXPECT_FALSE(item.line(LineRole::error)) << item.text(LineRole::error);
    }

    /// The run ends, all figures give way to this one line, nothing of the run is left, and the
    /// next run of a good companion shows figures again.
    void expectLineAndRecovery(const std::string& line) {
        ASSERT_NO_FATAL_FAILURE(expectLine(line));
        EXPECT_EQ(entries("/proc/self/fd"), descriptors_);
        refreshWith("printsSnapshot");
        ASSERT_NO_FATAL_FAILURE(expectFigures());
        EXPECT_EQ(entries("/proc/self/fd"), descriptors_);
    }

    void expectLine(const std::string& line) {
        ASSERT_TRUE(loop().runUntil([this] { return !isRefreshing(); }));
        // What was still on its way when the run was cut off holds descriptors.
        loop().runPending();
        EXPECT_EQ(item.text(LineRole::error), line);
        EXPECT_EQ(item.last().title, "Vorla ?");
        EXPECT_EQ(item.last().lines.at(1).identity.role, LineRole::separator);
        EXPECT_TRUE(hasNoChild());
        EXPECT_TRUE(noThreadIsLeft());
    }

    /// Whether a companion has said so.
    bool isReady() const { return ready_->hasNext(); }

    /// Waits until a companion says so, and returns its number.
    pid_t waitUntilReady() const { return ready_->next(); }

    /// Waits until the one child has stopped or ended, and returns its number.
    static pid_t waitUntilStopped() {
        siginfo_t change = {};
        EXPECT_EQ(waitid(P_ALL, 0, &change, WSTOPPED | WEXITED | WNOWAIT), 0);
        EXPECT_EQ(change.si_code, CLD_STOPPED);
        return change.si_pid;
    }

    AppDelegate& delegate() { return *delegate_; }
    const FakeClipboard& clipboard() const { return clipboard_; }
    void destroyApplication() { delegate_.reset(); }

    FakeStatusItem item;
    FakeAddressOpener addressOpener;
    FakePreferences preferences;
    FakeNotificationCentre notificationCentre;
    int replies = 0;

    std::string readyPath() const { return folder() / "ready"; }

private:
    std::optional<ReadyPipe> ready_;
    std::ptrdiff_t descriptors_ = 0;
    FakeClock clock_;
    FakeLoginItem loginItem_;
    FakeClipboard clipboard_;
    FakeFennicLauncher fennicLauncher_;
    std::unique_ptr<AppDelegate> delegate_;
};

} // namespace vorla
