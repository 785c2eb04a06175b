// SPDX-License-Identifier: MIT
// The program itself, as a desktop or a user starts it.
#include "app/Command.h"
#include "bus/PrivateBus.h"
#include "bus/ScriptedPanel.h"
#include "children/NothingLeftBehind.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <list>
#include <stdexcept>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

namespace vorla {

namespace {

using namespace std::chrono_literals;
using Texts = std::vector<std::string>;

constexpr auto entryPath = "/autostart/com.vorla.UsageMenuBar.desktop";

std::string contentOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::vector<char*> pointersTo(Texts& texts) {
    std::vector<char*> pointers;
    for (auto& text : texts) {
        pointers.push_back(text.data());
    }
    pointers.push_back(nullptr);
    return pointers;
}

/// A descriptor that is readable once the process has ended.
FileDescriptor processHandle(pid_t number) {
    // As pidfd_open(2), whose declaration in glibc 2.36 cannot be linked from C++.
    FileDescriptor handle(static_cast<int>(syscall(SYS_pidfd_open, number, 0)));
    if (!handle.isOpen()) {
        throw std::system_error(errno, std::generic_category(), "pidfd_open");
    }
    return handle;
}

/// One start of the program; what it prints goes to files beginning with `files`.
class Program final {
public:
    Program(std::string files, Texts arguments, Texts variables) : files_(std::move(files)) {
        arguments.insert(arguments.begin(), VORLA_PROGRAM);
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        const int created = O_WRONLY | O_CREAT | O_TRUNC;
        posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        posix_spawn_file_actions_addopen(
            &actions, STDOUT_FILENO, outputFile().c_str(), created, 0600);
        posix_spawn_file_actions_addopen(
            &actions, STDERR_FILENO, errorFile().c_str(), created, 0600);
        const int error = posix_spawn(
            &number_, VORLA_PROGRAM, &actions, nullptr, pointersTo(arguments).data(),
            pointersTo(variables).data());
        posix_spawn_file_actions_destroy(&actions);
        if (error != 0) {
            throw std::system_error(error, std::generic_category(), VORLA_PROGRAM);
        }
        handle_ = processHandle(number_);
    }

    ~Program() {
        if (!isCollected_) {
            send(SIGKILL);
            waitpid(number_, nullptr, 0);
        }
    }

    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    void send(int signal) const { kill(number_, signal); }

    int handle() const { return handle_.number(); }

    bool hasEnded() const {
        pollfd watched = {handle(), POLLIN, 0};
        return poll(&watched, 1, 0) == 1;
    }

    /// Its exit status once it has ended; -1 if a signal ended it.
    int status() {
        int status = 0;
        waitpid(number_, &status, 0);
        isCollected_ = true;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    std::string output() const { return contentOf(outputFile()); }
    std::string errors() const { return contentOf(errorFile()); }

private:
    std::string outputFile() const { return files_ + ".out"; }
    std::string errorFile() const { return files_ + ".err"; }

    std::string files_;
    pid_t number_ = 0;
    FileDescriptor handle_;
    bool isCollected_ = false;
};

/// Programs, and the buses that they are on.
class ProgramTest : public NothingLeftBehind {
protected:
    void SetUp() override {
        NothingLeftBehind::SetUp();
        ASSERT_EQ(mkfifo(readyPath().c_str(), 0600), 0);
        // Open for both, so that nobody waits for somebody to open the other end.
        ready_ = FileDescriptor(open(readyPath().c_str(), O_RDWR | O_CLOEXEC));
        ASSERT_TRUE(ready_.isOpen());
        std::filesystem::create_directory(folder() / "empty");
    }

    void TearDown() override {
        programs_.clear();
        endCompanions();
        ready_.close();
        NothingLeftBehind::TearDown();
    }

    /// Starts the program with these arguments and variables, beside those that keep it away from
    /// the files of whoever runs the test.
    Program& start(const Texts& arguments, Texts variables) {
        const auto empty = (folder() / "empty").string();
        variables.insert(
            variables.end(),
            {"HOME=" + home(), "XDG_CONFIG_DIRS=" + empty, "PATH=" + empty, "READY=" + readyPath(),
             "SNAPSHOT=" VORLA_TEST_DATA "/snapshots/full.json"});
        const auto files = (folder() / std::to_string(programs_.size())).string();
        return programs_.emplace_back(files, arguments, std::move(variables));
    }

