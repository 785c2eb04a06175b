// SPDX-License-Identifier: MIT
#include "app/AppDelegate.h"
#include "app/LaunchMode.h"
#include "app/LoginItemSwitches.h"
#include "linux/AddressOpener.h"
#include "linux/Clipboard.h"
#include "linux/EventLoop.h"
#include "linux/FennicProgram.h"
#include "linux/Folders.h"
#include "linux/LoginItem.h"
#include "linux/Memory.h"
#include "linux/NotificationCentre.h"
#include "linux/PreferencesFile.h"
#include "linux/ProcessLauncher.h"
#include "linux/StatusNotifierItem.h"
#include "linux/SystemClock.h"
#include "linux/bus/Bus.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <optional>
#include <stdexcept>
#include <string>
#include <system_error>

namespace vorla {

namespace {

constexpr auto busName = "com.vorla.UsageMenuBar";

std::runtime_error noSessionBus() {
    return std::runtime_error("There is no session bus.");
}

bus::Bus sessionBus(EventLoop& loop) {
    try {
        return bus::Bus::openSession(loop);
    } catch (const std::system_error&) {
        throw noSessionBus();
    }
}

/// False if the program runs already. Waits for the bus for the first time, so that one which takes
/// the connection and then hangs up or talks nonsense shows here.
bool takeName(bus::Bus& bus) {
    try {
        return bus.requestName(busName);
    } catch (const std::system_error&) {
        throw noSessionBus();
    }
}

int runMenuBar() {
    keepMemorySmall();
    std::signal(SIGPIPE, SIG_IGN);
    // A write past the limit of a file's size then fails like one to a full disk.
    std::signal(SIGXFSZ, SIG_IGN);
    EventLoop loop;
    bus::Bus bus = sessionBus(loop);
    if (!takeName(bus)) {
        return 0;
    }
    StatusNotifierItem item(bus, loop, installedIcon());
    LinuxProcessLauncher launcher(loop);
    const SystemClock clock;
    const Environment environment = Environment::ofThisProcess();
    PreferencesFile preferences(configurationDirectory());
    AutostartLoginItem loginItem(LoginItemEnvironment::ofThisProcess());
    DesktopNotificationCentre notificationCentre(
        bus, loop, NotificationSettingsPlaces::ofThisProcess());
    DesktopClipboard clipboard(loop, environment.entries());
    DesktopAddressOpener addressOpener(loop, environment.entries());
    FennicProgramLauncher fennicLauncher(loop, environment.entries(), fennicProgramCandidates());
    AppDelegate delegate({
        .loop = loop,
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
            {.environment = environment,
             .homeDirectory = homeDirectory(),
             .resourcesDirectory = resourcesDirectory()},
        .replyToTerminate = [&loop] { loop.exit(0); },
    });
    // A session that ends takes the bus or the terminal away and sends SIGTERM, all in one moment:
    // the first such signal belongs to the same request, and the companion gets its time.
    bool sessionEnds = false;
    const auto endWithSession = [&] {
        if (!delegate.isQuitting()) {
            sessionEnds = true;
        }
        delegate.applicationShouldTerminate();
    };
    const auto hangUps = loop.onSignals({SIGHUP}, endWithSession);
    bus.onDisconnect(endWithSession);
    const auto requests = loop.onSignals({SIGTERM, SIGINT}, [&] {
        if (delegate.isQuitting() && !sessionEnds) {
            delegate.terminateAtOnce();
            return;
        }
        sessionEnds = false;
        delegate.applicationShouldTerminate();
    });
    delegate.applicationDidFinishLaunching();
    return loop.run();
}

/// Without bus and display: package scripts and set-up tools call this, too.
int runSwitch(std::optional<std::string> (*act)(LoginItem&)) {
    AutostartLoginItem loginItem(LoginItemEnvironment::ofThisProcess());
    const auto failure = act(loginItem);
    if (!failure) {
        return 0;
    }
    std::fputs(failure->c_str(), stderr);
    return 1;
}

int run(LaunchMode mode) {
    switch (mode) {
    case LaunchMode::registerLoginItem:
        return runSwitch(addLoginItem);
    case LaunchMode::unregisterLoginItem:
        return runSwitch(removeLoginItem);
    case LaunchMode::menuBar:
        return runMenuBar();
    }
    std::abort();
}

} // namespace

} // namespace vorla

int main(int argc, char** argv) {
    try {
        return vorla::run(vorla::launchMode({argv, static_cast<std::size_t>(argc)}));
    } catch (const std::exception& error) {
        std::fprintf(stderr, "VorlaUsageMenuBar: %s\n", error.what());
        return 1;
    }
}
