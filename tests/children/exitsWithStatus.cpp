// SPDX-License-Identifier: MIT
// Prints nothing and exits with the number in STATUS.
#include <cstdlib>

int main() {
    return std::atoi(std::getenv("STATUS"));
}
