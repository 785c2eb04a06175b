// SPDX-License-Identifier: MIT
#include "linux/Clipboard.h"

#include "children/NothingLeftBehind.h"
#include "children/ReadyPipe.h"
#include "children/SystemLimits.h"
#include "fakes/RefusingLoop.h"
#include "linux/ToolFolder.h"

#include <gtest/gtest.h>

#include <csignal>
#include <utility>

namespace vorla {

namespace {

using Outcome = Clipboard::Outcome;
using Variables = std::vector<std::string>;

const Variables x11 = {"DISPLAY=:7"};
const Variables wayland = {"WAYLAND_DISPLAY=wayland-1", "DISPLAY=:7", "XDG_CURRENT_DESKTOP=sway"};
const Variables gnome = {
    "WAYLAND_DISPLAY=wayland-0", "DISPLAY=:7", "XDG_CURRENT_DESKTOP=ubuntu:GNOME"};

class ClipboardTest : public NothingLeftBehind {
protected:
    void startCopy(const std::string& text, Variables variables) {
        clipboard =
            std::make_unique<DesktopClipboard>(loop(), tools.environment(std::move(variables)));
        clipboard->copy(text, [this](Outcome outcome) { outcomes.push_back(outcome); });
        EXPECT_TRUE(outcomes.empty());
    }

    /// Copies to the end and returns the answer; there must be exactly one.
    Outcome copy(const std::string& text, Variables variables) {
        outcomes.clear();
        startCopy(text, std::move(variables));
        EXPECT_TRUE(loop().runUntil([this] { return !outcomes.empty(); }));
        loop().runPending();
        EXPECT_EQ(outcomes.size(), 1U);
        EXPECT_EQ(loop().timerCount(), 0U);
        EXPECT_TRUE(hasNoChild());
        return outcomes.front();
    }

    /// Handles events until a tool that waits for ever has been started.
    void waitForTool() {
        ASSERT_TRUE(loop().runUntil([] { return !hasNoChild(); }));
    }

    void TearDown() override {
        clipboard.reset();
        NothingLeftBehind::TearDown();
    }

