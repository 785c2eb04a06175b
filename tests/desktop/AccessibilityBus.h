// SPDX-License-Identifier: MIT
#pragma once

#include "fakes/ManualLoop.h"
#include "linux/bus/Bus.h"

#include <sys/types.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

namespace vorla {

/// What a screen reader sees and does of other programs, by way of the desktop's accessibility bus
/// (AT-SPI 2). The programs have to be started after this.
class AccessibilityBus final {
public:
    /// One thing that is there for assistive tools, a window or something in it.
    struct Control {
        std::string owner;
        bus::ObjectPath path;
        /// As the program names it: "push button", "label".
        std::string role;
        std::string name;
        /// Numbers of ATSPI_STATE_….
        std::vector<int> states;

        bool has(int state) const;
    };

    static constexpr int active = 1;
    static constexpr int editable = 7;
    static constexpr int sensitive = 24;
    static constexpr int visible = 30;
    static constexpr int isDefault = 39;

    /// The accessibility bus of the session whose bus has this address.
    AccessibilityBus(ManualLoop& loop, const std::string& sessionAddress);

    /// The programs of this name that take part, by their process numbers.
    std::vector<pid_t> programs(const std::string& name);

    /// The windows of a program and all that is shown in them, each followed by what it holds.
    std::vector<Control> controls(pid_t program);

    bool insertText(const Control& control, const std::string& text);

    /// Does what the control does when it is pressed.
    bool press(const Control& control);

    std::string textOf(const Control& control);

private:
    using Reference = std::tuple<std::string, bus::ObjectPath>;

    static bus::Bus join(ManualLoop& loop, bus::Bus& session);

    std::vector<Reference> childrenOf(const Reference& parent);
    void addControls(const Reference& reference, std::vector<Control>& controls);
    std::vector<int> statesOf(const Reference& reference);
    std::string nameOf(const Reference& reference);
    pid_t processOf(const std::string& owner);

    ManualLoop& loop_;
    bus::Bus session_;
    bus::Bus bus_;
};

} // namespace vorla
