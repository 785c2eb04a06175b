// SPDX-License-Identifier: MIT
// Prints the file OUTPUT, then the file ERRORS as errors, and exits with the number in STATUS.
#include "PrintFile.h"

int main() {
    print(fileNamedBy("OUTPUT"), stdout);
    print(fileNamedBy("ERRORS"), stderr);
    const char* status = std::getenv("STATUS");
    return status == nullptr ? 0 : std::atoi(status);
}
