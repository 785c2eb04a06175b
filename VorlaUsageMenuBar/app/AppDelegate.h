// SPDX-License-Identifier: MIT
#pragma once

#include "app/Command.h"
#include "app/CompanionLookup.h"
#include "model/AddressScanner.h"
#include "model/SessionPaceTracker.h"
#include "model/StatusMenu.h"
#include "ports/AddressOpener.h"
#include "ports/Clipboard.h"
#include "ports/Clock.h"
#include "ports/FennicLauncher.h"
#include "ports/LoginItem.h"
#include "ports/MainLoop.h"
#include "ports/NotificationCentre.h"
#include "ports/Preferences.h"
#include "ports/ProcessLauncher.h"
#include "ports/StatusItem.h"

#include <array>
#include <chrono>
#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace vorla {

/// What the application runs on.
struct Platform {
    MainLoop& loop;
    const Clock& clock;
    StatusItem& statusItem;
    ProcessLauncher& launcher;
    Preferences& preferences;
    LoginItem& loginItem;
    NotificationCentre& notificationCentre;
    Clipboard& clipboard;
    AddressOpener& addressOpener;
    FennicLauncher& fennicLauncher;
    CompanionPlaces companionPlaces;
    /// Called once when the application may end: its children have.
    std::function<void()> replyToTerminate;
};

/// The application: the one owner of all its state. Main thread only.
///
/// Everything that a user sees leaves through rebuildMenu(). A `Command` that is present is a run
/// in flight and blocks a second one; its completion clears it.
class AppDelegate final : StatusItem::Listener {
public:
    static constexpr std::string_view notificationsEnabledKey = "quotaNotificationsEnabled";
    static constexpr std::string_view notifiedEventsKey = "notifiedQuotaEvents";

    static constexpr std::chrono::seconds refreshInterval{60};
    /// A session that ends kills what is left five seconds after it asked. By then a child that
    /// ignores the request has been killed for a second and a half; one that still stands cannot
    /// be.
    static constexpr std::chrono::milliseconds terminationLimit{4500};

    explicit AppDelegate(Platform platform);
    ~AppDelegate() override;
    AppDelegate(const AppDelegate&) = delete;
    AppDelegate& operator=(const AppDelegate&) = delete;

    /// Shows the first menu, starts the first refresh and the timer. Call once.
    void applicationDidFinishLaunching();

    /// Starts one "--json" run, unless one is in flight or the application is quitting.
    void refresh();

    /// Stops all children and calls replyToTerminate when they have ended, or when the limit is up.
    /// From then on nothing that arrives late changes anything.
    void applicationShouldTerminate();

    /// Kills all children and calls replyToTerminate: for a second request to end.
    void terminateAtOnce();

    bool isQuitting() const { return quitting_; }

private:
    /// What dashboard and diagnostics say without the tool; a refresh says where to install it.
    static constexpr auto retryMissingText = "vorla-usage missing. Install it, then retry.";

    void menuWillOpen() override;
    void chosen(MenuAction action) override;

    void rebuildMenu();
    void refreshFinished(const CommandResult& result);
    void refreshFailed(std::string error);
    void adopt(Usage usage);

    void openDashboard();
    void dashboardFinished(const CommandResult& result);
    void dashboardFailed(std::string error);

    void openFennic();

    void toggleLaunchAtLogin();

    void copyDiagnosticSnapshot();
    void diagnosticFinished(const CommandResult& result);
    void copyToClipboard(std::string document);
    void diagnosticEnded(std::string status);

    void toggleQuotaNotifications();
    void decideOnNotifications(AuthorizationStatus status);
    void enableNotifications();
    void disableNotifications(std::optional<std::string> error);
    std::vector<Usage::NotificationEvent> newEvents(const Usage& usage) const;
    void evaluateNotifications(const Usage& usage);
    void postNotifications(const std::vector<Usage::NotificationEvent>& events);
    void notificationAnswered(const std::string& key, const std::optional<std::string>& error);

    /// `work` for somebody who may call it when the delegate is gone: then it does nothing.
    template <typename Work>
    auto whileAlive(Work work) {
        return [alive = std::weak_ptr(alive_), work = std::move(work)](auto&&... arguments) {
            if (alive.lock() != nullptr) {
                work(std::forward<decltype(arguments)>(arguments)...);
            }
        };
    }

    /// Why a run could not be started.
    static std::string reasonOf(const std::exception& error);
    std::array<std::shared_ptr<Command>, 3> commands() const;
    void replyToTerminate();

    Platform platform_;
    MenuState state_;
    SessionPaceTracker paceTracker_;
    std::unique_ptr<MainLoop::Source> timer_;
    std::shared_ptr<Command> refreshCommand_;
    std::shared_ptr<Command> dashboardCommand_;
    std::shared_ptr<Command> diagnosticCommand_;
    /// The diagnostic document is on its way to the clipboard.
    bool isCopying_ = false;
    /// Reads what the running dashboard prints.
    AddressScanner dashboardScanner_;
    /// Where the running dashboard can be seen, once it has said so.
    std::optional<std::string> dashboardAddress_;
    /// Present while the task-fit window is open.
    std::unique_ptr<FennicWindow> fennicWindow_;
    /// Keys of notifications that have been handed to the desktop and not yet answered.
    std::set<std::string, std::less<>> pendingNotificationKeys_;
    bool quitting_ = false;
    std::unique_ptr<MainLoop::Source> terminationTimer_;
    std::size_t childrenToWaitFor_ = 0;
    bool replied_ = false;
    std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

} // namespace vorla
