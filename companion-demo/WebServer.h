// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <string>

namespace vorla {

/// Serves the page that `page` makes for each visitor, on a port of this machine's own address that
/// the system chooses; prints the address, and goes on until SIGTERM or SIGINT. `page` is called on
/// several threads. Call before any other thread is started. Returns the program's exit status.
int serve(const std::function<std::string()>& page);

} // namespace vorla
