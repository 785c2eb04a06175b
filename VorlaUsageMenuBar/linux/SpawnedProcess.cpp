// SPDX-License-Identifier: MIT
#include "linux/SpawnedProcess.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

namespace vorla {

namespace {

constexpr int firstInheritedDescriptor = STDERR_FILENO + 1;

void check(int error, const char* what) {
    if (error != 0) {
        throw std::system_error(error, std::generic_category(), what);
    }
}

/// Own process group, no signal blocked, every signal handled by default.
class Attributes final {
public:
    Attributes() {
        check(posix_spawnattr_init(&attributes_), "posix_spawnattr_init");
        sigset_t none;
        sigset_t all;
        sigemptyset(&none);
        sigfillset(&all);
        posix_spawnattr_setpgroup(&attributes_, 0);
        posix_spawnattr_setsigmask(&attributes_, &none);
        posix_spawnattr_setsigdefault(&attributes_, &all);
        posix_spawnattr_setflags(
            &attributes_, POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    }

    ~Attributes() { posix_spawnattr_destroy(&attributes_); }

    Attributes(const Attributes&) = delete;
    Attributes& operator=(const Attributes&) = delete;

    const posix_spawnattr_t* get() const { return &attributes_; }

private:
    posix_spawnattr_t attributes_ = {};
};

/// The null device and two given descriptors as the standard streams, and nothing else open.
class Descriptors final {
public:
    Descriptors(int output, int errors) {
        check(posix_spawn_file_actions_init(&actions_), "posix_spawn_file_actions_init");
        const std::array results = {
            posix_spawn_file_actions_addopen(&actions_, STDIN_FILENO, "/dev/null", O_RDONLY, 0),
            posix_spawn_file_actions_adddup2(&actions_, output, STDOUT_FILENO),
            posix_spawn_file_actions_adddup2(&actions_, errors, STDERR_FILENO),
            posix_spawn_file_actions_addclosefrom_np(&actions_, firstInheritedDescriptor)};
        for (const int result : results) {
            if (result != 0) {
                posix_spawn_file_actions_destroy(&actions_);
                check(result, "posix_spawn_file_actions");
            }
        }
    }

    ~Descriptors() { posix_spawn_file_actions_destroy(&actions_); }

    Descriptors(const Descriptors&) = delete;
    Descriptors& operator=(const Descriptors&) = delete;

    const posix_spawn_file_actions_t* get() const { return &actions_; }

private:
    posix_spawn_file_actions_t actions_ = {};
};

/// A duplicate beyond the standard streams. If one of ours was closed when we were started, a pipe
/// may have taken its number, and would be overwritten while the child's streams are put in place.
FileDescriptor beyondStandardStreams(const FileDescriptor& descriptor) {
    FileDescriptor duplicate(fcntl(descriptor.number(), F_DUPFD_CLOEXEC, firstInheritedDescriptor));
    if (!duplicate.isOpen()) {
        throw std::system_error(errno, std::generic_category(), "fcntl");
    }
    return duplicate;
}

pid_t spawn(LaunchRequest request, const FileDescriptor& output, const FileDescriptor& errors) {
    const FileDescriptor outputSource = beyondStandardStreams(output);
    const FileDescriptor errorsSource = beyondStandardStreams(errors);
    const Attributes attributes;
    const Descriptors descriptors(outputSource.number(), errorsSource.number());
    const std::array<char*, 3> arguments = {request.path.data(), request.argument.data(), nullptr};
    std::vector<char*> environment;
    for (auto& entry : request.environment) {
        environment.push_back(entry.data());
    }
    environment.push_back(nullptr);
    pid_t number = 0;
    check(
        posix_spawn(
            &number, request.path.c_str(), descriptors.get(), attributes.get(), arguments.data(),
            environment.data()),
        "posix_spawn");
    return number;
}

/// As pidfd_open(2), whose declaration in glibc 2.36 cannot be linked from C++.
FileDescriptor openHandle(pid_t number) {
    FileDescriptor handle(static_cast<int>(syscall(SYS_pidfd_open, number, 0)));
    if (!handle.isOpen()) {
        throw std::system_error(errno, std::generic_category(), "pidfd_open");
    }
    return handle;
}

void killAll(pid_t number) {
    ::kill(-number, SIGKILL);
    ::kill(number, SIGKILL);
}

} // namespace

SpawnedProcess::SpawnedProcess(
    MainLoop& loop, const LaunchRequest& request, const FileDescriptor& output,
    const FileDescriptor& errors, Ended ended)
    : number_(spawn(request, output, errors)), ended_(std::move(ended)) {
    try {
        handle_ = openHandle(number_);
        watch_ = loop.whenReadable(handle_.number(), [this] { lookForEnd(); });
    } catch (...) {
        killAll(number_);
        waitpid(number_, nullptr, 0);
        throw;
    }
}

SpawnedProcess::~SpawnedProcess() {
    waitid(P_PIDFD, static_cast<id_t>(handle_.number()), nullptr, WEXITED | WNOHANG);
}

void SpawnedProcess::terminate() {
    if (isRunning()) {
        ::kill(number_, SIGTERM);
    }
}

void SpawnedProcess::kill() {
    if (isRunning()) {
        killAll(number_);
    }
}

std::optional<int> SpawnedProcess::endStatus() const {
    siginfo_t end = {};
    // It stays uncollected. Without WNOHANG a child that runs would block us.
    const int options = WEXITED | WNOWAIT | WNOHANG;
    if (waitid(P_PIDFD, static_cast<id_t>(handle_.number()), &end, options) != 0) {
        // Somebody else has collected our child. It has ended, but nobody can tell how any more,
        // and no child can have ended so.
        return -1;
    }
    if (end.si_pid == 0) {
        return std::nullopt;
    }
    return end.si_status;
}

void SpawnedProcess::lookForEnd() {
    const auto status = endStatus();
    if (!status) {
        return;
    }
    watch_.reset();
    // The one who is told may destroy this object.
    const auto ended = ended_;
    ended(*status);
}

} // namespace vorla
