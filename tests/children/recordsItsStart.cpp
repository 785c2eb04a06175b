// SPDX-License-Identifier: MIT
// Leaves in the folder RECORD, in files that begin with the name by which it was started, how it
// was started: its arguments, environment, descriptors, session, signals and all of its standard
// input.
#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <set>
#include <string>

namespace {

std::string describedDescriptors() {
    std::set<std::string> lines;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        std::error_code error;
        const std::string target = std::filesystem::read_symlink(entry, error).string();
        // The descriptor by which this very folder is read.
        if (!target.ends_with("/fd")) {
            lines.insert(
                entry.path().filename().string() + " " + target.substr(0, target.find(':')) + "\n");
        }
    }
    std::string text;
    for (const auto& line : lines) {
        text += line;
    }
    return text;
}

std::string describedSignals() {
    std::string text;
    sigset_t mask;
    sigprocmask(SIG_SETMASK, nullptr, &mask);
    for (int signal = 1; signal <= SIGRTMAX; ++signal) {
        struct sigaction action = {};
        const bool isIgnored =
            sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
        if (sigismember(&mask, signal) == 1 || isIgnored) {
            text += std::to_string(signal) + "\n";
        }
    }
    return text;
}

std::string standardInput() {
    std::string text;
    std::array<char, 65536> buffer{};
    ssize_t count = 0;
    while ((count = read(STDIN_FILENO, buffer.data(), buffer.size())) > 0) {
        text.append(buffer.data(), static_cast<std::size_t>(count));
    }
    return text;
}

} // namespace

int main(int argumentCount, char** arguments) {
    // Before the first file is opened.
    const std::string descriptors = describedDescriptors();
    const std::string path = std::string(std::getenv("RECORD")) + "/" +
                             std::filesystem::path(arguments[0]).filename().string();
    const auto leave = [&path](const std::string& name, const std::string& content) {
        std::ofstream(path + "." + name, std::ios::binary) << content;
    };
    std::string argumentLines;
    for (int index = 1; index < argumentCount; ++index) {
        argumentLines += std::string(arguments[index]) + "\n";
    }
    leave("arguments", argumentLines);
    std::string variables;
    for (char** entry = environ; *entry != nullptr; ++entry) {
        variables += std::string(*entry) + "\n";
    }
    leave("environment", variables);
    leave("descriptors", descriptors);
    leave("session", getsid(0) == getpid() ? "own" : "another's");
    leave("signals", describedSignals());
    leave("input", standardInput());
    // Last, so that whoever sees this one finds the others whole.
    leave("done", "");
    return 0;
}
