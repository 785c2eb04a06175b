// SPDX-License-Identifier: MIT
#pragma once

#include <QSocketNotifier>

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace vorla {

/// The lines that arrive on a file descriptor, which is not owned: one waited for, all later ones
/// reported by the event loop. Lines that are too long for the seam are passed over. Main thread
/// only.
class SeamInput final {
public:
    explicit SeamInput(int fileDescriptor);

    /// Blocks until a line is there. Nothing if the input ends before that.
    std::optional<std::string> waitForLine();

    /// Reports every line from here on, and then, once, the end of the input.
    void watch(std::function<void(const std::string&)> onLine, std::function<void()> onEnd);

private:
    /// False at the end of the input.
    bool readMore();
    void readable();
    void reportLines();
    std::optional<std::string> takeLine();

    int fileDescriptor_;
    /// Present while the input is watched.
    std::unique_ptr<QSocketNotifier> notifier_;
    std::string arrived_;
    bool isTooLong_ = false;
    std::function<void(const std::string&)> onLine_;
    std::function<void()> onEnd_;
};

} // namespace vorla
