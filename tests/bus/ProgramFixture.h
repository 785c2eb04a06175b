// SPDX-License-Identifier: MIT
#pragma once

#include "bus/PrivateBus.h"
#include "bus/ScriptedPanel.h"
#include "children/NothingLeftBehind.h"
#include "children/ReadyPipe.h"
#include "model/FileContent.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>

#include <csignal>
#include <cstddef>
#include <filesystem>
#include <list>
#include <optional>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

namespace vorla {

using Texts = std::vector<std::string>;

inline std::vector<char*> pointersTo(Texts& texts) {
    std::vector<char*> pointers;
    for (auto& text : texts) {
        pointers.push_back(text.data());
    }
    pointers.push_back(nullptr);
    return pointers;
}

/// One start of the program; what it prints goes to files beginning with `files`.
class Program final {
public:
    Program(const std::string& executable, std::string files, Texts arguments, Texts variables)
        : files_(std::move(files)) {
        arguments.insert(arguments.begin(), executable);
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        const int created = O_WRONLY | O_CREAT | O_TRUNC;
        posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        posix_spawn_file_actions_addopen(
            &actions, STDOUT_FILENO, outputFile().c_str(), created, 0600);
        posix_spawn_file_actions_addopen(
            &actions, STDERR_FILENO, errorFile().c_str(), created, 0600);
        const int error = posix_spawn(
            &number_, executable.c_str(), &actions, nullptr, pointersTo(arguments).data(),
            pointersTo(variables).data());
        posix_spawn_file_actions_destroy(&actions);
        if (error != 0) {
            throw std::system_error(error, std::generic_category(), executable);
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

    pid_t number() const { return number_; }

    const FileDescriptor& handle() const { return handle_; }

    bool hasEnded() const {
        pollfd watched = {handle_.number(), POLLIN, 0};
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
        ready_.emplace(folder() / "ready");
        std::filesystem::create_directory(folder() / "empty");
    }

    void TearDown() override {
        programs_.clear();
        endCompanions();
        ready_.reset();
        NothingLeftBehind::TearDown();
    }

    /// Starts the program with these arguments and variables, beside those that keep it away from
    /// the files of whoever runs the test.
    Program& start(const Texts& arguments, Texts variables) {
        const auto empty = (folder() / "empty").string();
        if (hasHome) {
            variables.push_back("HOME=" + home());
        }
        variables.insert(
            variables.end(), {"XDG_CONFIG_DIRS=" + empty, "PATH=" + empty, ready_->variable(),
                              "SNAPSHOT=" VORLA_TEST_DATA "/snapshots/full.json"});
        const auto files = (folder() / std::to_string(programs_.size())).string();
        return programs_.emplace_back(executable, files, arguments, std::move(variables));
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
            companions_.push_back(processHandle(ready_->next()));
        }
        return program;
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
            ASSERT_TRUE(runUntilEnded(companion));
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

    /// How many it has open by now; one more for a moment while it reads or writes a file.
    static std::ptrdiff_t descriptorsOf(const Program& program) {
        return entries(("/proc/" + std::to_string(program.number()) + "/fd").c_str());
    }

    bool runUntilDescriptors(const Program& program, std::ptrdiff_t count) {
        return loop().runUntil([&] { return descriptorsOf(program) == count; });
    }

    std::string home() const { return folder(); }

    /// The number of the process that says next that it is ready.
    pid_t nextReady() const { return ready_->next(); }

    /// Whether the next start() is told of one.
    bool hasHome = true;

    /// What the next start() starts.
    std::string executable = VORLA_PROGRAM;

private:
    /// Those that are left after a failure.
    void endCompanions() {
        for (const auto& companion : companions_) {
            syscall(SYS_pidfd_send_signal, companion.number(), SIGKILL, nullptr, 0);
        }
        companions_.clear();
    }

    std::optional<ReadyPipe> ready_;
    std::vector<FileDescriptor> companions_;
    std::list<Program> programs_;
};

} // namespace vorla
