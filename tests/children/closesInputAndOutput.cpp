// SPDX-License-Identifier: MIT
// Closes its standard input and output, says that it is ready, and ends when told to go on.
#include "Go.h"
#include "Ready.h"

int main() {
    close(STDIN_FILENO);
    close(STDOUT_FILENO);
    sayReady();
    waitForGo();
}
