// SPDX-License-Identifier: MIT
// Prints the file OUTPUT, says that it is ready, and waits to be ended by a signal.
#include "PrintFile.h"
#include "Ready.h"

int main() {
    print(fileNamedBy("OUTPUT"), stdout);
    sayReady();
    for (;;) {
        pause();
    }
}
