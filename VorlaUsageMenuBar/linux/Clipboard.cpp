// SPDX-License-Identifier: MIT
#include "linux/Clipboard.h"

#include "linux/DetachedProcess.h"
#include "linux/SearchPath.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <exception>
#include <optional>
#include <string_view>
#include <system_error>
#include <utility>

namespace vorla {

namespace {

/// A file in memory that holds `text`, to be read from its beginning.
FileDescriptor fileWith(std::string_view text) {
    FileDescriptor file(memfd_create("clipboard", MFD_CLOEXEC));
    if (!file.isOpen()) {
        throw std::system_error(errno, std::generic_category(), "memfd_create");
    }
    while (!text.empty()) {
        const ssize_t written = write(file.number(), text.data(), text.size());
        if (written < 0) {
            throw std::system_error(errno, std::generic_category(), "write");
        }
        text.remove_prefix(static_cast<std::size_t>(written));
    }
    if (lseek(file.number(), 0, SEEK_SET) != 0) {
        throw std::system_error(errno, std::generic_category(), "lseek");
    }
    return file;
}

/// The tools worth trying in this session, the best first.
std::vector<DetachedCommand> toolsFor(const std::vector<std::string>& environment) {
    std::vector<DetachedCommand> tools;
    if (!variableIn(environment, "DISPLAY").empty()) {
        tools.push_back({"xclip", {"-selection", "clipboard"}, environment});
    }
    if (!variableIn(environment, "WAYLAND_DISPLAY").empty()) {
        // GNOME has no protocol for clipboard tools: there wl-copy must take the keyboard from the
        // user's window for a moment, so Xwayland, which needs none, comes first.
        const auto desktops = colonList(variableIn(environment, "XDG_CURRENT_DESKTOP"));
        const bool isGnome = std::ranges::find(desktops, "GNOME") != desktops.end();
        // Told the type, wl-copy does not run another tool to guess it.
        tools.insert(
            isGnome ? tools.end() : tools.begin(),
            {"wl-copy", {"-t", "text/plain;charset=utf-8"}, environment});
    }
    return tools;
}

} // namespace

/// One text on its way to the clipboard.
class DesktopClipboard::Copy final {
public:
    Copy(
        MainLoop& loop, std::string text, std::vector<DetachedCommand> tools,
        std::function<void(Outcome)> finished)
        : loop_(loop), text_(std::move(text)), tools_(std::move(tools)),
          finished_(std::move(finished)) {}

    /// `finished` may be called from inside, and may destroy this object.
    void tryNextTool() {
        process_.reset();
        while (nextTool_ < tools_.size()) {
            const auto& tool = tools_[nextTool_++];
            try {
                limit_ = loop_.after(toolLimit, [this] { process_->kill(); });
                process_.emplace(
                    loop_, tool, fileWith(text_), [this](int status) { toolEnded(status); });
                return;
            } catch (const std::exception&) {
                // This one cannot be started, for want of memory perhaps; the next one may.
                limit_.reset();
            }
        }
        finish(Outcome::unavailable);
    }

private:
    void toolEnded(int status) {
        limit_.reset();
        if (status == 0) {
            finish(Outcome::copied);
        } else {
            tryNextTool();
        }
    }

    void finish(Outcome outcome) {
        const auto finished = std::move(finished_);
        finished(outcome);
    }

    MainLoop& loop_;
    std::string text_;
    std::vector<DetachedCommand> tools_;
    std::size_t nextTool_ = 0;
    std::unique_ptr<MainLoop::Source> limit_;
    std::optional<DetachedProcess> process_;
    std::function<void(Outcome)> finished_;
};

DesktopClipboard::DesktopClipboard(MainLoop& loop, std::vector<std::string> environment)
    : loop_(loop), environment_(std::move(environment)) {}

DesktopClipboard::~DesktopClipboard() = default;

void DesktopClipboard::copy(std::string text, std::function<void(Outcome)> answer) {
    // Known only once the object has been made, and looked at only when it has finished.
    const auto self = std::make_shared<Copy*>();
    const auto copy = std::make_shared<Copy>(
        loop_, std::move(text), toolsFor(environment_),
        [this, self, answer = std::move(answer)](Outcome outcome) {
            std::erase_if(copies_, [&](const auto& one) { return one.get() == *self; });
            answer(outcome);
        });
    *self = copy.get();
    // So that the last step cannot fail: a copy that nobody tries would keep its text for ever.
    copies_.reserve(copies_.size() + 1);
    // Later, so that no answer comes from inside this call.
    loop_.post([weak = std::weak_ptr(copy)] {
        if (const auto posted = weak.lock()) {
            posted->tryNextTool();
        }
    });
    copies_.push_back(copy);
}

} // namespace vorla
