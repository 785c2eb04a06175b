// SPDX-License-Identifier: MIT
// Prints the file OUTPUT through a pipe that it has switched to packets.
#include "PrintFile.h"

#include <fcntl.h>
#include <unistd.h>

int main() {
    if (fcntl(STDOUT_FILENO, F_SETFL, O_DIRECT) != 0) {
        return 99;
    }
    print(fileNamedBy("OUTPUT"), stdout);
    return 0;
}
