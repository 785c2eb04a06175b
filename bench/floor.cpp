// SPDX-License-Identifier: MIT
// The least that a program on the session bus can be: connects as ours does, says hello, and waits
// to be ended.
#include <systemd/sd-bus.h>
#include <unistd.h>

int main() {
    sd_bus* bus = nullptr;
    const char* name = nullptr;
    if (sd_bus_open_user(&bus) < 0 || sd_bus_get_unique_name(bus, &name) < 0) {
        return 1;
    }
    pause();
    return 0;
}
