// SPDX-License-Identifier: MIT
// Writes many lines to its standard error, and then "done" to its standard output.
#include "Flood.h"

int main() {
    flood(stderr);
    std::fputs("done", stdout);
    return 0;
}
