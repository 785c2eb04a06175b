// SPDX-License-Identifier: MIT
#pragma once

#include "linux/FileDescriptor.h"
#include "linux/Pipe.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace vorla {

/// So generous that only a mistake reaches it.
inline constexpr std::chrono::seconds patience{60};

inline std::vector<char*> pointersTo(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (auto& text : texts) {
        pointers.push_back(text.data());
    }
    pointers.push_back(nullptr);
    return pointers;
}

/// A program found in PATH, started with these descriptors as its standard input and output.
inline pid_t start(
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
    /// An X server for a display of its own.
    explicit DisplayServer(std::vector<std::string> environment)
        : DisplayServer(
              {"Xvfb", "-displayfd", "1", "-screen", "0", "640x480x24", "-nolisten", "tcp",
               "-noreset"},
              std::move(environment)) {
        display_.insert(0, ":");
    }

    /// The command must make it print its display's name, and a line end.
    DisplayServer(const std::vector<std::string>& command, std::vector<std::string> environment) {
        const FileDescriptor nothing(open("/dev/null", O_RDONLY | O_CLOEXEC));
        Pipe output;
        number_ =
            start(command, std::move(environment), nothing.number(), output.writeEnd.number());
        output.writeEnd.close();
        display_ = readLine(output.readEnd);
        if (display_.empty()) {
            stop();
            throw std::runtime_error(command.front() + " did not name its display");
        }
    }

    ~DisplayServer() { stop(); }

    DisplayServer(const DisplayServer&) = delete;
    DisplayServer& operator=(const DisplayServer&) = delete;

    const std::string& display() const { return display_; }

private:
    void stop() const {
        kill(number_, SIGTERM);
        waitpid(number_, nullptr, 0);
    }

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

} // namespace vorla
