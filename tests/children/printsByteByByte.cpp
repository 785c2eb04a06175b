// SPDX-License-Identifier: MIT
// Prints the file OUTPUT in writes of one byte each.
#include "PrintFile.h"

int main() {
    for (const char byte : fileNamedBy("OUTPUT")) {
        print({byte}, stdout);
    }
    return 0;
}