    Program&
    startOnBus(const PrivateBus& bus, const std::string& companion, const Texts& arguments = {}) {
        return start(
            arguments, {"DBUS_SESSION_BUS_ADDRESS=" + bus.address(), "WITH_CHILD=1",
                        "VORLA_USAGE_EXECUTABLE=" + child(companion)});
    }

    /// The program on this bus, with a companion, and that with a child of its own, which both
    /// ignore requests to end, at work.
    Program& startWithStubbornCompanion(const PrivateBus& bus) {
        auto& program = startOnBus(bus, "ignoresRequests");
        for (int count = 0; count < 2; ++count) {
            companions_.push_back(processHandle(nextReady()));
        }
        return program;
    }

    bool runUntilEnded(int handle) {
        bool ended = false;
        const auto watch = loop().whenReadable(handle, [&] { ended = true; });
        return loop().runUntil([&] { return ended; });
    }

    /// The program ends by itself with this status and nothing on its standard output.
    void expectEnd(Program& program, int status, const std::string& errors = "") {
        ASSERT_TRUE(runUntilEnded(program.handle()));
        EXPECT_EQ(program.status(), status);
        EXPECT_EQ(program.output(), "");
        EXPECT_EQ(program.errors(), errors);
    }

    void expectNoCompanionLeft() {
        for (const auto& companion : companions_) {
            ASSERT_TRUE(runUntilEnded(companion.number()));
        }
    }

    bool runUntilRegistered(const ScriptedPanel& panel) {
        return loop().runUntil([&] { return !panel.registrations.empty(); });
    }

    /// Runs a start that needs no bus.
    void expectSwitch(
        const std::string& name, const Texts& variables, int status,
        const std::string& errors = "") {
        ASSERT_NO_FATAL_FAILURE(expectEnd(start({name}, variables), status, errors)) << name;
    }

    std::string home() const { return folder(); }

private:
    std::string readyPath() const { return folder() / "ready"; }

