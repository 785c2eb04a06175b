// SPDX-License-Identifier: MIT
// Ignores every request to end that can be ignored, says that it is ready and waits. If WITH_CHILD
// is set, a child of its own does the same.
#include "Ready.h"

#include <csignal>
#include <initializer_list>

int main() {
    for (const int signal : {SIGTERM, SIGHUP, SIGINT, SIGQUIT, SIGPIPE}) {
        std::signal(signal, SIG_IGN);
    }
    if (std::getenv("WITH_CHILD") != nullptr && fork() < 0) {
        return 99;
    }
    sayReady();
    for (;;) {
        pause();
    }
}
