// SPDX-License-Identifier: MIT
// Exits at once. What it leaves opens its own output for reading and takes back as much of what it
// prints as it can get hold of; then it says that it is ready and waits until told to go on.
#include "Go.h"
#include "Ready.h"

int main() {
    const auto child = fork();
    if (child != 0) {
        return child < 0 ? 99 : 0;
    }
    const int back = open("/proc/self/fd/1", O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (back < 0) {
        return 99;
    }
    for (int count = 0; count < 20'000; ++count) {
        char byte = 0;
        if (write(STDOUT_FILENO, "!", 1) != 1) {
            return 99;
        }
        [[maybe_unused]] const auto taken = read(back, &byte, 1);
    }
    sayReady();
    waitForGo();
    return 0;
}
