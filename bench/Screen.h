// SPDX-License-Identifier: MIT
#pragma once

#include "Figures.h"

#include <xcb/xcb.h>

#include <sys/types.h>

#include <memory>
#include <string>

namespace vorla::bench {

/// A virtual X screen without a window manager, and what is seen on it from outside.
class Screen final {
public:
    Screen();
    ~Screen();
    Screen(const Screen&) = delete;
    Screen& operator=(const Screen&) = delete;

    /// As the environment variable DISPLAY has it.
    const std::string& display() const { return display_; }

    /// Waits until a window is shown and returns the moment of that.
    Nanoseconds waitForWindow();

    /// Closes the window shown last as its title bar's button does, and waits until it is gone.
    void closeWindow();

private:
    using Event = std::unique_ptr<xcb_generic_event_t, void (*)(void*)>;

    Event waitFor(std::uint8_t type);
    xcb_atom_t atom(const std::string& name) const;

    std::string display_ = ":";
    pid_t server_ = 0;
    xcb_connection_t* connection_ = nullptr;
    xcb_window_t window_ = 0;
};

} // namespace vorla::bench
