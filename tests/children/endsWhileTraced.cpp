// SPDX-License-Identifier: MIT
// Exits with status 4 while a child of its own traces it: only when that one has been told to go on
// can anybody else learn of the end. The child keeps none of the streams.
#include "Go.h"
#include "Ready.h"

#include <sys/prctl.h>
#include <sys/ptrace.h>
#include <sys/wait.h>

#include <array>

int main() {
    // Some systems let nobody trace an ancestor who has not agreed.
    prctl(PR_SET_PTRACER, PR_SET_PTRACER_ANY);
    const pid_t traced = getpid();
    std::array<int, 2> attached = {};
    if (pipe(attached.data()) != 0) {
        return 99;
    }
    const auto child = fork();
    if (child != 0) {
        char byte = 0;
        // Without the clean-up, in which a sanitizer would want to trace as well.
        _exit(child > 0 && read(attached[0], &byte, 1) == 1 ? 4 : 99);
    }
    close(STDOUT_FILENO);
    close(STDERR_FILENO);
    setpgid(0, 0);
    if (ptrace(PTRACE_SEIZE, traced, nullptr, nullptr) != 0) {
        return 99;
    }
    if (write(attached[1], "!", 1) != 1) {
        return 99;
    }
    siginfo_t end = {};
    if (waitid(P_PID, static_cast<id_t>(traced), &end, WEXITED | WNOWAIT) != 0) {
        return 99;
    }
    sayReady();
    waitForGo();
    return 0;
}
