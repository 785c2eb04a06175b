// SPDX-License-Identifier: MIT
// Both programs as they are, in the session that this runs in: the menu is used over the session
// bus, as a panel does it, and the window over the accessibility bus, as a screen reader does it.
#include "bus/ScriptedPanel.h"
#include "desktop/AccessibilityBus.h"
#include "desktop/TunnelProxy.h"
#include "fennic/TlsServer.h"
#include "linux/TemporaryFolder.h"
#include "model/FennicLine.h"

#include <QProcess>
#include <QTest>
#include <QUrl>

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <iterator>

namespace vorla {

namespace {

constexpr int waitLimitMilliseconds = 60000;

using Control = AccessibilityBus::Control;

/// Runs the command that the session has for this, with an argument.
bool useSession(const char* command, const std::string& argument = "") {
    const char* const known = std::getenv(command);
    return known != nullptr && std::system((known + (" " + argument)).c_str()) == 0;
}

bool waitFor(const std::function<bool()>& condition) {
    return QTest::qWaitFor(condition, waitLimitMilliseconds);
}

std::string title(int fiveHour, int weekly) {
    return "5h " + std::to_string(fiveHour) + "% · W " + std::to_string(weekly) + "%";
}

class TaskFitCheck : public testing::Test {
protected:
    TaskFitCheck() {
        server.answerWith({answer(200, goodBody)});
        setFigures(87, 62);
        auto variables = QProcessEnvironment::systemEnvironment();
        variables.insert("HOME", QString::fromStdString(folder.path()));
        variables.insert("XDG_CONFIG_HOME", QString::fromStdString(folder.at("config")));
        variables.insert("VORLA_USAGE_EXECUTABLE", VORLA_TEST_CHILDREN "/printsSnapshot");
        variables.insert("SNAPSHOT", QString::fromStdString(folder.at("snapshot")));
        variables.insert("https_proxy", proxy.address());
        resident.setProcessEnvironment(variables);
        resident.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        start();
    }

    ~TaskFitCheck() override {
        resident.terminate();
        resident.waitForFinished(waitLimitMilliseconds);
        EXPECT_TRUE(waitFor([this] { return windows().empty(); }));
    }

    void start() {
        resident.start(VORLA_TEST_PROGRAMS "/VorlaUsageMenuBar", QStringList());
        EXPECT_TRUE(showsFigures(87, 62));
    }

    void setFigures(int fiveHour, int weekly) const {
        const auto window = [](int minutes, int remaining) {
            return R"({"name": "", "windowDurationMins": )" + std::to_string(minutes) +
                   R"(, "resetsAt": 1700009000, "usedPercent": )" +
                   std::to_string(100 - remaining) + R"(, "remainingPercent": )" +
                   std::to_string(remaining) + "}";
        };
        folder.write(
            "snapshot", R"({"schemaVersion": 1, "fetchedAt": 1700000000, "windows": [)" +
                            window(300, fiveHour) + ", " + window(10080, weekly) + "]}");
    }

    void choose(LineRole role) { EXPECT_TRUE(panel.sendEvent(lineId({.role = role}), "clicked")); }

    bool showsFigures(int fiveHour, int weekly) {
        return waitFor(
            [&] { return panel.itemProperty<std::string>("Title") == title(fiveHour, weekly); });
    }

    void refreshTo(int fiveHour, int weekly) {
        setFigures(fiveHour, weekly);
        choose(LineRole::refresh);
        ASSERT_TRUE(showsFigures(fiveHour, weekly));
    }

    /// The programs that show a window.
    std::vector<pid_t> windows() { return tools.programs("VorlaUsageFennic"); }

    std::vector<pid_t> childrenOfResident() const {
        const auto number = std::to_string(resident.processId());
        std::ifstream file("/proc/" + number + "/task/" + number + "/children");
        EXPECT_TRUE(file) << "the kernel tells nobody's children";
        return {std::istream_iterator<pid_t>(file), {}};
    }

