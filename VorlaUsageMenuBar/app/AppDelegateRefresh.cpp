// SPDX-License-Identifier: MIT
#include "app/AppDelegate.h"

#include "model/Json.h"
#include "model/Text.h"

#include <exception>
#include <new>
#include <string>
#include <utility>

namespace vorla {

namespace {

constexpr auto missingText = "vorla-usage missing. Install in ~/.local/bin or PATH, then Refresh.";
constexpr auto cannotRunText = "Cannot run vorla-usage: ";
constexpr auto timedOutText = "vorla-usage timed out. Try Refresh.";
constexpr auto invalidText = "Invalid JSON from vorla-usage. Install v0.5 or newer, then Refresh.";
constexpr std::size_t errorCharacters = 300;

std::string failureText(const CommandResult& result) {
    const auto errors = text::trimmed(result.errors);
    if (!errors.empty()) {
        return text::excerpt(errors, errorCharacters);
    }
    return "vorla-usage failed (" + std::to_string(result.status) + "). Try it in Terminal.";
}

} // namespace

void AppDelegate::refresh() {
    if (refreshCommand_ != nullptr || quitting_) {
        return;
    }
    const auto path = findCompanion(platform_.companionPlaces);
    if (!path) {
        refreshFailed(missingText);
        return;
    }
    refreshCommand_ =
        Command::create(platform_.loop, platform_.launcher, platform_.companionPlaces.environment);
    try {
        rebuildMenu();
        refreshCommand_->start(
            *path, "--json", [this](const CommandResult& result) { refreshFinished(result); });
    } catch (const std::exception& error) {
        refreshCommand_.reset();
        refreshFailed(cannotRunText + reasonOf(error));
    }
}

void AppDelegate::refreshFinished(const CommandResult& result) {
    if (quitting_) {
        return;
    }
    refreshCommand_.reset();
    if (result.timedOut) {
        refreshFailed(timedOutText);
    } else if (result.status != 0) {
        refreshFailed(failureText(result));
    } else {
        try {
            adopt(Usage::decode(result.output));
        } catch (const DecodeError&) {
            refreshFailed(invalidText);
        } catch (const std::bad_alloc&) {
            // No snapshot of the companion's is that large.
            refreshFailed(invalidText);
        }
    }
}

void AppDelegate::refreshFailed(std::string error) {
    state_.usage.reset();
    state_.error = std::move(error);
    rebuildMenu();
}

void AppDelegate::adopt(Usage usage) {
    if (!textsCanHold(usage, {})) {
        refreshFailed(invalidText);
        return;
    }
    auto pace = paceTracker_.observe(usage);
    if (!textsCanHold(usage, pace)) {
        // The absurd time may be this one, or the one at which the period began: with that kept, no
        // later snapshot would be better.
        paceTracker_ = {};
        refreshFailed(invalidText);
        return;
    }
    state_.pace = std::move(pace);
    state_.usage = std::move(usage);
    state_.error.reset();
    evaluateNotifications(*state_.usage);
    rebuildMenu();
}

} // namespace vorla
