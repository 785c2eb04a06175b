// SPDX-License-Identifier: MIT
// Writes many lines to its standard output.
#include "Flood.h"

int main() {
    flood(stdout);
    return 0;
}
