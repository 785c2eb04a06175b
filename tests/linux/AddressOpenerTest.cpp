// SPDX-License-Identifier: MIT
#include "linux/AddressOpener.h"

#include "children/NothingLeftBehind.h"
#include "linux/ToolFolder.h"

#include <gtest/gtest.h>

#include <csignal>

namespace vorla {

namespace {

constexpr auto tool = "xdg-open";

class AddressOpenerTest : public NothingLeftBehind {
protected:
    std::unique_ptr<DesktopAddressOpener> opener(std::vector<std::string> variables = {}) {
        return std::make_unique<DesktopAddressOpener>(
            loop(), tools.environment(std::move(variables)));
    }

    /// Opens an address with the recording tool and waits until that has been collected.
    void openAndWait(
        const std::string& address, const std::optional<std::string>& token = {},
        std::vector<std::string> variables = {}) {
        const auto desktop = opener(std::move(variables));
        desktop->open(address, token);
        EXPECT_FALSE(hasNoChild());
        ASSERT_TRUE(loop().runUntil(hasNoChild));
        ASSERT_TRUE(tools.wasStarted(tool));
    }

    ToolFolder tools;
};

} // namespace

TEST_F(AddressOpenerTest, givesTheToolTheAddressAsItsOnlyArgument) {
    tools.put(tool, "recordsItsStart");
    const std::string address = "http://127.0.0.1:1/$(id);&&'%20*?a b#c";
    openAndWait(address);
    EXPECT_EQ(tools.record(tool, "arguments"), address + "\n");
}

TEST_F(AddressOpenerTest, startsTheToolInASessionOfItsOwnWithNothingOfOurs) {
    tools.put(tool, "recordsItsStart");
    // Without O_CLOEXEC, unlike all that the program opens itself.
    const FileDescriptor stray(open("/dev/zero", O_RDONLY));
    sigset_t blocked;
    sigset_t maskBefore;
    sigemptyset(&blocked);
    sigaddset(&blocked, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &blocked, &maskBefore);
    const auto pipeBefore = std::signal(SIGPIPE, SIG_IGN);
    openAndWait("http://127.0.0.1/");
    std::signal(SIGPIPE, pipeBefore);
    pthread_sigmask(SIG_SETMASK, &maskBefore, nullptr);
    EXPECT_EQ(tools.record(tool, "descriptors"), "0 /dev/null\n1 /dev/null\n2 /dev/null\n");
    EXPECT_EQ(tools.record(tool, "session"), "own");
    EXPECT_EQ(tools.record(tool, "signals"), "");
}

TEST_F(AddressOpenerTest, handsOnAnActivationTokenUnderBothNames) {
    tools.put(tool, "recordsItsStart");
    openAndWait("http://127.0.0.1/", "token-1", {"A=1"});
    EXPECT_EQ(
        tools.record(tool, "environment"),
        "A=1\nPATH=" + tools.folder().at("path") + "\nRECORD=" + tools.folder().at("records") +
            "\nXDG_ACTIVATION_TOKEN=token-1\nDESKTOP_STARTUP_ID=token-1\n");
}

TEST_F(AddressOpenerTest, handsOnNoTokenThatWasMeantForUs) {
    tools.put(tool, "recordsItsStart");
    const std::vector<std::string> inherited = {
        "XDG_ACTIVATION_TOKEN=old", "A=1", "DESKTOP_STARTUP_ID=old"};
    const std::string without = "A=1\nPATH=" + tools.folder().at("path") +
                                "\nRECORD=" + tools.folder().at("records") + "\n";
    openAndWait("http://127.0.0.1/", std::nullopt, inherited);
    EXPECT_EQ(tools.record(tool, "environment"), without);

    tools.forget(tool);
    openAndWait("http://127.0.0.1/", "", inherited);
    EXPECT_EQ(tools.record(tool, "environment"), without);

    tools.forget(tool);
    openAndWait("http://127.0.0.1/", "new", inherited);
    EXPECT_EQ(
        tools.record(tool, "environment"),
        without + "XDG_ACTIVATION_TOKEN=new\nDESKTOP_STARTUP_ID=new\n");
}

TEST_F(AddressOpenerTest, doesNotWaitForATool) {
    // As where the tool runs the browser itself.
    tools.put(tool, "waitsForGo");
    const auto desktop = opener({goVariable()});
    desktop->open("http://127.0.0.1:1/", std::nullopt);
    desktop->open("http://127.0.0.1:2/", std::nullopt);
    loop().runPending();
    EXPECT_FALSE(hasNoChild());
    go();
    go();
    EXPECT_TRUE(loop().runUntil(hasNoChild));
}

TEST_F(AddressOpenerTest, leavesAToolRunningWhenItGoesAwayItself) {
    tools.put(tool, "waitsForGo");
    auto desktop = opener({goVariable()});
    desktop->open("http://127.0.0.1/", std::nullopt);
    desktop.reset();
    EXPECT_FALSE(hasNoChild());
    go();
    siginfo_t end = {};
    ASSERT_EQ(waitid(P_ALL, 0, &end, WEXITED), 0);
    EXPECT_EQ(end.si_code, CLD_EXITED);
    EXPECT_EQ(end.si_status, 0);
}

TEST_F(AddressOpenerTest, reportsNothingWhereThereIsNoTool) {
    opener()->open("http://127.0.0.1/", std::nullopt);
    DesktopAddressOpener(loop(), {}).open("http://127.0.0.1/", std::nullopt);
    EXPECT_TRUE(hasNoChild());
}

TEST_F(AddressOpenerTest, looksOnlyForProgramsAndOnlyInAbsoluteFolders) {
    std::filesystem::create_directories(tools.folder().at("folder/xdg-open"));
    tools.folder().write("plain/xdg-open", "#!/bin/false\n");
    const auto workingFolder = std::filesystem::current_path();
    std::filesystem::current_path(tools.folder().path());
    tools.put(tool, "recordsItsStart");
    const auto openerIn = [this](const std::string& path) {
        return DesktopAddressOpener(
            loop(), {"PATH=" + path, "RECORD=" + tools.folder().at("records")});
    };
    auto without =
        openerIn("path:./path::" + tools.folder().at("folder") + ":" + tools.folder().at("plain"));
    without.open("http://127.0.0.1/", std::nullopt);
    EXPECT_TRUE(hasNoChild());
    auto with = openerIn(tools.folder().at("folder") + ":" + tools.folder().at("path"));
    with.open("http://127.0.0.1/", std::nullopt);
    EXPECT_FALSE(hasNoChild());
    EXPECT_TRUE(loop().runUntil(hasNoChild));
    EXPECT_TRUE(tools.wasStarted(tool));
    std::filesystem::current_path(workingFolder);
}

} // namespace vorla
