// SPDX-License-Identifier: MIT
// Waits and obeys a request to end. So does a child of its own, which says that it is ready and
// ends when told to go on.
#include "Go.h"
#include "Ready.h"

int main() {
    const auto child = fork();
    if (child < 0) {
        return 99;
    }
    if (child == 0) {
        sayReady();
        waitForGo();
        return 0;
    }
    for (;;) {
        pause();
    }
}
