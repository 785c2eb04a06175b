// SPDX-License-Identifier: MIT
#include "MeasuredProgram.h"

#include <spawn.h>
#include <sys/wait.h>

#include <array>
#include <csignal>
#include <ctime>
#include <fstream>
#include <set>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace vorla::bench {

namespace {

void check(int error, const char* what) {
    if (error != 0) {
        throw std::system_error(error, std::generic_category(), what);
    }
}

} // namespace

MeasuredProgram::MeasuredProgram(std::string path, std::vector<std::string> environment) {
    const std::array<char*, 2> arguments = {path.data(), nullptr};
    std::vector<char*> entries;
    for (auto& entry : environment) {
        entries.push_back(entry.data());
    }
    entries.push_back(nullptr);
    startedAt_ = wallTime();
    check(
        posix_spawn(&number_, path.c_str(), nullptr, nullptr, arguments.data(), entries.data()),
        path.c_str());
}

MeasuredProgram::~MeasuredProgram() {
    kill(number_, SIGTERM);
    waitpid(number_, nullptr, 0);
}

Nanoseconds MeasuredProgram::processorTime() const {
    clockid_t clock = 0;
    check(clock_getcpuclockid(number_, &clock), "clock_getcpuclockid");
    timespec time = {};
    check(clock_gettime(clock, &time) != 0 ? errno : 0, "clock_gettime");
    return std::chrono::seconds{time.tv_sec} + Nanoseconds{time.tv_nsec};
}

MeasuredProgram::Memory MeasuredProgram::memory() const {
    constexpr double kibibytesPerMebibyte = 1024;
    std::ifstream file(procPath("smaps_rollup"));
    Memory memory;
    std::string word;
    while (file >> word) {
        if (word == "Rss:") {
            file >> memory.residentMebibytes;
        } else if (word == "Private_Dirty:") {
            file >> memory.privateDirtyMebibytes;
        }
    }
    memory.residentMebibytes /= kibibytesPerMebibyte;
    memory.privateDirtyMebibytes /= kibibytesPerMebibyte;
    return memory;
}

std::size_t MeasuredProgram::threads() const {
    return statusValue("Threads:");
}

std::size_t MeasuredProgram::libraries() const {
    std::ifstream file(procPath("maps"));
    std::set<std::string> found;
    std::string word;
    while (file >> word) {
        if (word.starts_with('/') && word.find(".so") != std::string::npos) {
            found.insert(word);
        }
    }
    return found.size();
}

std::size_t MeasuredProgram::contextSwitches() const {
    return statusValue("voluntary_ctxt_switches:") + statusValue("nonvoluntary_ctxt_switches:");
}

std::size_t MeasuredProgram::statusValue(const std::string& key) const {
    std::ifstream file(procPath("status"));
    std::string word;
    while (file >> word) {
        std::size_t value = 0;
        if (word == key && file >> value) {
            return value;
        }
    }
    throw std::runtime_error("no " + key + " of a process that should be running");
}

std::string MeasuredProgram::procPath(const char* file) const {
    return "/proc/" + std::to_string(number_) + "/" + file;
}

} // namespace vorla::bench
