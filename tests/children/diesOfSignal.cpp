// SPDX-License-Identifier: MIT
// Sends itself the signal with the number in SIGNAL.
#include <csignal>
#include <cstdlib>

int main() {
    const int signal = std::atoi(std::getenv("SIGNAL"));
    // A build with a sanitizer may have installed a handler.
    std::signal(signal, SIG_DFL);
    std::raise(signal);
    return 0;
}
