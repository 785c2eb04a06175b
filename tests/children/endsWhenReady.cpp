// SPDX-License-Identifier: MIT
// Says that it is ready and exits with the number in STATUS.
#include "Ready.h"

int main() {
    const char* status = std::getenv("STATUS");
    if (status == nullptr) {
        return 99;
    }
    sayReady();
    return std::atoi(status);
}
