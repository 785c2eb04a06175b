// SPDX-License-Identifier: MIT
#include "linux/PendingCalls.h"

#include <systemd/sd-bus.h>

namespace vorla {

bool PendingCalls::isConnected() {
    return sd_bus_is_open(bus_.native()) > 0;
}

bus::BusError PendingCalls::disconnected() {
    return {"org.freedesktop.DBus.Error.Disconnected", ""};
}

bus::BusError PendingCalls::failed(const std::string& reason) {
    return {"org.freedesktop.DBus.Error.Failed", reason};
}

} // namespace vorla
