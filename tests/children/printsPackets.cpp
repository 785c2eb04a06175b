// SPDX-License-Identifier: MIT
// Prints the file OUTPUT through a pipe that it has switched to packets, an empty one among them.
#include "PrintFile.h"

#include <fcntl.h>
#include <unistd.h>

int main() {
    if (fcntl(STDOUT_FILENO, F_SETFL, O_DIRECT) != 0 || write(STDOUT_FILENO, "", 0) != 0) {
        return 99;
    }
    print(fileNamedBy("OUTPUT"), stdout);
    return 0;
}
