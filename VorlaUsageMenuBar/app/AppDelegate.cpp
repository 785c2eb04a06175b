// SPDX-License-Identifier: MIT
#include "app/AppDelegate.h"

#include <system_error>
#include <utility>

namespace vorla {

namespace {

constexpr auto loadingText = "Loading Vorla usage…";

} // namespace

AppDelegate::AppDelegate(Platform platform) : platform_(std::move(platform)) {
    state_.error = loadingText;
}

AppDelegate::~AppDelegate() {
    platform_.statusItem.setListener(nullptr);
    for (const auto& command : commands()) {
        if (command != nullptr) {
            command->abandon();
        }
    }
}

void AppDelegate::applicationDidFinishLaunching() {
    platform_.statusItem.setListener(this);
    rebuildMenu();
    refresh();
    timer_ = platform_.loop.every(refreshInterval, [this] { refresh(); });
}

void AppDelegate::rebuildMenu() {
    state_.refreshing = refreshCommand_ != nullptr;
    state_.copyingDiagnostic = diagnosticCommand_ != nullptr || isCopying_;
    state_.loginItemStatus = platform_.loginItem.status();
    state_.quotaNotificationsEnabled = platform_.preferences.boolean(notificationsEnabledKey);
    platform_.statusItem.show(composeMenu(state_, platform_.clock.now()));
}

void AppDelegate::menuWillOpen() {
    rebuildMenu();
}

void AppDelegate::chosen(MenuAction action) {
    switch (action) {
    case MenuAction::refresh:
        refresh();
        return;
    case MenuAction::quit:
        applicationShouldTerminate();
        return;
    case MenuAction::openDashboard:
        openDashboard();
        return;
    case MenuAction::openFennic:
        openFennic();
        return;
    case MenuAction::toggleLaunchAtLogin:
        toggleLaunchAtLogin();
        return;
    case MenuAction::toggleQuotaNotifications:
        toggleQuotaNotifications();
        return;
    case MenuAction::copyDiagnosticSnapshot:
        copyDiagnosticSnapshot();
        return;
    case MenuAction::none:
        return;
    }
}

std::string AppDelegate::reasonOf(const std::exception& error) {
    if (const auto* const refused = dynamic_cast<const std::system_error*>(&error)) {
        return refused->code().message();
    }
    return std::make_error_code(std::errc::not_enough_memory).message();
}

std::array<std::shared_ptr<Command>, 3> AppDelegate::commands() const {
    return {refreshCommand_, dashboardCommand_, diagnosticCommand_};
}

void AppDelegate::applicationShouldTerminate() {
    if (quitting_) {
        return;
    }
    // First: if this fails all stays as it was, and whatever fails later the answer comes.
    terminationTimer_ = platform_.loop.after(terminationLimit, [this] { replyToTerminate(); });
    quitting_ = true;
    timer_.reset();
    fennicWindow_.reset();
    for (const auto& command : commands()) {
        if (command != nullptr) {
            command->stop();
        }
    }
    if (dashboardCommand_ != nullptr) {
        // A script that has started the server does not pass a signal on, and nobody would ever end
        // that server.
        dashboardCommand_->whenExited([this] { dashboardCommand_->stopRest(); });
    }
    // The one more is for this function itself, so that no answer comes before it has returned.
    childrenToWaitFor_ = 1;
    const auto oneLess = [this] {
        if (--childrenToWaitFor_ == 0) {
            replyToTerminate();
        }
    };
    for (const auto& command : commands()) {
        if (command != nullptr) {
            ++childrenToWaitFor_;
            command->whenExited(oneLess);
        }
    }
    platform_.loop.post(oneLess);
}

void AppDelegate::terminateAtOnce() {
    applicationShouldTerminate();
    for (const auto& command : commands()) {
        if (command != nullptr) {
            command->kill();
        }
    }
    replyToTerminate();
}

void AppDelegate::replyToTerminate() {
    if (!std::exchange(replied_, true)) {
        platform_.replyToTerminate();
    }
}

} // namespace vorla
