// SPDX-License-Identifier: MIT
#pragma once

#include "ports/FennicLauncher.h"

#include <functional>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

namespace vorla {

/// Opens windows that only the test sees.
class FakeFennicLauncher final : public FennicLauncher {
public:
    std::unique_ptr<FennicWindow>
    open(const FennicOpening& opening, std::function<void()> newClosed) override {
        if (launchError != std::errc{}) {
            throw std::system_error(std::make_error_code(launchError));
        }
        if (memoryRunsOut) {
            throw std::bad_alloc();
        }
        openings.push_back(opening);
        closed = std::move(newClosed);
        ++openWindows;
        return std::make_unique<Window>(*this);
    }

    std::vector<FennicOpening> openings;
    /// The token of each time a window was brought to the front.
    std::vector<std::optional<std::string>> raises;
    int openWindows = 0;
    std::function<void()> closed;
    /// If set, the error of each opening.
    std::errc launchError{};
    bool memoryRunsOut = false;

private:
    class Window final : public FennicWindow {
    public:
        explicit Window(FakeFennicLauncher& launcher) : launcher_(launcher) {}
        ~Window() override { --launcher_.openWindows; }
        Window(const Window&) = delete;
        Window& operator=(const Window&) = delete;

        void bringToFront(const std::optional<std::string>& activationToken) override {
            launcher_.raises.push_back(activationToken);
        }

    private:
        FakeFennicLauncher& launcher_;
    };
};

} // namespace vorla
