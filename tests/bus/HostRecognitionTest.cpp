// SPDX-License-Identifier: MIT
#include "linux/HostRecognition.h"

#include "bus/PanelProcess.h"
#include "bus/PrivateBus.h"
#include "fakes/ManualLoop.h"

#include <gtest/gtest.h>
#include <systemd/sd-bus.h>

#include <memory>
#include <optional>

namespace vorla {

namespace {

constexpr const char* watcher = "org.kde.StatusNotifierWatcher";

class HostRecognitionTest : public testing::Test {
protected:
    static std::string host(int number) {
        return "org.kde.StatusNotifierHost-" + std::to_string(number);
    }

    void start() {
        recognition_.emplace(
            applicationBus, loop, [this](IconKind kind) { findings.push_back(kind); });
    }

    /// Runs until the last finding is `kind`.
    bool finds(IconKind kind) {
        return loop.runUntil([&] { return !findings.empty() && findings.back() == kind; });
    }

    std::unique_ptr<PanelProcess>
    panel(const std::string& commandName, const std::vector<std::string>& busNames) {
        return std::make_unique<PanelProcess>(commandName, daemon.address(), busNames);
    }

    /// Whatever the bus has to say about what happened so far has been handled, also the questions
    /// that arose from it. A look takes two answers, one for the names and one for the processes,
    /// and another one may follow it.
    void settle() {
        for (int round = 0; round < 5; ++round) {
            bool answered = false;
            const auto slot = applicationBus.call(
                {"org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "GetId"},
                std::chrono::seconds{25}, [&](const bus::Reply<std::string>&) { answered = true; });
            ASSERT_TRUE(loop.runUntil([&] { return answered; }));
        }
    }

    PrivateBus daemon;
    ManualLoop loop;
    std::vector<IconKind> findings;
    bus::Bus applicationBus = bus::Bus::open(loop.real(), daemon.address());

private:
    std::optional<HostRecognition> recognition_;
};

TEST_F(HostRecognitionTest, findsAPanelThatIsThereAlready) {
    const auto shell = panel("gnome-shell", {watcher});
    start();
    EXPECT_TRUE(finds(IconKind::gauge));
}

TEST_F(HostRecognitionTest, findsAPanelThatComesLate) {
    start();
    settle();
    EXPECT_TRUE(findings.empty());
    const auto bar = panel("waybar", {watcher, host(1)});
    EXPECT_TRUE(finds(IconKind::figuresAndTitle));
}

TEST_F(HostRecognitionTest, looksAtHostsBesideTheWatcher) {
    const auto kded = panel("kded5", {watcher});
    const auto shell = panel("plasmashell", {host(1)});
    const auto bar = panel("waybar", {host(2)});
    start();
    EXPECT_TRUE(finds(IconKind::figures));
    EXPECT_EQ(findings.size(), 1U);
}

TEST_F(HostRecognitionTest, looksAgainWhenAPanelGoesAndAnotherComes) {
    auto first = panel("gnome-shell", {watcher});
    start();
    ASSERT_TRUE(finds(IconKind::gauge));
    const auto second = panel("waybar", {host(2)});
    ASSERT_TRUE(finds(IconKind::figures));
    first.reset();
    EXPECT_TRUE(finds(IconKind::figuresAndTitle));
}

TEST_F(HostRecognitionTest, keepsTheLastFindingWhileThereIsNoPanel) {
    auto shell = panel("gnome-shell", {watcher});
    start();
    ASSERT_TRUE(finds(IconKind::gauge));
    bool isGone = false;
    const auto change = applicationBus.subscribe(
        {.member = "NameOwnerChanged", .firstArgument = watcher},
        [&](bus::Message&) { isGone = true; });
    shell.reset();
    ASSERT_TRUE(loop.runUntil([&] { return isGone; }));
    settle();
    EXPECT_EQ(findings, std::vector{IconKind::gauge});
}

TEST_F(HostRecognitionTest, isNotTakenInByNamesWithLineBreaks) {
    const auto shell = panel("gnome-shell\n", {watcher});
    start();
    ASSERT_TRUE(finds(IconKind::figures));
    findings.clear();
    const auto bar = panel("waybar\ngnome", {host(1)});
    EXPECT_TRUE(finds(IconKind::figures));
}

TEST_F(HostRecognitionTest, passesOverOtherNamesOfTheSameFamily) {
    const auto bar = panel("waybar", {watcher});
    start();
    ASSERT_TRUE(finds(IconKind::figuresAndTitle));
    const auto others = panel(
        "other",
        {"org.kde.StatusNotifierItem-1-1", "org.kde.StatusNotifierHost", "org.kde.StatusNotifier",
         "org.kde.StatusNotifierWatcher2", "org.freedesktop.StatusNotifierHost-1"});
    settle();
    EXPECT_EQ(findings, std::vector{IconKind::figuresAndTitle});
}

TEST_F(HostRecognitionTest, asksNobodyAboutMoreHostsThanADesktopHas) {
    std::vector<std::string> names = {watcher};
    for (int number = 1; number < 16; ++number) {
        names.push_back(host(number));
    }
    const auto bar = panel("waybar", names);
    start();
    EXPECT_TRUE(finds(IconKind::figuresAndTitle));

    auto one = panel("waybar", {host(16)});
    EXPECT_TRUE(finds(IconKind::figures));
    one.reset();
    EXPECT_TRUE(finds(IconKind::figuresAndTitle));
}

TEST_F(HostRecognitionTest, settlesOnTheTruthAfterAHostCameAndWentAHundredTimes) {
    const auto shell = panel("gnome-shell", {watcher});
    start();
    ASSERT_TRUE(finds(IconKind::gauge));
    findings.clear();
    {
        auto other = bus::Bus::open(loop.real(), daemon.address());
        for (int round = 0; round < 100; ++round) {
            ASSERT_TRUE(other.requestName(host(1)));
            sd_bus_release_name(other.native(), host(1).c_str());
        }
    }
    const auto last = panel("notification-ar", {host(2)});
    settle();
    ASSERT_FALSE(findings.empty());
    EXPECT_EQ(findings.back(), IconKind::gauge);
    // One look at a time, whatever the pace of the changes.
    EXPECT_LE(findings.size(), 4U);
}

TEST_F(HostRecognitionTest, findsNothingOnceTheBusIsLost) {
    const auto shell = panel("gnome-shell", {watcher});
    bool isLost = false;
    applicationBus.onDisconnect([&] { isLost = true; });
    start();
    daemon.stop();
    ASSERT_TRUE(loop.runUntil([&] { return isLost; }));
    loop.runPending();
    EXPECT_TRUE(findings.empty());
}

} // namespace

} // namespace vorla
