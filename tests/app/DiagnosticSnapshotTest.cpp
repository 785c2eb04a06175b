// SPDX-License-Identifier: MIT
#include "app/Application.h"

#include <gtest/gtest.h>

#include <csignal>
#include <string>

using namespace std::chrono_literals;

namespace vorla {

namespace {

constexpr auto document = R"({"diagnosticSchemaVersion":1,"b":"x/y","a":2})";
constexpr auto invalid = "Invalid diagnostic output from vorla-usage.";

class DiagnosticSnapshotTest : public Application, public testing::Test {
protected:
    DiagnosticSnapshotTest() {
        launch();
        finishRun(snapshotNamed("full.json"));
    }

    bool copy() { return choose(LineRole::copyDiagnosticSnapshot); }
    std::string status() const { return item.text(LineRole::diagnosticStatus); }
    std::string itemText() const { return item.text(LineRole::copyDiagnosticSnapshot); }
};

} // namespace

TEST_F(DiagnosticSnapshotTest, isCopiedNormalised) {
    EXPECT_EQ(itemText(), "Copy Diagnostic Snapshot");
    copy();
    EXPECT_EQ(launcher.last().request.argument, "--diagnostics-json");
    finishRun(document);
    EXPECT_EQ(
        clipboard.text, "{\n  \"a\": 2,\n  \"b\": \"x/y\",\n  \"diagnosticSchemaVersion\": 1\n}");
    clipboard.answer(Clipboard::Outcome::copied);
    EXPECT_EQ(status(), "Diagnostic snapshot copied.");
    EXPECT_FALSE(item.line(LineRole::diagnosticStatus)->enabled);
}

TEST_F(DiagnosticSnapshotTest, runsOnceAtATime) {
    copy();
    EXPECT_EQ(itemText(), "Copying Diagnostic…");
    EXPECT_FALSE(copy());
    item.listener->chosen(MenuAction::copyDiagnosticSnapshot);
    EXPECT_EQ(launcher.children.size(), 2U);
}

TEST_F(DiagnosticSnapshotTest, isUnderWayUntilTheClipboardHasTakenIt) {
    copy();
    finishRun(document);
    EXPECT_EQ(itemText(), "Copying Diagnostic…");
    EXPECT_EQ(status(), "");
    item.listener->chosen(MenuAction::copyDiagnosticSnapshot);
    EXPECT_EQ(launcher.children.size(), 2U);
    clipboard.answer(Clipboard::Outcome::copied);
    EXPECT_EQ(itemText(), "Copy Diagnostic Snapshot");
}

TEST_F(DiagnosticSnapshotTest, isNeverCalledCopiedWhenThereIsNoClipboard) {
    copy();
    finishRun(document);
    clipboard.answer(Clipboard::Outcome::unavailable);
    EXPECT_EQ(
        status(), "Cannot copy the diagnostic snapshot: no clipboard is available. "
                  "Run vorla-usage --diagnostics-json in Terminal.");
    EXPECT_TRUE(item.line(LineRole::copyDiagnosticSnapshot)->enabled);
}

TEST_F(DiagnosticSnapshotTest, leavesTheClipboardAloneWhenTheDocumentIsRefused) {
    for (const std::string output :
         {"", "{", "[]", "{}", R"({"diagnosticSchemaVersion":2})",
          R"({"diagnosticSchemaVersion":"1"})", R"({"diagnosticSchemaVersion":true})"}) {
        copy();
        finishRun(output);
        EXPECT_EQ(status(), invalid) << output;
    }
    EXPECT_EQ(clipboard.copies, 0);
}

TEST_F(DiagnosticSnapshotTest, saysThatTheCompanionIsMissing) {
    make("/nonexistent/vorla-usage");
    launch();
    copy();
    EXPECT_EQ(status(), "vorla-usage missing. Install it, then retry.");
}

TEST_F(DiagnosticSnapshotTest, saysWhyTheCompanionCannotBeStarted) {
    launcher.launchError = std::errc::permission_denied;
    copy();
    EXPECT_EQ(status(), "Cannot run diagnostics: Permission denied");
    EXPECT_TRUE(item.line(LineRole::copyDiagnosticSnapshot)->enabled);
}

TEST_F(DiagnosticSnapshotTest, takesNoRunForStartedThatThereWasNoMemoryFor) {
    item.refusals = 1;
    copy();
    EXPECT_EQ(status(), "Cannot run diagnostics: Cannot allocate memory");
    launcher.isShortOfMemory = true;
    copy();
    EXPECT_EQ(status(), "Cannot run diagnostics: Cannot allocate memory");
    launcher.isShortOfMemory = false;
    EXPECT_TRUE(copy());
    EXPECT_EQ(launcher.children.size(), 2U);
}

TEST_F(DiagnosticSnapshotTest, isNotUnderWayToAClipboardThatThereWasNoMemoryFor) {
    copy();
    item.refusals = 1;
    finishRun(document);
    EXPECT_EQ(
        status(), "Cannot copy the diagnostic snapshot: no clipboard is available. "
                  "Run vorla-usage --diagnostics-json in Terminal.");
    EXPECT_TRUE(copy());
    EXPECT_EQ(launcher.children.size(), 3U);
}

TEST_F(DiagnosticSnapshotTest, saysThatTheRunTimedOut) {
    copy();
    loop.advance(45s);
    finishRun(document, SIGTERM);
    EXPECT_EQ(status(), "Diagnostic snapshot timed out.");
    EXPECT_EQ(clipboard.copies, 0);
}

TEST_F(DiagnosticSnapshotTest, showsTheFirstTwoHundredCharactersOfAnErrorText) {
    copy();
    finishRun("", 1, "  " + std::string(300, 'x') + "\n");
    EXPECT_EQ(status(), std::string(200, 'x'));
}

TEST_F(DiagnosticSnapshotTest, countsCharactersOfTheErrorTextAsAUserDoes) {
    copy();
    std::string errors;
    for (int count = 0; count < 300; ++count) {
        errors += "e\u0301";
    }
    finishRun("", 1, errors);
    EXPECT_EQ(status(), errors.substr(0, 200 * 3));
}

TEST_F(DiagnosticSnapshotTest, showsNoCharacterWithoutEndOfAnErrorText) {
    copy();
    finishRun("", 1, characterWithoutEnd());
    EXPECT_TRUE(status().starts_with("e\u0301"));
    EXPECT_LT(status().size(), 70'000U);
}

TEST_F(DiagnosticSnapshotTest, showsTheStatusWhenTheErrorTextIsBlank) {
    copy();
    finishRun("", 7, " \n\t\n ");
    EXPECT_EQ(status(), "Diagnostic snapshot failed (7).");
}

TEST_F(DiagnosticSnapshotTest, leavesTheClipboardAloneWhenTheRunFails) {
    copy();
    finishRun(document, 1, "no");
    copy();
    finishRun(document, 7);
    EXPECT_EQ(clipboard.copies, 0);
}

TEST_F(DiagnosticSnapshotTest, clearsTheLastOutcomeWhenItStartsAgain) {
    copy();
    finishRun("", 7);
    copy();
    EXPECT_EQ(item.line(LineRole::diagnosticStatus), std::nullopt);
}

TEST_F(DiagnosticSnapshotTest, aRefreshLeavesTheOutcomeInView) {
    copy();
    finishRun("", 7);
    choose(LineRole::refresh);
    finishRun(snapshotNamed("full.json"));
    EXPECT_EQ(status(), "Diagnostic snapshot failed (7).");
}

TEST_F(DiagnosticSnapshotTest, isNotBegunOnceQuitting) {
    choose(LineRole::quit);
    const auto runs = launcher.children.size();
    item.listener->chosen(MenuAction::copyDiagnosticSnapshot);
    EXPECT_EQ(launcher.children.size(), runs);
}

TEST_F(DiagnosticSnapshotTest, aLateCompletionChangesNothingOnceQuitting) {
    copy();
    choose(LineRole::quit);
    EXPECT_EQ(launcher.last().signals, std::vector<int>{SIGTERM});
    const auto before = item.shown.size();
    finishRun(document);
    EXPECT_EQ(item.shown.size(), before);
    EXPECT_EQ(clipboard.copies, 0);
}

TEST_F(DiagnosticSnapshotTest, aClipboardThatAnswersOnceQuittingChangesNothing) {
    copy();
    finishRun(document);
    choose(LineRole::quit);
    const auto before = item.shown.size();
    clipboard.answer(Clipboard::Outcome::copied);
    EXPECT_EQ(item.shown.size(), before);
}

TEST_F(DiagnosticSnapshotTest, aClipboardThatAnswersLateChangesNothing) {
    copy();
    finishRun(document);
    const auto answer = clipboard.answer;
    delegate.reset();
    const auto before = item.shown.size();
    answer(Clipboard::Outcome::copied);
    EXPECT_EQ(item.shown.size(), before);
}

} // namespace vorla
