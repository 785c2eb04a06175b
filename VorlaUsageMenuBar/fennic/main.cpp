// SPDX-License-Identifier: MIT
#include "fennic/FennicWindowController.h"
#include "fennic/SeamInput.h"
#include "model/FennicSeam.h"

#include <QApplication>

#include <unistd.h>

#include <clocale>
#include <csignal>
#include <cstdio>
#include <cstdlib>

namespace vorla {

namespace {

std::optional<FennicOpening> readOpening(SeamInput& input) {
    const auto line = input.waitForLine();
    if (!line) {
        return std::nullopt;
    }
    try {
        return FennicOpening::decode(*line);
    } catch (const DecodeError&) {
        return std::nullopt;
    }
}

/// A line that says nothing this program knows asks for nothing.
void handleLine(FennicWindowController& controller, const std::string& line) {
    try {
        controller.bringToFront(FennicRaise::decode(line).activationToken);
    } catch (const DecodeError&) {}
}

void sayClosing() {
    std::fwrite(fennicClosingLine.data(), 1, fennicClosingLine.size(), stdout);
    std::fflush(stdout);
}

/// Returns only if there is nothing to open a window with.
int runWindow(int argumentCount, char* arguments[]) {
    // Who started this program may be gone when it says that it closes.
    std::signal(SIGPIPE, SIG_IGN);
    SeamInput input(STDIN_FILENO);
    const auto opening = readOpening(input);
    if (!opening) {
        std::fputs("VorlaUsageFennic is opened from the menu of VorlaUsageMenuBar.\n", stderr);
        return EXIT_FAILURE;
    }
    if (opening->activationToken) {
        // Under X11 the toolkit takes it from here, once, when it connects to the display.
        qputenv("DESKTOP_STARTUP_ID", QByteArray::fromStdString(*opening->activationToken));
    }
    QApplication application(argumentCount, arguments);
    // The toolkit has just set the user's locale, but JSON knows one decimal point only.
    std::setlocale(LC_NUMERIC, "C");
    QApplication::setDesktopFileName("com.vorla.UsageMenuBar");
    FennicWindowController controller(
        opening->quota, {.endpoint = FennicEndpoint::ofThisBuild()}, [] {
            sayClosing();
            QApplication::quit();
        });
    controller.bringToFront(opening->activationToken);
    input.watch(
        [&controller](const std::string& line) { handleLine(controller, line); },
        [&controller] { controller.window().close(); });
    const int status = QApplication::exec();
    // Nothing is taken down: a name look-up that a cancelled check has left behind would be waited
    // for, and the program would stay for as long as a silent name server takes.
    std::_Exit(status);
}

} // namespace

} // namespace vorla

int main(int argumentCount, char* arguments[]) {
    return vorla::runWindow(argumentCount, arguments);
}
