// SPDX-License-Identifier: MIT
#pragma once

#include "linux/Pipe.h"
#include "linux/TemporaryFolder.h"

#include <spawn.h>
#include <sys/wait.h>

#include <csignal>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

namespace vorla {

/// A process of a command name of its own that owns names on a bus, as panels do.
class PanelProcess final {
public:
    /// Returns once it has the names. A process is called after the file that it is started from.
    PanelProcess(
        const std::string& commandName, const std::string& address,
        const std::vector<std::string>& busNames) {
        const std::string program = folder_.at(commandName);
        std::filesystem::create_symlink(VORLA_TEST_CHILDREN "/ownsBusNames", program);
        std::vector<std::string> arguments = {program, address};
        arguments.insert(arguments.end(), busNames.begin(), busNames.end());
        std::vector<char*> pointers;
        for (auto& argument : arguments) {
            pointers.push_back(argument.data());
        }
        pointers.push_back(nullptr);

        Pipe input;
        Pipe output;
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_adddup2(&actions, input.readEnd.number(), STDIN_FILENO);
        posix_spawn_file_actions_adddup2(&actions, output.writeEnd.number(), STDOUT_FILENO);
        const int error =
            posix_spawn(&process_, program.c_str(), &actions, nullptr, pointers.data(), environ);
        posix_spawn_file_actions_destroy(&actions);
        output.writeEnd.close();
        input_ = std::move(input.writeEnd);
        char byte = 0;
        if (error != 0 || read(output.readEnd.number(), &byte, 1) != 1) {
            throw std::runtime_error(commandName + " did not get its names");
        }
    }

    ~PanelProcess() { stop(); }
    PanelProcess(const PanelProcess&) = delete;
    PanelProcess& operator=(const PanelProcess&) = delete;

    void stop() {
        if (process_ > 0) {
            input_.close();
            waitpid(process_, nullptr, 0);
            process_ = 0;
        }
    }

private:
    TemporaryFolder folder_;
    FileDescriptor input_;
    pid_t process_ = 0;
};

} // namespace vorla