    /// The number of the process that says next that it is ready.
    pid_t nextReady() const {
        pollfd watched = {ready_.number(), POLLIN, 0};
        pid_t number = 0;
        if (poll(&watched, 1, 30'000) != 1 ||
            read(ready_.number(), &number, sizeof number) != sizeof number) {
            throw std::runtime_error("the companion never got ready");
        }
        return number;
    }

    /// Those that are left after a failure.
    void endCompanions() {
        for (const auto& companion : companions_) {
            syscall(SYS_pidfd_send_signal, companion.number(), SIGKILL, nullptr, 0);
        }
        companions_.clear();
    }

    FileDescriptor ready_;
    std::vector<FileDescriptor> companions_;
    std::list<Program> programs_;
};

} // namespace

TEST_F(ProgramTest, saysThatThereIsNoSessionBus) {
    const auto empty = (folder() / "empty").string();
    const auto file = (folder() / "file").string();
    std::ofstream(file) << "no socket";
    const std::vector<Texts> settings = {
        {},
        {"XDG_RUNTIME_DIR="},
        {"XDG_RUNTIME_DIR=" + empty},
        {"DBUS_SESSION_BUS_ADDRESS=", "XDG_RUNTIME_DIR=" + empty},
        {"DBUS_SESSION_BUS_ADDRESS=unix:path=" + empty + "/bus"},
        {"DBUS_SESSION_BUS_ADDRESS=unix:path=" + file},
        {"DBUS_SESSION_BUS_ADDRESS=nonsense"},
        {"DBUS_SESSION_BUS_ADDRESS=unix:path=%"},
        {"DBUS_SESSION_BUS_ADDRESS=\xFF"}};
    for (const auto& variables : settings) {
        expectEnd(start({}, variables), 1, "VorlaUsageMenuBar: There is no session bus.\n");
    }
}

TEST_F(ProgramTest, registersItsItemAndShowsTheFigures) {
    const PrivateBus bus;
    ScriptedPanel panel(loop(), bus.address());
    std::string title;
    const auto titles = panel.bus().subscribe(
        {.sender = applicationName, .member = "XAyatanaNewLabel"},
        [&](bus::Message& message) { title = message.read<std::string>(); });
    ASSERT_TRUE(panel.becomeWatcher());
    auto& program = startOnBus(bus, "printsSnapshot");
    ASSERT_TRUE(runUntilRegistered(panel));
    ASSERT_TRUE(loop().runUntil([&] { return title == "5h 87% · W 62%"; })) << title;
    EXPECT_EQ(panel.registrations, Texts{itemPath});
    EXPECT_EQ(panel.itemProperty<std::string>("Title"), "5h 87% · W 62%");

    EXPECT_FALSE(program.hasEnded());
    panel.sendEvent(lineId({.role = LineRole::quit}), "clicked");
    expectEnd(program, 0);
}

TEST_F(ProgramTest, aSecondStartEndsInSilenceWhileTheFirstGoesOn) {
    const PrivateBus bus;
    ScriptedPanel panel(loop(), bus.address());
    ASSERT_TRUE(panel.becomeWatcher());
    auto& first = startOnBus(bus, "printsSnapshot");
    ASSERT_TRUE(runUntilRegistered(panel));
    expectEnd(startOnBus(bus, "printsSnapshot"), 0);
    EXPECT_TRUE(panel.catchUp());
    EXPECT_FALSE(first.hasEnded());
    EXPECT_EQ(panel.registrations.size(), 1U);
    first.send(SIGTERM);
    expectEnd(first, 0);
}

TEST_F(ProgramTest, isTheMenuBarProgramForASwitchThatDoesNotStandAlone) {
    const PrivateBus bus;
    ScriptedPanel panel(loop(), bus.address());
    ASSERT_TRUE(panel.becomeWatcher());
    auto& program = startOnBus(bus, "printsSnapshot", {"--register-login-item", "x"});
    ASSERT_TRUE(runUntilRegistered(panel));
    program.send(SIGTERM);
    expectEnd(program, 0);
    EXPECT_FALSE(std::filesystem::exists(home() + "/.config" + entryPath));
}

TEST_F(ProgramTest, endsWithAStubbornCompanionWithinSecondsInWhateverWayItIsEnded) {
    // All at once, since each waits for as long as the companion is given.
    std::list<PrivateBus> buses;
    std::vector<Program*> programs;
    for (int count = 0; count < 4; ++count) {
        programs.push_back(&startWithStubbornCompanion(buses.emplace_back()));
    }
    const auto asked = std::chrono::steady_clock::now();
    programs[0]->send(SIGTERM);
    programs[1]->send(SIGINT);
    programs[2]->send(SIGHUP);
    buses.back().stop();
    for (auto* program : programs) {
        expectEnd(*program, 0);
    }
    EXPECT_LT(std::chrono::steady_clock::now() - asked, 10s);
    expectNoCompanionLeft();
}

TEST_F(ProgramTest, killsTheCompanionAtOnceWhenASecondRequestComes) {
    const PrivateBus bus;
    ScriptedPanel panel(loop(), bus.address());
    auto& program = startWithStubbornCompanion(bus);
    const auto asked = std::chrono::steady_clock::now();
    program.send(SIGTERM);
    // By the time it answers it has taken the first signal, so that the second is one of its own.
    ASSERT_TRUE(panel.catchUp());
    EXPECT_FALSE(program.hasEnded());
    program.send(SIGTERM);
    expectEnd(program, 0);
    EXPECT_LT(std::chrono::steady_clock::now() - asked, Command::patience);
    expectNoCompanionLeft();
}

TEST_F(ProgramTest, addsAndRemovesTheLoginItemWithoutABus) {
    const std::vector<std::pair<Texts, std::string>> places = {
        {{}, home() + "/.config"},
        {{"XDG_CONFIG_HOME=" + home() + "/settings"}, home() + "/settings"}};
    const auto exec = "\nExec=\"" + std::filesystem::canonical(VORLA_PROGRAM).string() + "\"\n";
    for (const auto& [variables, settings] : places) {
        const auto entry = settings + entryPath;
        for (int count = 0; count < 2; ++count) {
            ASSERT_NO_FATAL_FAILURE(expectSwitch("--register-login-item", variables, 0));
            EXPECT_NE(contentOf(entry).find(exec), std::string::npos) << contentOf(entry);
        }
        for (int count = 0; count < 2; ++count) {
            ASSERT_NO_FATAL_FAILURE(expectSwitch("--unregister-login-item", variables, 0));
            EXPECT_FALSE(std::filesystem::exists(entry));
        }
    }
}

TEST_F(ProgramTest, saysWhyTheLoginItemCannotBeAdded) {
    std::ofstream(home() + "/file") << "no folder";
    const Texts variables = {"XDG_CONFIG_HOME=" + home() + "/file/settings"};
    expectSwitch(
        "--register-login-item", variables, 1,
        "Could not add login item: Cannot write "
        "~/file/settings/autostart/com.vorla.UsageMenuBar.desktop: Not a directory.\n");
    expectSwitch("--unregister-login-item", variables, 0);
}

} // namespace vorla
