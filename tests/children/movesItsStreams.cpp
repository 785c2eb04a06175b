// SPDX-License-Identifier: MIT
// Moves both streams to other numbers, says that it is ready, prints "moved" there when told to go
// on and exits with status 4.
#include "Go.h"
#include "Ready.h"

int main() {
    const int output = dup2(STDOUT_FILENO, 100);
    const int errors = dup2(STDERR_FILENO, 101);
    close(STDOUT_FILENO);
    close(STDERR_FILENO);
    sayReady();
    waitForGo();
    const bool printed = write(output, "moved", 5) == 5 && write(errors, "moved", 5) == 5;
    return printed ? 4 : 99;
}
