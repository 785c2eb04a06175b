// SPDX-License-Identifier: MIT
// Starts children until the system refuses, says that it is ready and waits. It ignores requests to
// end, and so do its children.
#include "Ready.h"

#include <sys/resource.h>

#include <cerrno>
#include <csignal>

namespace {

/// Root may have as many processes as it likes; of this user there are no others.
constexpr uid_t unusedNumber = 54'322;
constexpr rlimit fewProcesses = {64, 64};

[[noreturn]] void waitForEver() {
    for (;;) {
        pause();
    }
}

} // namespace

int main() {
    std::signal(SIGTERM, SIG_IGN);
    if (geteuid() == 0 && setresuid(unusedNumber, unusedNumber, unusedNumber) != 0) {
        return 99;
    }
    if (setrlimit(RLIMIT_NPROC, &fewProcesses) != 0) {
        return 99;
    }
    for (;;) {
        const pid_t child = fork();
        if (child == 0) {
            waitForEver();
        }
        if (child < 0) {
            break;
        }
    }
    if (errno != EAGAIN) {
        return 99;
    }
    sayReady();
    waitForEver();
}
