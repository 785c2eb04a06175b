// SPDX-License-Identifier: MIT
// Prints "leader" if it leads its own process group.
#include <unistd.h>

#include <cstdio>

int main() {
    std::fputs(getpgrp() == getpid() ? "leader" : "member", stdout);
    return 0;
}