    ToolFolder tools;
    std::unique_ptr<DesktopClipboard> clipboard;
    std::vector<Outcome> outcomes;
};

} // namespace

TEST_F(ClipboardTest, givesTheTextToXclipUnderX11) {
    tools.put("xclip", "recordsItsStart");
    tools.put("wl-copy", "recordsItsStart");
    EXPECT_EQ(copy("{\n  \"a\": \"é\"\n}", x11), Outcome::copied);
    EXPECT_EQ(tools.record("xclip", "input"), "{\n  \"a\": \"é\"\n}");
    EXPECT_EQ(tools.record("xclip", "arguments"), "-selection\nclipboard\n");
    EXPECT_FALSE(tools.wasStarted("wl-copy"));
}

TEST_F(ClipboardTest, givesTheTextToWlCopyUnderWayland) {
    tools.put("xclip", "recordsItsStart");
    tools.put("wl-copy", "recordsItsStart");
    EXPECT_EQ(copy("text", wayland), Outcome::copied);
    EXPECT_EQ(tools.record("wl-copy", "input"), "text");
    EXPECT_EQ(tools.record("wl-copy", "arguments"), "-t\ntext/plain;charset=utf-8\n");
    EXPECT_FALSE(tools.wasStarted("xclip"));
}

TEST_F(ClipboardTest, prefersXclipUnderGnomeOnWayland) {
    tools.put("xclip", "recordsItsStart");
    tools.put("wl-copy", "recordsItsStart");
    for (const std::string desktop : {"GNOME", "ubuntu:GNOME", "GNOME-Classic:GNOME"}) {
        EXPECT_EQ(
            copy("text", {"WAYLAND_DISPLAY=w", "DISPLAY=:7", "XDG_CURRENT_DESKTOP=" + desktop}),
            Outcome::copied);
        EXPECT_TRUE(tools.wasStarted("xclip"));
        EXPECT_FALSE(tools.wasStarted("wl-copy"));
        tools.forget("xclip");
    }
}

TEST_F(ClipboardTest, knowsGnomeByAWholeNameOnly) {
    tools.put("xclip", "recordsItsStart");
    tools.put("wl-copy", "recordsItsStart");
    copy("text", {"WAYLAND_DISPLAY=w", "DISPLAY=:7", "XDG_CURRENT_DESKTOP=GNOMEISH:KDE"});
    EXPECT_TRUE(tools.wasStarted("wl-copy"));
    EXPECT_FALSE(tools.wasStarted("xclip"));
}

TEST_F(ClipboardTest, startsTheToolInASessionOfItsOwnWithTheTextAndNothingOfOurs) {
    tools.put("xclip", "recordsItsStart");
    // Without O_CLOEXEC, unlike all that the program opens itself.
    const FileDescriptor stray(open("/dev/zero", O_RDONLY));
    sigset_t blocked;
    sigset_t maskBefore;
    sigemptyset(&blocked);
    sigaddset(&blocked, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &blocked, &maskBefore);
    const auto pipeBefore = std::signal(SIGPIPE, SIG_IGN);
    EXPECT_EQ(copy("text", x11), Outcome::copied);
    std::signal(SIGPIPE, pipeBefore);
    pthread_sigmask(SIG_SETMASK, &maskBefore, nullptr);
    EXPECT_EQ(tools.record("xclip", "descriptors"), "0 /memfd\n1 /dev/null\n2 /dev/null\n");
    EXPECT_EQ(tools.record("xclip", "session"), "own");
    EXPECT_EQ(tools.record("xclip", "signals"), "");
    EXPECT_EQ(
        tools.record("xclip", "environment"), "DISPLAY=:7\nPATH=" + tools.folder().at("path") +
                                                  "\nRECORD=" + tools.folder().at("records") +
                                                  "\n");
}

TEST_F(ClipboardTest, startsToolsAlsoWhenOurOwnStandardStreamsAreClosed) {
    tools.put("xclip", "recordsItsStart");
    const FileDescriptor input(fcntl(0, F_DUPFD_CLOEXEC, 3));
    const FileDescriptor output(fcntl(1, F_DUPFD_CLOEXEC, 3));
    const FileDescriptor errors(fcntl(2, F_DUPFD_CLOEXEC, 3));
    // From here to the end of the block nothing may be printed.
    {
        close(0);
        close(1);
        close(2);
        startCopy("text", x11);
        loop().runUntil([this] { return !outcomes.empty(); });
    }
    dup2(input.number(), 0);
    dup2(output.number(), 1);
    dup2(errors.number(), 2);
    EXPECT_EQ(outcomes, std::vector{Outcome::copied});
    EXPECT_EQ(tools.record("xclip", "descriptors"), "0 /memfd\n1 /dev/null\n2 /dev/null\n");
    EXPECT_EQ(tools.record("xclip", "input"), "text");
}

TEST_F(ClipboardTest, handsOverEmptyAndLargeTexts) {
    tools.put("xclip", "recordsItsStart");
    EXPECT_EQ(copy("", x11), Outcome::copied);
    EXPECT_EQ(tools.record("xclip", "input"), "");
    std::string large(std::size_t{3} << 20U, 'x');
    large += '\n';
    EXPECT_EQ(copy(large, x11), Outcome::copied);
    EXPECT_TRUE(tools.record("xclip", "input") == large);
}

TEST_F(ClipboardTest, triesTheOtherToolWhenTheFirstIsMissing) {
    tools.put("xclip", "recordsItsStart");
    EXPECT_EQ(copy("text", wayland), Outcome::copied);
    EXPECT_EQ(tools.record("xclip", "input"), "text");
}

TEST_F(ClipboardTest, triesTheOtherToolWhenTheFirstFails) {
    tools.put("wl-copy", "exitsWithStatus");
    tools.put("xclip", "recordsItsStart");
    auto variables = wayland;
    variables.emplace_back("STATUS=1");
    EXPECT_EQ(copy("text", variables), Outcome::copied);
    EXPECT_EQ(tools.record("xclip", "input"), "text");
}

TEST_F(ClipboardTest, triesTheOtherToolWhenTheFirstDiesOfASignal) {
    tools.put("wl-copy", "diesOfSignal");
    tools.put("xclip", "recordsItsStart");
    auto variables = wayland;
    variables.emplace_back("SIGNAL=15");
    EXPECT_EQ(copy("text", variables), Outcome::copied);
    EXPECT_EQ(tools.record("xclip", "input"), "text");
}

TEST_F(ClipboardTest, triesTheOtherToolWhenTheFirstIsNoProgram) {
    tools.folder().writeProgram("path/wl-copy");
    tools.put("xclip", "recordsItsStart");
    EXPECT_EQ(copy("text", wayland), Outcome::copied);
    EXPECT_EQ(tools.record("xclip", "input"), "text");
}

TEST_F(ClipboardTest, triesWlCopyUnderGnomeWhenXclipFails) {
    tools.put("xclip", "exitsWithStatus");
    tools.put("wl-copy", "recordsItsStart");
    auto variables = gnome;
    variables.emplace_back("STATUS=1");
    EXPECT_EQ(copy("text", variables), Outcome::copied);
    EXPECT_EQ(tools.record("wl-copy", "input"), "text");
}

TEST_F(ClipboardTest, triesOnlyWhatTheSessionOffers) {
    tools.put("xclip", "recordsItsStart");
    tools.put("wl-copy", "recordsItsStart");
    EXPECT_EQ(copy("text", {}), Outcome::unavailable);
    EXPECT_EQ(copy("text", {"DISPLAY=", "WAYLAND_DISPLAY="}), Outcome::unavailable);
    EXPECT_FALSE(tools.wasStarted("xclip"));
    EXPECT_FALSE(tools.wasStarted("wl-copy"));
    EXPECT_EQ(copy("text", {"WAYLAND_DISPLAY=w", "XDG_CURRENT_DESKTOP=GNOME"}), Outcome::copied);
    EXPECT_TRUE(tools.wasStarted("wl-copy"));
}

TEST_F(ClipboardTest, isUnavailableWhenEveryToolIsMissingOrFails) {
    EXPECT_EQ(copy("text", wayland), Outcome::unavailable);
    tools.put("wl-copy", "exitsWithStatus");
    tools.put("xclip", "exitsWithStatus");
    auto variables = wayland;
    variables.emplace_back("STATUS=3");
    EXPECT_EQ(copy("text", variables), Outcome::unavailable);
}

TEST_F(ClipboardTest, killsAToolThatTakesTooLongAndTriesTheNext) {
    tools.put("wl-copy", "waitsForEver");
    tools.put("xclip", "recordsItsStart");
    startCopy("text", wayland);
    waitForTool();
    loop().advance(DesktopClipboard::toolLimit - std::chrono::milliseconds{1});
    loop().runPending();
    EXPECT_FALSE(tools.wasStarted("xclip"));
    EXPECT_FALSE(hasNoChild());
    loop().advance(std::chrono::milliseconds{1});
    ASSERT_TRUE(loop().runUntil([this] { return !outcomes.empty(); }));
    EXPECT_EQ(outcomes, std::vector{Outcome::copied});
    EXPECT_EQ(tools.record("xclip", "input"), "text");
    EXPECT_TRUE(hasNoChild());
}

TEST_F(ClipboardTest, killsWithAToolWhatItHasStarted) {
    const ReadyPipe ready(folder() / "ready");
    tools.put("xclip", "ignoresRequests");
    auto variables = x11;
    variables.insert(variables.end(), {"WITH_CHILD=1", ready.variable()});
    startCopy("text", variables);
    waitForTool();
    const FileDescriptor one = processHandle(ready.next());
    const FileDescriptor other = processHandle(ready.next());
    loop().advance(DesktopClipboard::toolLimit);
    EXPECT_TRUE(runUntilEnded(one));
    EXPECT_TRUE(runUntilEnded(other));
    ASSERT_TRUE(loop().runUntil([this] { return !outcomes.empty(); }));
}

TEST_F(ClipboardTest, isUnavailableWhenTheLastToolTakesTooLong) {
    tools.put("xclip", "waitsForEver");
    startCopy("text", x11);
    waitForTool();
    loop().advance(DesktopClipboard::toolLimit);
    ASSERT_TRUE(loop().runUntil([this] { return !outcomes.empty(); }));
    EXPECT_EQ(outcomes, std::vector{Outcome::unavailable});
    EXPECT_TRUE(hasNoChild());
    EXPECT_EQ(loop().timerCount(), 0U);
}

TEST_F(ClipboardTest, leavesTheBackgroundHalfOfAToolAlone) {
    const ReadyPipe ready(folder() / "ready");
    tools.put("xclip", "leavesGrandchild");
    auto variables = x11;
    variables.insert(variables.end(), {goVariable(), ready.variable()});
    // This tool ends with status 5 and its own child waits; a failed tool's is left alone, too.
    EXPECT_EQ(copy("text", variables), Outcome::unavailable);
    const FileDescriptor background = processHandle(ready.next());
    go();
    EXPECT_TRUE(runUntilEnded(background));
    EXPECT_TRUE(wentOn());
}

TEST_F(ClipboardTest, isNotHeldUpByAToolWhoseEndSomebodyElseHoldsBack) {
    const ReadyPipe ready(folder() / "ready");
    tools.put("wl-copy", "endsWhileTraced");
    tools.put("xclip", "recordsItsStart");
    auto variables = wayland;
    variables.insert(variables.end(), {goVariable(), ready.variable()});
    startCopy("text", variables);
    waitForTool();
    ready.next();
    // Whoever waited here for the tool would never return.
    loop().runPending();
    EXPECT_TRUE(outcomes.empty());
    go();
    waitUntilCollectable();
    loop().advance(std::chrono::seconds{1});
    ASSERT_TRUE(loop().runUntil([this] { return !outcomes.empty(); }));
    EXPECT_EQ(outcomes, std::vector{Outcome::copied});
    EXPECT_EQ(tools.record("xclip", "input"), "text");
}

TEST_F(ClipboardTest, answersEachOfSeveralCopies) {
    tools.put("xclip", "recordsItsStart");
    clipboard = std::make_unique<DesktopClipboard>(loop(), tools.environment(x11));
    for (int count = 0; count < 3; ++count) {
        clipboard->copy("text", [this](Outcome outcome) { outcomes.push_back(outcome); });
    }
    ASSERT_TRUE(loop().runUntil([this] { return outcomes.size() == 3; }));
    EXPECT_EQ(outcomes, std::vector(3, Outcome::copied));
    EXPECT_TRUE(hasNoChild());
}

TEST_F(ClipboardTest, mayBeDestroyedFromTheAnswer) {
    tools.put("xclip", "recordsItsStart");
    for (const Variables& variables : {x11, Variables{}}) {
        clipboard = std::make_unique<DesktopClipboard>(loop(), tools.environment(variables));
        clipboard->copy("text", [this](Outcome) { clipboard.reset(); });
        EXPECT_TRUE(loop().runUntil([this] { return clipboard == nullptr; }));
    }
}

TEST_F(ClipboardTest, doesNotAnswerOnceItHasBeenDestroyed) {
    tools.put("xclip", "waitsForGo");
    auto variables = x11;
    variables.push_back(goVariable());
    startCopy("text", variables);
    clipboard.reset();
    loop().runPending();
    EXPECT_TRUE(hasNoChild());

    startCopy("text", variables);
    waitForTool();
    clipboard.reset();
    EXPECT_EQ(loop().timerCount(), 0U);
    go();
    EXPECT_GT(waitpid(-1, nullptr, 0), 0);
    loop().runPending();
    EXPECT_TRUE(outcomes.empty());
}

TEST_F(ClipboardTest, isUnavailableWhenTheMainLoopHasNoRoomForAToolsEnd) {
    tools.put("wl-copy", "waitsForEver");
    tools.put("xclip", "waitsForEver");
    for (const auto refused : {RefusingLoop::Refuses::timers, RefusingLoop::Refuses::watches}) {
        RefusingLoop full(loop(), refused);
        DesktopClipboard shortLived(full, tools.environment(wayland));
        outcomes.clear();
        shortLived.copy("text", [this](Outcome outcome) { outcomes.push_back(outcome); });
        ASSERT_TRUE(loop().runUntil([this] { return !outcomes.empty(); }));
        EXPECT_EQ(outcomes, std::vector{Outcome::unavailable});
        EXPECT_TRUE(hasNoChild());
        EXPECT_EQ(loop().timerCount(), 0U);
    }
}

TEST_F(ClipboardTest, isUnavailableWhenTheTextCannotBeHandedOver) {
    tools.put("wl-copy", "recordsItsStart");
    tools.put("xclip", "recordsItsStart");
    {
        const FullDisk disk(10);
        EXPECT_EQ(copy("more than ten bytes", wayland), Outcome::unavailable);
    }
    EXPECT_FALSE(tools.wasStarted("wl-copy"));
    EXPECT_FALSE(tools.wasStarted("xclip"));
}

} // namespace vorla
