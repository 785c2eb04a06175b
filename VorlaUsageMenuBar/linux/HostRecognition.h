// SPDX-License-Identifier: MIT
#pragma once

#include "linux/IconKind.h"
#include "linux/PendingCalls.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <set>
#include <string>
#include <vector>

namespace vorla {

/// Finds out which panels show status items, by the processes behind the bus names that such panels
/// own, and what icon they need. Main thread.
///
/// It looks once at the start and again whenever one of the names changes hands. What it finds need
/// not be true, since any program may call itself anything; all that hangs on it is a picture.
class HostRecognition final {
public:
    /// `recognised` is called for each finding, alike or not, and never from inside this
    /// constructor. A bus that cannot be asked leaves it uncalled. While there is no panel at all
    /// nothing is found, so that a panel that restarts is met with the icon it had. Throws
    /// std::system_error if the bus takes no subscription.
    HostRecognition(bus::Bus& bus, MainLoop& loop, std::function<void(IconKind)> recognised);

private:
    using Names = std::vector<std::string>;

    void look();
    void lookAtProcesses(const Names& names);
    void finishLook();

    std::function<void(IconKind)> recognised_;
    PendingCalls calls_;
    /// How many answers the look at hand still waits for; at 0 there is none.
    std::size_t awaited_ = 0;
    std::set<std::string> found_;
    /// Owners have changed during the look at hand, which is thus worth nothing.
    bool isOutdated_ = false;
    bus::Slot ownerChanges_;
};

} // namespace vorla
