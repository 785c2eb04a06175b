// SPDX-License-Identifier: MIT
#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>

/// Waits until the test writes a byte into the named pipe GO, or has died.
inline void waitForGo() {
    const char* path = std::getenv("GO");
    const int pipe = path == nullptr ? -1 : open(path, O_RDONLY | O_CLOEXEC);
    char byte = 0;
    if (pipe < 0 || read(pipe, &byte, 1) < 0) {
        _exit(99);
    }
    close(pipe);
}
