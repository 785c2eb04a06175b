// SPDX-License-Identifier: MIT
#include "linux/Spawn.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <system_error>
#include <utility>

namespace vorla {

namespace {

constexpr auto nullDevice = "/dev/null";
constexpr int firstBeyondStandardStreams = STDERR_FILENO + 1;

void check(int error, const char* what) {
    if (error != 0) {
        throw std::system_error(error, std::generic_category(), what);
    }
}

short flagFor(SpawnRequest::Leads leads) {
    switch (leads) {
    case SpawnRequest::Leads::processGroup:
        return POSIX_SPAWN_SETPGROUP;
    case SpawnRequest::Leads::session:
        return POSIX_SPAWN_SETSID;
    }
    std::abort();
}

class Attributes final {
public:
    explicit Attributes(SpawnRequest::Leads leads) {
        check(posix_spawnattr_init(&attributes_), "posix_spawnattr_init");
        sigset_t none;
        sigset_t all;
        sigemptyset(&none);
        sigfillset(&all);
        posix_spawnattr_setpgroup(&attributes_, 0);
        posix_spawnattr_setsigmask(&attributes_, &none);
        posix_spawnattr_setsigdefault(&attributes_, &all);
        const int flags = flagFor(leads) | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF;
        posix_spawnattr_setflags(&attributes_, static_cast<short>(flags));
    }

    ~Attributes() { posix_spawnattr_destroy(&attributes_); }

    Attributes(const Attributes&) = delete;
    Attributes& operator=(const Attributes&) = delete;

    const posix_spawnattr_t* get() const { return &attributes_; }

private:
    posix_spawnattr_t attributes_ = {};
};

/// What the child does about its descriptors before the program begins.
class Descriptors final {
public:
    Descriptors() { check(posix_spawn_file_actions_init(&actions_), "file_actions_init"); }

    ~Descriptors() { posix_spawn_file_actions_destroy(&actions_); }

    Descriptors(const Descriptors&) = delete;
    Descriptors& operator=(const Descriptors&) = delete;

    void put(const FileDescriptor& source, int stream) {
        const int mode = stream == STDIN_FILENO ? O_RDONLY : O_WRONLY;
        check(
            source.isOpen()
                ? posix_spawn_file_actions_adddup2(&actions_, source.number(), stream)
                : posix_spawn_file_actions_addopen(&actions_, stream, nullDevice, mode, 0),
            "file_actions_add");
    }

    void closeAllOthers() {
        check(
            posix_spawn_file_actions_addclosefrom_np(&actions_, firstBeyondStandardStreams),
            "file_actions_addclosefrom_np");
    }

    const posix_spawn_file_actions_t* get() const { return &actions_; }

private:
    posix_spawn_file_actions_t actions_ = {};
};

/// A duplicate beyond the standard streams. If one of ours was closed when we were started, a given
/// descriptor may have its number, and would be overwritten while the child's streams are put in
/// place. None for none.
FileDescriptor beyondStandardStreams(int descriptor) {
    if (descriptor < 0) {
        return {};
    }
    FileDescriptor duplicate(fcntl(descriptor, F_DUPFD_CLOEXEC, firstBeyondStandardStreams));
    check(duplicate.isOpen() ? 0 : errno, "fcntl");
    return duplicate;
}

std::vector<char*> pointersTo(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (auto& text : texts) {
        pointers.push_back(text.data());
    }
    pointers.push_back(nullptr);
    return pointers;
}

pid_t start(SpawnRequest request) {
    const std::array sources = {
        beyondStandardStreams(request.input), beyondStandardStreams(request.output),
        beyondStandardStreams(request.errors)};
    Descriptors descriptors;
    descriptors.put(sources[0], STDIN_FILENO);
    descriptors.put(sources[1], STDOUT_FILENO);
    descriptors.put(sources[2], STDERR_FILENO);
    descriptors.closeAllOthers();
    const Attributes attributes(request.leads);
    request.arguments.insert(request.arguments.begin(), request.path);
    const auto arguments = pointersTo(request.arguments);
    std::vector<char*> variables;
    if (request.environment) {
        variables = pointersTo(*request.environment);
    }
    pid_t number = 0;
    check(
        posix_spawn(
            &number, request.path.c_str(), descriptors.get(), attributes.get(), arguments.data(),
            request.environment ? variables.data() : environ),
        "posix_spawn");
    return number;
}

} // namespace

SpawnedChild spawn(SpawnRequest request) {
    const pid_t number = start(std::move(request));
    // As pidfd_open(2), whose declaration in glibc 2.36 cannot be linked from C++.
    FileDescriptor handle(static_cast<int>(syscall(SYS_pidfd_open, number, 0)));
    if (!handle.isOpen()) {
        const int error = errno;
        killAndCollect(number);
        throw std::system_error(error, std::generic_category(), "pidfd_open");
    }
    return {number, std::move(handle)};
}

void killAndCollect(pid_t number) {
    ::kill(-number, SIGKILL);
    // It may have left the group that it was started as the leader of.
    ::kill(number, SIGKILL);
    waitpid(number, nullptr, 0);
}

} // namespace vorla
