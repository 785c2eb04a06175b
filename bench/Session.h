// SPDX-License-Identifier: MIT
#pragma once

#include "MeasuredProgram.h"
#include "bus/PrivateBus.h"
#include "bus/ScriptedPanel.h"
#include "fakes/ManualLoop.h"

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace vorla::bench {

/// A desktop session for one measurement: a bus, a panel that items register with, a home directory
/// and the companion, whose output is set here. Throws std::runtime_error when the program does not
/// do what it is waited for.
class Session final {
public:
    /// `variables`, "NAME=value" each, are part of the environment.
    explicit Session(std::vector<std::string> variables = {});
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    /// Sets what the companion prints.
    void setOutput(const std::string& bytes);

    /// Starts the program and returns once its item has been registered.
    std::unique_ptr<MeasuredProgram> start(const std::string& program);
    /// From exec to then, of the program started last.
    Nanoseconds startUpTime() const { return registeredAt_ - startedAt_; }

    /// Time from exec of the bare floor to its connection's being known to the bus.
    Nanoseconds floorStartUpTime();

    /// Waits until the title is this one.
    void waitForTitle(const std::string& title);

    /// Makes the companion print a snapshot with a title that differs from the one before, chooses
    /// "Refresh" and waits for that title. The snapshot is filled up to `outputBytes`, if any.
    void refresh(std::size_t outputBytes = 0);
    /// From the last moment of the companion's life to the arrival of the title, of the last
    /// refresh.
    Nanoseconds exitToTitle() const;

    /// Chooses a line of the menu.
    void choose(LineRole role);

    /// What a panel that opens the menu asks for: all properties of item and menu, and the layout.
    void readEverything();

    /// Lets real time pass while the panel goes on listening.
    void wait(std::chrono::milliseconds duration);

    ManualLoop& loop() { return loop_; }
    const std::string& busAddress() const { return daemon_.address(); }
    std::vector<std::string> environment() const;

private:
    void require(bool holds, const char* what) const;

    std::vector<std::string> variables_;
    std::string folder_;
    PrivateBus daemon_;
    ManualLoop loop_;
    ScriptedPanel panel_{loop_, daemon_.address()};
    bus::Slot labels_;
    bus::Slot newConnections_;
    std::string title_;
    Nanoseconds titleAt_{0};
    Nanoseconds connectedAt_{0};
    Nanoseconds startedAt_{0};
    Nanoseconds registeredAt_{0};
    int fiveHourRemaining_ = 0;
};

} // namespace vorla::bench
