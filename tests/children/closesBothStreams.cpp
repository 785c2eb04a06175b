// SPDX-License-Identifier: MIT
// Closes both streams, says that it is ready, and exits with status 4 when told to go on.
#include "Go.h"
#include "Ready.h"

int main() {
    close(STDOUT_FILENO);
    close(STDERR_FILENO);
    sayReady();
    waitForGo();
    return 4;
}
