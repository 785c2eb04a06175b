// SPDX-License-Identifier: MIT
// Stands still in vfork(2), where only a deadly signal gets through: its child, in a session of its
// own and without the streams, waits until told to go on.
#include "Go.h"
#include "Ready.h"

#include <sys/syscall.h>

#include <csignal>
#include <sched.h>

int main() {
    // As vfork(), but with memory of its own for the child, which may then do what it likes.
    const long child =
        syscall(SYS_clone, CLONE_VFORK | SIGCHLD, nullptr, nullptr, nullptr, nullptr);
    if (child != 0) {
        return child < 0 ? 99 : 0;
    }
    setsid();
    close(STDOUT_FILENO);
    close(STDERR_FILENO);
    sayReady();
    waitForGo();
    return 0;
}
