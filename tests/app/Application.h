// SPDX-License-Identifier: MIT
#pragma once

#include "app/AppDelegate.h"
#include "fakes/FakeAddressOpener.h"
#include "fakes/FakeClipboard.h"
#include "fakes/FakeClock.h"
#include "fakes/FakeFennicLauncher.h"
#include "fakes/FakeLauncher.h"
#include "fakes/FakeLoginItem.h"
#include "fakes/FakeNotificationCentre.h"
#include "fakes/FakePreferences.h"
#include "fakes/FakeStatusItem.h"
#include "fakes/ManualLoop.h"
#include "model/FileContent.h"

#include <chrono>
#include <memory>
#include <string>

namespace vorla {

/// The whole application without a desktop: the test plays companion, panel and time.
class Application {
public:
    Application() { make(); }

    /// Makes a fresh delegate that finds the companion, or does not.
    void make(const std::string& executable = "/bin/true") { make(executable, loop); }

    /// The same with a loop of the test's own, which goes by `loop`.
    void make(const std::string& executable, MainLoop& mainLoop) {
        delegate = std::make_unique<AppDelegate>(Platform{
            .loop = mainLoop,
            .clock = clock,
            .statusItem = item,
            .launcher = launcher,
            .preferences = preferences,
            .loginItem = loginItem,
            .notificationCentre = notificationCentre,
            .clipboard = clipboard,
            .addressOpener = addressOpener,
            .fennicLauncher = fennicLauncher,
            .companionPlaces =
                {.environment = Environment({"VORLA_USAGE_EXECUTABLE=" + executable}),
                 .homeDirectory = "/nonexistent",
                 .resourcesDirectory = std::nullopt},
            .replyToTerminate = [this] { ++replies; },
        });
    }

    void launch() { delegate->applicationDidFinishLaunching(); }

    /// Chooses a line of the menu as a panel would: only if it is there and enabled.
    bool choose(LineRole role) {
        const auto line = item.line(role);
        if (!line || !line->enabled || item.listener == nullptr) {
            return false;
        }
        item.listener->chosen(line->action);
        return true;
    }

    /// The companion of the last run prints `output` and exits with `status`.
    void finishRun(const std::string& output, int status = 0, const std::string& errors = "") {
        auto& child = launcher.last();
        if (!output.empty()) {
            child.print(output);
        }
        if (!errors.empty()) {
            child.printError(errors);
        }
        child.finish(status);
    }

    std::string errorLine() const { return item.text(LineRole::error); }

    ManualLoop loop;
    FakeClock clock;
    FakeStatusItem item;
    FakeLauncher launcher;
    FakePreferences preferences;
    FakeLoginItem loginItem;
    FakeNotificationCentre notificationCentre;
    FakeClipboard clipboard;
    FakeAddressOpener addressOpener;
    FakeFennicLauncher fennicLauncher;
    int replies = 0;
    std::unique_ptr<AppDelegate> delegate;
};

/// One character, with more combining marks than anybody reads.
inline std::string characterWithoutEnd() {
    std::string character = "e";
    while (character.size() < 1'000'000) {
        character += "\u0301";
    }
    return character;
}

inline std::string snapshotNamed(const std::string& name) {
    return contentOf(VORLA_TEST_DATA "/snapshots/" + name);
}

} // namespace vorla
