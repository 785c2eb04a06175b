// SPDX-License-Identifier: MIT
#include <systemd/sd-bus.h>
#include <unistd.h>

/// ownsBusNames ADDRESS NAME...: takes the names, prints a byte once it has them all, and keeps
/// them until its standard input ends.
int main(int argc, char** argv) {
    sd_bus* bus = nullptr;
    bool done = argc > 1 && sd_bus_new(&bus) >= 0 && sd_bus_set_address(bus, argv[1]) >= 0 &&
                sd_bus_set_bus_client(bus, 1) >= 0 && sd_bus_start(bus) >= 0;
    for (int index = 2; done && index < argc; ++index) {
        done = sd_bus_request_name(bus, argv[index], 0) >= 0;
    }
    char byte = '!';
    done = done && write(STDOUT_FILENO, &byte, 1) == 1;
    while (done && read(STDIN_FILENO, &byte, 1) > 0) {}
    sd_bus_flush_close_unref(bus);
    return done ? 0 : 1;
}
