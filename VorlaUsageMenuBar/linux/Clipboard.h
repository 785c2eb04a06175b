// SPDX-License-Identifier: MIT
#pragma once

#include "ports/Clipboard.h"
#include "ports/MainLoop.h"

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace vorla {

/// The desktop's clipboard by means of wl-copy and xclip, whichever works first. Main thread.
///
/// This program has no window, and compositors do not take a clipboard's content from a client
/// without one by the ordinary way; these tools know the others. They stay in the background while
/// they hold the text, also when this program has ended.
class DesktopClipboard final : public Clipboard {
public:
    /// Until then a tool must have taken the text; after that it is killed.
    static constexpr std::chrono::seconds toolLimit{5};

    /// `environment`, "NAME=value" each, tells which session this is, where the tools are looked
    /// for and what they get.
    DesktopClipboard(MainLoop& loop, std::vector<std::string> environment);
    ~DesktopClipboard() override;
    DesktopClipboard(const DesktopClipboard&) = delete;
    DesktopClipboard& operator=(const DesktopClipboard&) = delete;

    void copy(std::string text, std::function<void(Outcome)> answer) override;

private:
    class Copy;

    MainLoop& loop_;
    std::vector<std::string> environment_;
    /// Those under way; shared only so that what was posted for one can tell that it is gone.
    std::vector<std::shared_ptr<Copy>> copies_;
};

} // namespace vorla
