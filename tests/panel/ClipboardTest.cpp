// SPDX-License-Identifier: MIT
#include "linux/Clipboard.h"

#include "linux/EventLoop.h"
#include "linux/FileDescriptor.h"
#include "linux/TemporaryFolder.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <optional>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

namespace vorla {
namespace {

/// So generous that only a mistake reaches it.
constexpr std::chrono::seconds patience{60};

std::vector<char*> pointersTo(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (auto& text : texts) {
        pointers.push_back(text.data());
    }
    pointers.push_back(nullptr);
    return pointers;
}

/// A program found in PATH, started with these descriptors as its standard input and output.
pid_t start(
    std::vector<std::string> command, std::vector<std::string> environment, int input, int output) {
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, input, STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addclosefrom_np(&actions, STDERR_FILENO + 1);
    const auto arguments = pointersTo(command);
    const auto variables = pointersTo(environment);
    pid_t number = -1;
    const int error = posix_spawnp(
        &number, arguments.front(), &actions, nullptr, arguments.data(), variables.data());
    posix_spawn_file_actions_destroy(&actions);
    if (error != 0) {
        throw std::runtime_error("cannot start " + command.front());
    }
    return number;
}

/// A display server of the test's own; what it holds of a clipboard goes with it.
class DisplayServer final {
public:
    /// The command must make it print its display's name, and a line end.
    DisplayServer(const std::vector<std::string>& command, std::vector<std::string> environment) {
        std::array<int, 2> ends{};
        if (pipe2(ends.data(), O_CLOEXEC) != 0) {
            throw std::runtime_error("no pipe");
        }
        const FileDescriptor readEnd(ends[0]);
        const FileDescriptor writeEnd(ends[1]);
        const FileDescriptor nothing(open("/dev/null", O_RDONLY | O_CLOEXEC));
        number_ = start(command, std::move(environment), nothing.number(), writeEnd.number());
        display_ = readLine(readEnd);
    }

    ~DisplayServer() {
        kill(number_, SIGTERM);
        waitpid(number_, nullptr, 0);
    }

    DisplayServer(const DisplayServer&) = delete;
    DisplayServer& operator=(const DisplayServer&) = delete;

    const std::string& display() const { return display_; }

private:
    static std::string readLine(const FileDescriptor& pipe) {
        std::string line;
        char byte = 0;
        pollfd readable{.fd = pipe.number(), .events = POLLIN, .revents = 0};
        const auto limit = std::chrono::milliseconds(patience).count();
        while (poll(&readable, 1, static_cast<int>(limit)) == 1 &&
               read(pipe.number(), &byte, 1) == 1 && byte != '\n') {
            line += byte;
        }
        return line;
    }

    pid_t number_ = -1;
    std::string display_;
};

class RealClipboardTest : public testing::Test {
protected:
    void startXServer() {
        server.emplace(
            std::vector<std::string>{
                "Xvfb", "-displayfd", "1", "-screen", "0", "640x480x24", "-nolisten", "tcp",
                "-noreset"},
            environment);
        ASSERT_NE(server->display(), "");
        environment.push_back("DISPLAY=:" + server->display());
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
        ASSERT_NE(server->display(), "");
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
