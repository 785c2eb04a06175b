// SPDX-License-Identifier: MIT
// What the program does with desktop tools and the demonstration companion when a line is chosen.
#include "app/LocalPage.h"
#include "bus/ProgramFixture.h"
#include "linux/ToolFolder.h"
#include "model/DiagnosticDocument.h"

#include <gtest/gtest.h>
#include <sys/prctl.h>

#include <optional>
#include <string>
#include <variant>

namespace vorla {

namespace {

class ProgramActions : public ProgramTest {
protected:
    void SetUp() override {
        ProgramTest::SetUp();
        // Whatever the program leaves behind becomes a child of this process.
        ASSERT_EQ(prctl(PR_SET_CHILD_SUBREAPER, 1), 0);
        bus_.emplace();
        panel_.emplace(loop(), bus_->address());
    }

    void TearDown() override {
        panel_.reset();
        bus_.reset();
        prctl(PR_SET_CHILD_SUBREAPER, 0);
        ProgramTest::TearDown();
    }

    /// Starts the program with the demonstration companion; what opens and copies are test
    /// children.
    Program& startInDesktop() {
        tools.put("xdg-open", "recordsItsStart");
        tools.put("xclip", "recordsItsStart");
        auto& program = start(
            {}, tools.environment(
                    {"DBUS_SESSION_BUS_ADDRESS=" + bus_->address(), "DISPLAY=:7",
                     "VORLA_DEMO_NOW=1699833600", "VORLA_USAGE_EXECUTABLE=" VORLA_DEMO_COMPANION}));
        EXPECT_TRUE(panel_->becomeWatcher());
        EXPECT_TRUE(runUntilRegistered(*panel_));
        return program;
    }

    void choose(LineRole role) {
        EXPECT_TRUE(panel_->sendEvent(lineId({.role = role}), "clicked"));
    }

    /// What the line says by now; empty if it is not there.
    std::string text(LineRole role) {
        for (const auto& [id, properties, children] : panel_->lines()) {
            const auto label = properties.find("label");
            if (id == lineId({.role = role}) && label != properties.end()) {
                return std::get<std::string>(label->second);
            }
        }
        return "";
    }

    /// The user chooses the dashboard again and again until an address is opened.
    std::string openedAddress() {
        std::string arguments;
        EXPECT_TRUE(loop().runUntil([&] {
            choose(LineRole::openDashboard);
            arguments = tools.wasStarted("xdg-open") ? tools.record("xdg-open", "arguments") : "";
            return !arguments.empty();
        }));
        return arguments.substr(0, arguments.find('\n'));
    }

    void quitAndExpectNobodyLeft(Program& program) {
        choose(LineRole::quit);
        expectEnd(program, 0);
        panel_.reset();
        bus_.reset();
        EXPECT_TRUE(loop().runUntil([] {
            while (waitpid(-1, nullptr, WNOHANG) > 0) {}
            return hasNoChild();
        }));
    }

    ToolFolder tools;

private:
    std::optional<PrivateBus> bus_;
    std::optional<ScriptedPanel> panel_;
};

} // namespace

TEST_F(ProgramActions, opensTheDashboardsRealPageAndLeavesNoServerBehind) {
    auto& program = startInDesktop();
    const auto address = openedAddress();
    EXPECT_EQ(address, "http://127.0.0.1:" + portIn(address) + "/");
    const auto page = fetched(portIn(address), "/");
    EXPECT_EQ(page.rfind("HTTP/1.1 200 OK\r\n", 0), 0U);
    EXPECT_NE(page.find("<polyline"), std::string::npos);
    quitAndExpectNobodyLeft(program);
}

TEST_F(ProgramActions, copiesTheDiagnosticDocumentAndSaysSo) {
    auto& program = startInDesktop();
    choose(LineRole::copyDiagnosticSnapshot);
    ASSERT_TRUE(loop().runUntil([this] { return !text(LineRole::diagnosticStatus).empty(); }));
    EXPECT_EQ(text(LineRole::diagnosticStatus), "Diagnostic snapshot copied.");
    const auto copied = tools.record("xclip", "input");
    EXPECT_NE(copied.find("\n  \"diagnosticSchemaVersion\": 1,\n"), std::string::npos) << copied;
    EXPECT_EQ(normalizedDiagnosticDocument(copied), copied);
    quitAndExpectNobodyLeft(program);
}

} // namespace vorla
