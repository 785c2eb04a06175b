// SPDX-License-Identifier: MIT
#pragma once

#include "linux/PublishedMenu.h"

#include <cstdint>
#include <map>

namespace vorla::fuzz {

/// What holds for every menu that composeMenu() makes.
void checkMenu(const StatusMenu& menu);

/// A panel that believes what it is told: it reads a layout when there is a new one, and otherwise
/// only takes over changes. It must always see what the program means to show.
class Panel final {
public:
    void show(const StatusMenu& menu);

    /// Also publishes the lines that wait for a new layout.
    void showInNewLayout(const StatusMenu& menu);

private:
    void takeOverChanges(const StatusMenu& menu);
    void readLayout();
    void checkView(const StatusMenu& menu) const;

    PublishedMenu published_;
    std::map<std::int32_t, bus::Dictionary> seen_;
};

} // namespace vorla::fuzz
