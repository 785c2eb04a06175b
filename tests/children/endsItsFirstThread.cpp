// SPDX-License-Identifier: MIT
// Ends its first thread; another says that it is ready, and exits with status 4 when told to go on.
#include "Go.h"
#include "Ready.h"

#include <pthread.h>

#include <thread>

int main() {
    std::thread([first = pthread_self()] {
        pthread_join(first, nullptr);
        sayReady();
        waitForGo();
        _exit(4);
    }).detach();
    pthread_exit(nullptr);
}
