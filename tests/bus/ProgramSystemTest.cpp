// SPDX-License-Identifier: MIT
// The program itself when the system stops it, ends it or has nothing left to give.
#include "bus/ProgramOnBus.h"
#include "linux/ToolFolder.h"

#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

namespace vorla {

namespace {

class ProgramSystemTest : public ProgramOnBus {
protected:
    /// Stops the program, and returns once it stands.
    static void stop(const Program& program) {
        program.send(SIGSTOP);
        siginfo_t change = {};
        const auto number = static_cast<id_t>(program.number());
        ASSERT_EQ(waitid(P_PID, number, &change, WSTOPPED | WNOWAIT), 0);
    }

    /// Lets the companion of `role` start, which ignores requests to end.
    void startStubborn(LineRole role) {
        companionIs("ignoresRequests");
        choose(role);
        nextReady();
    }
};

/// Left out where there are sanitizers, like all tests whose names begin with "Hostile": those need
/// descriptors, too.
class HostileProgramLimit : public ProgramSystemTest {};

} // namespace

TEST_F(ProgramSystemTest, endsAtARequestInEveryState) {
    using State = std::function<void(Program&)>;
    const std::vector<State> states = {
        [](Program&) {},
        [this](Program&) { panel().sendEvent(0, "opened"); },
        [this](Program&) { startStubborn(LineRole::refresh); },
        [this](Program&) { startStubborn(LineRole::openDashboard); },
        [this](Program&) { startStubborn(LineRole::copyDiagnosticSnapshot); },
        [this](Program&) {
            // Asked, it says nothing.
            auto& service = startNotificationService();
            service.answers["GetServerInformation"] = ScriptedNotificationService::silence();
            choose(LineRole::quotaNotifications);
            EXPECT_TRUE(loop().runUntil([&] { return !service.calls.empty(); }));
        },
        [this](Program&) {
            // Shown, it does not say so.
            auto& service = startNotificationService();
            service.answers["Notify"] = ScriptedNotificationService::silence();
            choose(LineRole::quotaNotifications);
            EXPECT_TRUE(loop().runUntil([&] { return !service.notifications.empty(); }));
        },
        [](Program& program) {
            stop(program);
            program.send(SIGTERM);
            program.send(SIGCONT);
        },
        [this](Program&) { bus().freeze(); },
    };
    for (const auto& bringAbout : states) {
        auto& program = startWithFigures();
        ASSERT_NO_FATAL_FAILURE(bringAbout(program));
        ASSERT_NO_FATAL_FAILURE(endsAtRequest(program));
    }
}

TEST_F(ProgramSystemTest, endsAtARequestBeforeItsFirstFigures) {
    companionIs("ignoresRequests");
    auto& program = startHere();
    const FileDescriptor companion = processHandle(nextReady());
    endsAtRequest(program);
    EXPECT_TRUE(runUntilEnded(companion));
}

TEST_F(ProgramSystemTest, endsAtARequestAndLeavesAToolAloneThatHasTheClipboard) {
    const ToolFolder tools;
    tools.put("xclip", "printsThenHangs");
    auto document = contentOf(VORLA_TEST_DATA "/snapshots/full.json");
    document.insert(document.find('{') + 1, R"("diagnosticSchemaVersion":1,)");
    std::ofstream(home() + "/document") << document;
    auto& program =
        startWithFigures(tools.environment({"DISPLAY=:7", "SNAPSHOT=" + home() + "/document"}));
    choose(LineRole::copyDiagnosticSnapshot);
    const pid_t tool = nextReady();
    endsAtRequest(program);
    // Whatever has the text now may be what others paste from.
    EXPECT_EQ(kill(tool, SIGKILL), 0);
}

TEST_F(ProgramSystemTest, catchesUpAfterItWasStopped) {
    auto& program = startWithFigures();
    const auto descriptors = descriptorsOf(program);
    stop(program);
    ASSERT_TRUE(panel().becomeWatcher());
    std::vector<bus::Slot> calls;
    int answers = 0;
    for (int count = 0; count < 100; ++count) {
        calls.push_back(panel().bus().call(
            {applicationName, menuPath, menuInterface, "AboutToShow"}, std::chrono::seconds{25},
            [&](const bus::Reply<bool>& reply) { answers += reply.results ? 1 : 0; },
            std::int32_t{0}));
    }
    program.send(SIGCONT);
    EXPECT_TRUE(loop().runUntil([&] { return answers == 100; })) << answers;
    EXPECT_TRUE(runUntilRegistered(panel()));
    choose(LineRole::refresh);
    EXPECT_TRUE(runUntilFigures());
    EXPECT_TRUE(runUntilDescriptors(program, descriptors));
    endsAtRequest(program);
}

TEST_F(HostileProgramLimit, saysOfEachActionThatDescriptorsHaveRunOut) {
    const std::string reason = "Too many open files";
    startNotificationService();
    auto& program = startWithFigures();
    limit(program, RLIMIT_NOFILE, lowestFreeDescriptor(program));
    choose(LineRole::refresh);
    EXPECT_TRUE(runUntilText(LineRole::error, "Cannot run vorla-usage: " + reason));
    choose(LineRole::openDashboard);
    EXPECT_TRUE(runUntilText(LineRole::dashboardError, "Cannot open dashboard: " + reason));
    choose(LineRole::copyDiagnosticSnapshot);
    EXPECT_TRUE(runUntilText(LineRole::diagnosticStatus, "Cannot run diagnostics: " + reason));
    choose(LineRole::launchAtLogin);
    EXPECT_TRUE(runUntilText(
        LineRole::loginItemError,
        "Launch at Login: Cannot write ~/.config/autostart/com.vorla.UsageMenuBar.desktop: " +
            reason + "."));
    // What cannot be stored holds for this run.
    choose(LineRole::quotaNotifications);
    EXPECT_TRUE(runUntilChecked(LineRole::quotaNotifications));

    limit(program, RLIMIT_NOFILE, RLIM_INFINITY);
    choose(LineRole::refresh);
    EXPECT_TRUE(runUntilFigures());
    EXPECT_EQ(text(LineRole::error), "");
    choose(LineRole::launchAtLogin);
    EXPECT_TRUE(runUntilChecked(LineRole::launchAtLogin));
    companionIs("printsThenHangs");
    choose(LineRole::openDashboard);
    nextReady();
    panel().aboutToShow();
    EXPECT_EQ(text(LineRole::dashboardError), "");
    companionIs("printsSnapshot");
    choose(LineRole::copyDiagnosticSnapshot);
    EXPECT_TRUE(
        runUntilText(LineRole::diagnosticStatus, "Invalid diagnostic output from vorla-usage."));
    choose(LineRole::quotaNotifications);
    EXPECT_TRUE(loop().runUntil([this] { return !isChecked(LineRole::quotaNotifications); }));
    EXPECT_TRUE(std::filesystem::exists(home() + "/.config/VorlaUsageMenuBar/preferences.json"));
    endsAtRequest(program);
}

} // namespace vorla
