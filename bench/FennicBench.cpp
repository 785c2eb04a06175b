// SPDX-License-Identifier: MIT
// The task-fit window: how soon it is there, and whether it leaves anything behind in the program
// that opens it.
#include "Benches.h"
#include "Screen.h"
#include "Session.h"
#include "SnapshotText.h"

#include <vector>

namespace vorla::bench {

void measureFennic(Table& table, const std::string& program) {
    using namespace std::chrono_literals;
    constexpr int openings = 31;
    constexpr int openingsForMemory = 10;
    Screen screen;
    Session session({"DISPLAY=" + screen.display()});
    session.setOutput(snapshotText(50));
    const auto process = session.start(program);
    session.waitForTitle(titleOf(50));
    const auto openAndClose = [&] {
        const Nanoseconds click = wallTime();
        session.choose(LineRole::openFennic);
        const Nanoseconds shown = screen.waitForWindow() - click;
        screen.closeWindow();
        session.wait(200ms);
        return shown;
    };
    // The first one is read from the disk.
    const Nanoseconds first = openAndClose();
    const double before = process->memory().privateDirtyMebibytes;
    double after = before;
    std::vector<Nanoseconds> times;
    for (int count = 1; count <= openings; ++count) {
        times.push_back(openAndClose());
        if (count == openingsForMemory) {
            after = process->memory().privateDirtyMebibytes;
        }
    }
    table.heading("Task-fit window");
    table.add({"click to mapped", inMilliseconds(median(times)), "ms", 80});
    table.add({"the very first time", inMilliseconds(first), "ms"});
    table.add(
        {"private dirty of the opener after ten windows, above before", after - before, "MiB",
         0.02});
}

} // namespace vorla::bench
