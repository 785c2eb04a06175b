// SPDX-License-Identifier: MIT
// Opens files until the system refuses, says why and exits with status 4.
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

int main() {
    while (open("/dev/null", O_RDONLY) >= 0) {}
    std::fputs(std::strerror(errno), stderr);
    // Without the clean-up, in which a sanitizer would complain as well.
    _exit(4);
}
