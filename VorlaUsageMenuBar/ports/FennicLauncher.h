// SPDX-License-Identifier: MIT
#pragma once

#include "model/FennicSeam.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace vorla {

/// The task-fit window, which runs as a program of its own. Main thread. Destroying it closes it.
class FennicWindow {
public:
    virtual ~FennicWindow() = default;

    virtual void bringToFront(const std::optional<std::string>& activationToken) = 0;
};

/// Opens the task-fit window; a port, because tests have no screen.
class FennicLauncher {
public:
    virtual ~FennicLauncher() = default;

    /// Returns at once. Throws std::system_error if the window's program cannot be started.
    /// `closed` is called once, as soon as the window closes or its program ends, however it ends;
    /// never from inside open(), and not once the window object has been destroyed, which `closed`
    /// may do.
    virtual std::unique_ptr<FennicWindow>
    open(const FennicOpening& opening, std::function<void()> closed) = 0;
};

} // namespace vorla
