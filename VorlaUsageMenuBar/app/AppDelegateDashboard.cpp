// SPDX-License-Identifier: MIT
#include "app/AppDelegate.h"

#include "model/Text.h"

#include <exception>
#include <string>
#include <utility>

namespace vorla {

namespace {

constexpr auto cannotOpenText = "Cannot open dashboard: ";
constexpr auto stoppedText = "Dashboard stopped: ";
constexpr std::size_t errorCharacters = 200;

} // namespace

void AppDelegate::openDashboard() {
    if (dashboardCommand_ != nullptr) {
        if (dashboardAddress_) {
            platform_.addressOpener.open(
                *dashboardAddress_, platform_.statusItem.takeActivationToken());
        }
        rebuildMenu();
        return;
    }
    if (quitting_) {
        return;
    }
    const auto path = findCompanion(platform_.companionPlaces);
    if (!path) {
        dashboardFailed(retryMissingText);
        return;
    }
    dashboardCommand_ =
        Command::create(platform_.loop, platform_.launcher, platform_.companionPlaces.environment);
    state_.dashboardError.reset();
    dashboardScanner_ = {};
    dashboardCommand_->onOutput = [this](std::string_view text) {
        if (auto address = dashboardScanner_.scan(text)) {
            dashboardAddress_ = std::move(address);
        }
    };
    try {
        dashboardCommand_->start(
            *path, "--web", [this](const CommandResult& result) { dashboardFinished(result); });
    } catch (const std::exception& error) {
        dashboardCommand_.reset();
        dashboardFailed(cannotOpenText + reasonOf(error));
    }
}

void AppDelegate::dashboardFinished(const CommandResult& result) {
    if (quitting_) {
        return;
    }
    dashboardCommand_.reset();
    dashboardAddress_.reset();
    if (result.status != 0) {
        dashboardFailed(stoppedText + text::excerpt(result.errors, errorCharacters));
    }
}

void AppDelegate::dashboardFailed(std::string error) {
    state_.dashboardError = std::move(error);
    rebuildMenu();
}

} // namespace vorla
