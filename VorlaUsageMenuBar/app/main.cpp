// SPDX-License-Identifier: MIT
#include "app/AppDelegate.h"
#include "app/LaunchMode.h"
#include "linux/EventLoop.h"
#include "linux/Folders.h"
#include "linux/Memory.h"
#include "linux/ProcessLauncher.h"
#include "linux/StatusNotifierItem.h"
#include "linux/SystemClock.h"
#include "linux/bus/Bus.h"

#include <csignal>
#include <cstdio>
#include <exception>
#include <system_error>

namespace vorla {

namespace {

constexpr auto busName = "com.vorla.UsageMenuBar";

int runMenuBar() {
    keepMemorySmall();
    std::signal(SIGPIPE, SIG_IGN);
    EventLoop loop;
    bus::Bus bus = bus::Bus::openSession(loop);
    if (!bus.requestName(busName)) {
        return 0;
    }
    StatusNotifierItem item(bus, loop);
    LinuxProcessLauncher launcher(loop);
    const SystemClock clock;
    AppDelegate delegate({
        .loop = loop,
        .clock = clock,
        .statusItem = item,
        .launcher = launcher,
        .companionPlaces =
            {.environment = Environment::ofThisProcess(),
             .homeDirectory = homeDirectory(),
             .resourcesDirectory = resourcesDirectory()},
        .replyToTerminate = [&loop] { loop.exit(0); },
    });
    const auto signals = loop.onSignals({SIGTERM, SIGINT, SIGHUP}, [&delegate] {
        if (delegate.isQuitting()) {
            delegate.terminateAtOnce();
        } else {
            delegate.applicationShouldTerminate();
        }
    });
    bus.onDisconnect([&delegate] { delegate.applicationShouldTerminate(); });
    delegate.applicationDidFinishLaunching();
    return loop.run();
}

} // namespace

} // namespace vorla

int main(int argc, char** argv) {
    using namespace vorla;
    switch (launchMode({argv, static_cast<std::size_t>(argc)})) {
    case LaunchMode::registerLoginItem:
    case LaunchMode::unregisterLoginItem:
    case LaunchMode::menuBar:
        break;
    }
    try {
        return runMenuBar();
    } catch (const std::exception& error) {
        std::fprintf(stderr, "VorlaUsageMenuBar: %s\n", error.what());
        return 1;
    }
}
