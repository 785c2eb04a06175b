// SPDX-License-Identifier: MIT
// Ends with status 0 when it is told to go.
#include "Go.h"

int main() {
    waitForGo();
    return 0;
}
