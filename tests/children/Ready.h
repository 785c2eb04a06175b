// SPDX-License-Identifier: MIT
#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>

/// Tells the test through the named pipe READY which process has come this far.
inline void sayReady() {
    const char* path = std::getenv("READY");
    const int pipe = path == nullptr ? -1 : open(path, O_WRONLY | O_CLOEXEC);
    const pid_t number = getpid();
    if (pipe < 0 || write(pipe, &number, sizeof number) != sizeof number) {
        _exit(99);
    }
    close(pipe);
}