    /// Chooses "Fennic…" and returns the one window's program once its content is there.
    pid_t open() {
        choose(LineRole::openFennic);
        EXPECT_TRUE(waitFor([this] { return windows().size() == 1 && find("push button"); }));
        const auto found = windows();
        return found.empty() ? 0 : found.front();
    }

    std::vector<Control> controls() {
        const auto programs = windows();
        return programs.empty() ? std::vector<Control>{} : tools.controls(programs.front());
    }

    /// The first control of this role.
    std::optional<Control> find(const std::string& role) {
        const auto all = controls();
        const auto found = std::ranges::find(all, role, &Control::role);
        return found == all.end() ? std::nullopt : std::optional(*found);
    }

    /// What the labels say, from top to bottom.
    std::vector<std::string> labels() {
        std::vector<std::string> texts;
        for (const auto& control : controls()) {
            if (control.role == "label") {
                texts.push_back(control.name);
            }
        }
        return texts;
    }

    bool isActive(pid_t program) {
        const auto all = tools.controls(program);
        return !all.empty() && all.front().has(AccessibilityBus::active);
    }

    /// Types the task and presses the default button.
    void check(const std::string& task) {
        EXPECT_TRUE(tools.insertText(find("text").value(), task));
        const auto all = controls();
        const auto button = std::ranges::find_if(
            all, [](const Control& control) { return control.has(AccessibilityBus::isDefault); });
        ASSERT_NE(button, all.end());
        EXPECT_EQ(button->name, "Check task");
        EXPECT_TRUE(tools.press(*button));
    }

    /// The body of the request with this number, counted from 1, once it has come.
    std::string request(std::size_t number) {
        EXPECT_TRUE(waitFor([&] { return server.requests().size() >= number; }));
        return server.requests().at(number - 1).body;
    }

