// SPDX-License-Identifier: MIT
// Like a script that starts a dashboard and waits for it: a request to end ends this one, but is
// not passed on to the dashboard, which would obey it as well.
#include "Ready.h"

int main() {
    const auto child = fork();
    if (child < 0) {
        return 99;
    }
    if (child == 0) {
        sayReady();
    }
    for (;;) {
        pause();
    }
}
