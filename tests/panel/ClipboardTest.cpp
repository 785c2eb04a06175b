// SPDX-License-Identifier: MIT
#include "linux/Clipboard.h"

#include "linux/EventLoop.h"
#include "linux/FileDescriptor.h"
#include "linux/TemporaryFolder.h"
#include "panel/DisplayServer.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <optional>
#include <random>
#include <string>
#include <vector>

namespace vorla {
namespace {

class RealClipboardTest : public testing::Test {
protected:
    void startXServer() {
        server.emplace(environment);
        environment.push_back("DISPLAY=" + server->display());
    }

    void startWaylandServer() {
        const auto configuration =
            folder.write("sway", "xwayland disable\nexec echo \"$WAYLAND_DISPLAY\"\n");
        auto variables = environment;
        variables.emplace_back("WLR_BACKENDS=headless");
        variables.emplace_back("WLR_RENDERER=pixman");
        variables.emplace_back("WLR_LIBINPUT_NO_DEVICES=1");
        std::vector<std::string> command = {"sway", "-c", configuration};
        if (geteuid() == 0) {
            // It refuses to run as root.
            const std::string nobody = "65534";
            const auto number = static_cast<uid_t>(std::stoi(nobody));
            ASSERT_EQ(chown(folder.path().c_str(), number, number), 0);
            const std::vector<std::string> asNobody = {
                "setpriv", "--reuid=" + nobody, "--regid=" + nobody, "--clear-groups"};
            command.insert(command.begin(), asNobody.begin(), asNobody.end());
        }
        server.emplace(command, variables);
        environment.push_back("WAYLAND_DISPLAY=" + server->display());
        environment.emplace_back("XDG_CURRENT_DESKTOP=sway");
    }

    /// Copies in a program of its own, which has ended when this returns.
    void copyAndEnd(const std::string& text) {
        const pid_t program = fork();
        if (program == 0) {
            _exit(copied(text) ? 0 : 1);
        }
        int status = -1;
        ASSERT_EQ(waitpid(program, &status, 0), program);
        EXPECT_EQ(status, 0);
    }

    /// Whether another program comes to paste this. A tool may end a moment before its other half,
    /// which goes on in the background, has taken the clipboard.
    testing::AssertionResult
    isPasted(const std::string& text, const std::vector<std::string>& command) const {
        const auto end = std::chrono::steady_clock::now() + patience;
        while (pasted(command) != text) {
            if (std::chrono::steady_clock::now() > end) {
                return testing::AssertionFailure() << "this is pasted: " << pasted(command);
            }
        }
        return testing::AssertionSuccess();
    }

    std::string pasted(const std::vector<std::string>& command) const {
        const FileDescriptor nothing(open("/dev/null", O_RDONLY | O_CLOEXEC));
        const FileDescriptor file(
            open(folder.at("pasted").c_str(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0600));
        const pid_t program = start(command, environment, nothing.number(), file.number());
        waitpid(program, nullptr, 0);
        return folder.read("pasted");
    }

    /// Text of two mebibytes with no part like another.
    static std::string longText() {
        std::mt19937 random(2); // NOLINT(bugprone-random-generator-seed): repeatable
        std::string text = "{\"größe\": \"";
        while (text.size() < std::size_t{2} << 20U) {
            text += static_cast<char>('a' + random() % 26);
        }
        return text + "\"}\n";
    }

    TemporaryFolder folder;
    std::vector<std::string> environment = {
        std::string("PATH=") + std::getenv("PATH"), "HOME=" + folder.path(),
        "XDG_RUNTIME_DIR=" + folder.path(), "LC_ALL=C.UTF-8"};
    std::optional<DisplayServer> server;

private:
    bool copied(const std::string& text) const {
        EventLoop loop;
        DesktopClipboard clipboard(loop, environment);
        std::optional<Clipboard::Outcome> outcome;
        clipboard.copy(text, [&outcome](Clipboard::Outcome answer) { outcome = answer; });
        const auto end = std::chrono::steady_clock::now() + patience;
        while (!outcome && std::chrono::steady_clock::now() < end) {
            loop.runOnce(std::chrono::milliseconds{100});
        }
        return outcome == Clipboard::Outcome::copied;
    }
};

const std::vector<std::string> pasteFromX11 = {"xclip", "-o", "-selection", "clipboard"};
const std::vector<std::string> pasteFromWayland = {"wl-paste", "--no-newline"};

TEST_F(RealClipboardTest, holdsALongTextUnderX11AfterTheProgramHasEnded) {
    startXServer();
    const std::string text = longText();
    copyAndEnd(text);
    EXPECT_TRUE(isPasted(text, pasteFromX11));
}

TEST_F(RealClipboardTest, replacesWhatTheX11ClipboardHeld) {
    startXServer();
    copyAndEnd("first");
    EXPECT_TRUE(isPasted("first", pasteFromX11));
    copyAndEnd("sécond / \"text\"\n");
    EXPECT_TRUE(isPasted("sécond / \"text\"\n", pasteFromX11));
}

TEST_F(RealClipboardTest, holdsALongTextUnderWaylandAfterTheProgramHasEnded) {
    startWaylandServer();
    const std::string text = longText();
    copyAndEnd(text);
    EXPECT_TRUE(isPasted(text, pasteFromWayland));
}

TEST_F(RealClipboardTest, replacesWhatTheWaylandClipboardHeldAndTellsItsType) {
    startWaylandServer();
    copyAndEnd("first");
    EXPECT_TRUE(isPasted("first", pasteFromWayland));
    copyAndEnd("sécond / \"text\"\n");
    EXPECT_TRUE(isPasted("sécond / \"text\"\n", pasteFromWayland));
    EXPECT_NE(
        pasted({"wl-paste", "--list-types"}).find("text/plain;charset=utf-8\n"), std::string::npos);
}

TEST_F(RealClipboardTest, fallsBackToX11WhenTheWaylandServerIsGone) {
    startXServer();
    environment.emplace_back("WAYLAND_DISPLAY=wayland-gone");
    copyAndEnd("text");
    EXPECT_TRUE(isPasted("text", pasteFromX11));
}

} // namespace
} // namespace vorla
