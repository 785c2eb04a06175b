// SPDX-License-Identifier: MIT
#include "bus/PrivateBus.h"

#include "linux/FileDescriptor.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <system_error>

namespace vorla {

namespace {

void check(int error, const char* what) {
    if (error != 0) {
        throw std::system_error(error, std::generic_category(), what);
    }
}

std::string madeFolder() {
    std::string pattern = std::filesystem::temp_directory_path() / "vorla-bus-XXXXXX";
    check(mkdtemp(pattern.data()) == nullptr ? errno : 0, "mkdtemp");
    return pattern;
}

void writeConfiguration(const std::string& folder) {
    std::ofstream(folder + "/bus.conf")
        << "<!DOCTYPE busconfig PUBLIC \"-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN\"\n"
           " \"http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd\">\n"
           "<busconfig>\n"
           "  <type>session</type>\n"
           "  <listen>unix:path="
        << folder
        << "/socket</listen>\n"
           "  <auth>EXTERNAL</auth>\n"
           "  <policy context=\"default\">\n"
           "    <allow send_destination=\"*\"/>\n"
           "    <allow receive_sender=\"*\"/>\n"
           "    <allow own=\"*\"/>\n"
           "  </policy>\n"
           "</busconfig>\n";
}

/// The daemon prints its address once it accepts connections.
std::string firstLine(int descriptor) {
    std::string line;
    char byte = 0;
    while (read(descriptor, &byte, 1) == 1 && byte != '\n') {
        line.push_back(byte);
    }
    return line;
}

} // namespace

PrivateBus::PrivateBus() : folder_(madeFolder()) {
    writeConfiguration(folder_);
    std::array<int, 2> ends = {};
    check(pipe2(ends.data(), O_CLOEXEC) != 0 ? errno : 0, "pipe2");
    const FileDescriptor readEnd(ends[0]);
    FileDescriptor writeEnd(ends[1]);

    std::string program = "dbus-daemon";
    std::string configuration = "--config-file=" + folder_ + "/bus.conf";
    std::string foreground = "--nofork";
    std::string printing = "--print-address=1";
    const std::array<char*, 5> arguments = {
        program.data(), configuration.data(), foreground.data(), printing.data(), nullptr};
    posix_spawn_file_actions_t actions;
    check(posix_spawn_file_actions_init(&actions), "posix_spawn_file_actions_init");
    posix_spawn_file_actions_adddup2(&actions, writeEnd.number(), STDOUT_FILENO);
    // It complains about limits that only the system's own bus needs to raise.
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    const int error =
        posix_spawnp(&daemon_, program.c_str(), &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    check(error, "dbus-daemon");
    writeEnd.close();
    address_ = firstLine(readEnd.number());
}

PrivateBus::~PrivateBus() {
    stop();
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
}

void PrivateBus::stop() {
    if (daemon_ > 0) {
        kill(daemon_, SIGKILL);
        waitpid(daemon_, nullptr, 0);
        daemon_ = 0;
    }
}

void PrivateBus::freeze() const {
    kill(daemon_, SIGSTOP);
}

} // namespace vorla