    TemporaryFolder folder;
    ManualLoop loop;
    std::string session = std::getenv("DBUS_SESSION_BUS_ADDRESS");
    AccessibilityBus tools{loop, session};
    ScriptedPanel panel{loop, session};
    TlsServer server{"server-of-service"};
    TunnelProxy proxy{server.serverPort()};
    QProcess resident;
};

const std::vector<std::string> initialLabels = {
    fennicHeading().text, fennicPrompt().text, fennicHint().text, fennicPrivacyNote().text};

} // namespace

TEST_F(TaskFitCheck, leadsFromTheMenuToAVerdict) {
    open();
    EXPECT_EQ(labels(), initialLabels);
    check("Sort the list");
    EXPECT_EQ(
        request(1), R"({"task":"Sort the list","quota":{"fiveHourRemainingPercent":87,)"
                    R"("fiveHourSecondsToReset":9000,"weeklyRemainingPercent":62,)"
                    R"("weeklySecondsToReset":9000}})");
    EXPECT_EQ(proxy.requests().at(0), "CONNECT service.example:443 HTTP/1.1");
    auto expected = initialLabels;
    for (const char* line :
         {"PLAN FIRST", "Fit probability: 28%", "Task size: Medium", "Current 5-hour quota: 87%",
          "Current weekly quota: 62%", "Medium task with substantial quota remaining.",
          "Experimental task-fit assessment, not an Orvane quota estimate."}) {
        expected.emplace_back(line);
    }
    EXPECT_TRUE(waitFor([&] { return labels() == expected; }));
    EXPECT_EQ(tools.textOf(find("text").value()), "Sort the list");
}

TEST_F(TaskFitCheck, canBeDoneWithTheKeyboardAlone) {
    const pid_t program = open();
    ASSERT_TRUE(waitFor([&] { return isActive(program); }));
    EXPECT_TRUE(useSession("VORLA_TEST_TYPE", "Sort"));
    EXPECT_TRUE(useSession("VORLA_TEST_PRESS", "Return"));
    EXPECT_TRUE(useSession("VORLA_TEST_TYPE", "it"));
    EXPECT_TRUE(waitFor([&] { return tools.textOf(find("text").value()) == "Sort\nit"; }));
    EXPECT_TRUE(server.requests().empty());
    EXPECT_TRUE(useSession("VORLA_TEST_PRESS", "Tab"));
    EXPECT_TRUE(useSession("VORLA_TEST_PRESS", "Return"));
    EXPECT_NE(request(1).find(R"("task":"Sort\nit")"), std::string::npos) << request(1);
    EXPECT_TRUE(waitFor([&] { return labels().size() == initialLabels.size() + 7; }));
    EXPECT_TRUE(useSession("VORLA_TEST_PRESS", "Return"));
    EXPECT_EQ(request(1), request(2));
}

TEST_F(TaskFitCheck, tellsAssistiveToolsTheNameAndRoleOfEveryControl) {
    open();
    const auto all = controls();
    ASSERT_FALSE(all.empty());
    EXPECT_EQ(all.front().role, "dialog");
    EXPECT_EQ(all.front().name, "Fennic");
    std::vector<std::string> operable;
    for (const auto& control : all) {
        // Whatever only holds other things needs no name.
        if (control.role == "filler" || control.role == "viewport") {
            continue;
        }
        EXPECT_NE(control.name, "") << control.role;
        if (control.role != "label" && control.role != "dialog") {
            operable.push_back(control.role + ": " + control.name);
            EXPECT_TRUE(control.has(AccessibilityBus::sensitive)) << control.role;
        }
    }
    EXPECT_EQ(
        operable, (std::vector<std::string>{
                      "text: What are you about to ask your coding agent to do?",
                      "push button: Check task"}));
    EXPECT_TRUE(find("text")->has(AccessibilityBus::editable));
}

TEST_F(TaskFitCheck, saysOverTheAccessibilityBusWhatIsWrong) {
    server.answerWith({answer(500, "")});
    open();
    check("");
    auto expected = initialLabels;
    expected.emplace_back("Describe the task first.");
    EXPECT_TRUE(waitFor([&] { return labels() == expected; }));
    check("Sort the list");
    expected.back() = "The check is unavailable right now. Usage monitoring is unaffected.";
    EXPECT_TRUE(waitFor([&] { return labels() == expected; }));
    EXPECT_TRUE(find("push button")->has(AccessibilityBus::sensitive));
}

TEST_F(TaskFitCheck, sendsTheQuotaOfTheMomentOfOpening) {
    const pid_t first = open();
    refreshTo(5, 6);
    check("One");
    EXPECT_NE(request(1).find(R"("fiveHourRemainingPercent":87)"), std::string::npos) << request(1);

    ASSERT_TRUE(waitFor([&] { return isActive(first); }));
    EXPECT_TRUE(useSession("VORLA_TEST_CLOSE_WINDOW"));
    ASSERT_TRUE(waitFor([this] { return windows().empty(); }));
    const pid_t second = open();
    EXPECT_NE(first, second);
    EXPECT_EQ(tools.textOf(find("text").value()), "");
    EXPECT_EQ(labels(), initialLabels);
    check("Two");
    EXPECT_NE(request(2).find(R"("fiveHourRemainingPercent":5,)"), std::string::npos) << request(2);
}

TEST_F(TaskFitCheck, opensOneWindowHoweverOftenItIsChosen) {
    const pid_t program = open();
    EXPECT_TRUE(tools.insertText(find("text").value(), "Sort"));
    choose(LineRole::openFennic);
    choose(LineRole::openFennic);
    // Later lines of the seam are answered by nothing; a whole check comes after them.
    check("");
    request(1);
    EXPECT_EQ(windows(), std::vector<pid_t>{program});
    // Another one might not have got as far as a window yet. The companion comes and goes.
    EXPECT_TRUE(waitFor([&] { return childrenOfResident() == std::vector<pid_t>{program}; }));
    EXPECT_EQ(tools.textOf(find("text").value()), "Sort");
}

TEST_F(TaskFitCheck, bringsTheWindowToTheFrontOnASecondChoice) {
    const pid_t program = open();
    ASSERT_TRUE(waitFor([&] { return isActive(program); }));
    QProcess other;
    other.setProcessEnvironment(resident.processEnvironment());
    other.start(VORLA_TEST_PROGRAMS "/VorlaUsageFennic", QStringList());
    other.write("{\"quota\":{}}\n");
    ASSERT_TRUE(waitFor([&] { return isActive(static_cast<pid_t>(other.processId())); }));
    EXPECT_TRUE(waitFor([&] { return !isActive(program); }));
    choose(LineRole::openFennic);
    EXPECT_TRUE(waitFor([&] { return isActive(program); }));
    other.closeWriteChannel();
    EXPECT_TRUE(other.waitForFinished(waitLimitMilliseconds));
}

TEST_F(TaskFitCheck, isRefusedByTheInstalledProgramWhateverTheVariablesSay) {
    TlsServer imposter("server-of-release");
    imposter.answerWith({answer(200, goodBody)});
    const TunnelProxy way(imposter.serverPort());
    auto variables = resident.processEnvironment();
    variables.insert("https_proxy", way.address());
    for (const char* name : {"SSL_CERT_FILE", "VORLA_FENNIC_CA_FILE"}) {
        variables.insert(name, certificateFile("authority"));
    }
    for (const char* name : {"VORLA_FENNIC_HOST", "VORLA_FENNIC_DOMAIN"}) {
        variables.insert(name, imposter.host());
    }
    QProcess window;
    window.setProcessEnvironment(variables);
    window.start(VORLA_FENNIC_PROGRAM, QStringList());
    window.write("{\"quota\":{}}\n");
    ASSERT_TRUE(waitFor([this] { return find("push button").has_value(); }));
    check("Sort");
    auto expected = initialLabels;
    expected.emplace_back("The check could not reach " VORLA_FENNIC_DOMAIN ".");
    EXPECT_TRUE(waitFor([&] { return labels() == expected; }));
    const QUrl service("https://" VORLA_FENNIC_HOST);
    EXPECT_EQ(
        way.requests().at(0),
        QString("CONNECT %1:%2 HTTP/1.1").arg(service.host()).arg(service.port(443)).toUtf8());
    EXPECT_TRUE(imposter.requests().empty());
    window.closeWriteChannel();
    EXPECT_TRUE(window.waitForFinished(waitLimitMilliseconds));
}

TEST_F(TaskFitCheck, closesWithTheProgramThatOpenedIt) {
    open();
    choose(LineRole::quit);
    EXPECT_TRUE(resident.waitForFinished(waitLimitMilliseconds));
    EXPECT_TRUE(waitFor([this] { return windows().empty(); }));

    start();
    open();
    resident.kill();
    EXPECT_TRUE(resident.waitForFinished(waitLimitMilliseconds));
    EXPECT_TRUE(waitFor([this] { return windows().empty(); }));
}

TEST_F(TaskFitCheck, leavesTheItemUntouchedWhenItsProgramIsKilled) {
    server.answerWith({staySilent});
    const auto before = panel.lines();
    for (const bool isChecking : {false, true}) {
        const pid_t program = open();
        if (isChecking) {
            check("Sort");
            request(1);
        }
        panel.newSignals();
        ASSERT_EQ(kill(program, SIGKILL), 0);
        // Until the program that started it has collected it.
        ASSERT_TRUE(waitFor([program] { return kill(program, 0) != 0; }));
        EXPECT_EQ(panel.lines(), before);
        EXPECT_TRUE(panel.newSignals().empty());
        EXPECT_EQ(panel.itemProperty<std::string>("Title"), title(87, 62));
    }
    EXPECT_NE(open(), 0);
    refreshTo(40, 41);
}

} // namespace vorla
