// SPDX-License-Identifier: MIT
#include "fennic/FennicWindowController.h"

#include "fennic/Desk.h"
#include "model/JsonObjectReader.h"

#include <QPointer>

#include <limits>

namespace vorla {

namespace {

constexpr const char* unavailable =
    "The check is unavailable right now. Usage monitoring is unaffected.";
constexpr const char* unreachable = "The check could not reach service.example.";

/// Closes the window just before it learns of anything that was posted to it.
class ClosesInTime final : public QObject {
public:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::MetaCall) {
            watched->removeEventFilter(this);
            static_cast<QWidget*>(watched)->close();
        }
        return false;
    }
};

/// As from the keyboard: it goes to whatever has the focus.
void pressKey(Desk& desk, Qt::Key key) {
    QTest::keyClick(desk.window().windowHandle(), key);
}

} // namespace

TEST(FennicWindowController, leavesTheFieldWithTabAndNotWithReturn) {
    Desk desk;
    desk.server.answerWith({answer(200, goodBody)});
    QTest::keyClicks(&desk.input(), "one");
    QTest::keyClick(&desk.input(), Qt::Key_Return);
    QTest::keyClicks(&desk.input(), "two");
    EXPECT_FALSE(desk.isChecking());
    EXPECT_EQ(desk.input().toPlainText(), "one\ntwo");
    QTest::keyClick(&desk.input(), Qt::Key_Tab);
    EXPECT_EQ(desk.window().focusWidget(), &desk.button());
    EXPECT_TRUE(desk.button().isDefault());
    QTest::keyClick(&desk.window(), Qt::Key_Return);
    EXPECT_TRUE(desk.isChecking());
    ASSERT_TRUE(desk.waitUntilIdle());
    EXPECT_EQ(desk.server.requests().size(), 1U);
}

TEST(FennicWindowController, keepsTheKeyboardOnTheButtonThroughACheck) {
    Desk desk;
    desk.server.answerWith({staySilent, answer(200, goodBody)});
    desk.type("Sort");
    QTest::keyClick(&desk.input(), Qt::Key_Tab);
    pressKey(desk, Qt::Key_Return);
    EXPECT_TRUE(desk.isChecking());
    // Neither is a line break typed somewhere else.
    pressKey(desk, Qt::Key_Return);
    EXPECT_EQ(desk.input().toPlainText(), "Sort");
    ASSERT_TRUE(desk.waitForRequests(1));
    desk.server.closeConnections();
    ASSERT_TRUE(desk.waitUntilIdle());
    pressKey(desk, Qt::Key_Return);
    ASSERT_TRUE(desk.waitUntilIdle());
    EXPECT_EQ(desk.results(), goodLines);
    EXPECT_EQ(desk.input().toPlainText(), "Sort");
}

TEST(FennicWindowController, leavesTheKeyboardInTheFieldWhenTheButtonIsClicked) {
    Desk desk;
    desk.server.answerWith({answer(200, goodBody)});
    desk.type("Sort");
    desk.press();
    pressKey(desk, Qt::Key_A);
    ASSERT_TRUE(desk.waitUntilIdle());
    pressKey(desk, Qt::Key_B);
    EXPECT_EQ(desk.input().toPlainText(), "abSort");
}

TEST(FennicWindowController, showsTheResultOfACheck) {
    Desk desk;
    desk.server.answerWith({answer(200, goodBody)});
    desk.check();
    expectIdle(desk);
    EXPECT_EQ(desk.status(), "");
    EXPECT_EQ(desk.results(), goodLines);
    expectNothingCut(desk);
    const auto labels = desk.resultLabels();
    EXPECT_EQ(labels[0]->font().pixelSize(), 26);
    EXPECT_EQ(labels[0]->font().weight(), QFont::Bold);
    for (std::size_t index = 1; index < labels.size(); ++index) {
        const int gap = labels[index]->y() - labels[index - 1]->geometry().bottom() - 1;
        EXPECT_EQ(gap, 4);
        EXPECT_EQ(labels[index]->x(), labels[0]->x());
    }
}

TEST(FennicWindowController, sendsTheTrimmedTaskAndTheSummaryAndNothingElse) {
    Desk desk;
    desk.server.answerWith({answer(200, goodBody)});
    desk.check(" \n Sort\n\nthe \"list\" \n");
    ASSERT_EQ(desk.server.requests().size(), 1U);
    EXPECT_EQ(
        desk.server.requests()[0].body,
        R"({"task":"Sort\n\nthe \"list\"","quota":{"fiveHourRemainingPercent":87,)"
        R"("weeklyRemainingPercent":15,"pressureSummary":"On track."}})");
}

TEST(FennicWindowController, sendsTheTextAsItStandsInTheField) {
    Desk desk;
    desk.server.answerWith({answer(200, goodBody)});
    // No-break and ideographic spaces, a tab, a line separator, an emoji, and half of one.
    const QString text = QString::fromUtf8("a\u00A0b\u3000c\td\u2028e\U0001F600") + QChar(0xD83D) +
                         QString("f\nend");
    desk.check(text);
    const JsonValue sent = parseJson(desk.server.requests().at(0).body);
    EXPECT_EQ(
        JsonObjectReader(sent).required("task", json::string),
        "a\u00A0b\u3000c\td\u2028e\U0001F600\uFFFDf\nend");
}

TEST(FennicWindowController, sendsEveryCheckWithTheSummaryItWasOpenedWith) {
    Desk desk;
    desk.server.answerWith({answer(200, goodBody)});
    desk.check("one");
    desk.check("one");
    ASSERT_EQ(desk.server.requests().size(), 2U);
    EXPECT_EQ(desk.server.requests()[0].body, desk.server.requests()[1].body);
}

TEST(FennicWindowController, isBusyWhileACheckRuns) {
    Desk desk;
    desk.server.answerWith({staySilent});
    desk.type("Sort");
    const int width = desk.button().width();
    desk.press();
    EXPECT_FALSE(desk.button().isEnabled());
    EXPECT_EQ(desk.button().text().toStdString(), "Checking\u2026");
    EXPECT_EQ(desk.button().width(), width);
    EXPECT_EQ(desk.status(), "");
}

TEST(FennicWindowController, startsNoSecondCheckWhileOneRuns) {
    Desk desk;
    QSslSocket* client = nullptr;
    desk.server.answerWith(
        {[&client](QSslSocket& socket) { client = &socket; }, answer(200, goodBody)});
    desk.type("Sort");
    desk.press();
    ASSERT_TRUE(desk.waitForRequests(1));
    desk.press();
    QTest::keyClick(&desk.window(), Qt::Key_Return);
    // As assistive tools do it, past what the button looks like.
    desk.button().clicked();
    EXPECT_TRUE(desk.isChecking());
    send(*client, answerText(200, goodBody));
    ASSERT_TRUE(desk.waitUntilIdle());
    EXPECT_EQ(desk.server.requests().size(), 1U);
    // Whatever else had been started would have come before another whole check has gone by.
    desk.check();
    EXPECT_EQ(desk.server.requests().size(), 2U);
}

TEST(FennicWindowController, clearsOldResultsWhenACheckStarts) {
    Desk desk;
    desk.server.answerWith({answer(200, goodBody), staySilent});
    desk.check();
    EXPECT_EQ(desk.results(), goodLines);
    desk.press();
    EXPECT_TRUE(desk.isChecking());
    EXPECT_TRUE(desk.results().empty());
}

TEST(FennicWindowController, clearsTheOldMessageWhenACheckStarts) {
    Desk desk;
    desk.server.answerWith({staySilent});
    desk.press();
    EXPECT_EQ(desk.status(), "Describe the task first.");
    desk.type("Sort");
    desk.press();
    EXPECT_EQ(desk.status(), "");
}

TEST(FennicWindowController, asksForADescriptionAndKeepsWhatItShows) {
    Desk desk;
    desk.server.answerWith({answer(200, goodBody)});
    desk.check();
    desk.type(" \n\t ");
    desk.press();
    EXPECT_EQ(desk.status(), "Describe the task first.");
    expectIdle(desk);
    EXPECT_EQ(desk.results(), goodLines);
    EXPECT_EQ(desk.server.requests().size(), 1U);
    expectNothingCut(desk);
}

TEST(FennicWindowController, refusesADescriptionThatIsTooLong) {
    Desk desk;
    desk.server.answerWith({answer(200, goodBody)});
    desk.type(QString(8001, 'x'));
    desk.press();
    EXPECT_EQ(desk.status(), "That description is longer than 8,000 characters.");
    expectIdle(desk);
    expectNothingCut(desk);
    desk.check(QString(8000, 'x') + "\n\n");
    EXPECT_EQ(desk.results(), goodLines);
}

TEST(FennicWindowController, cannotPrepareACheckWithoutAnAddressOrABody) {
    struct Row {
        const char* host;
        FennicQuota quota;
    };

    const Row rows[] = {
        {"not a host", {}},
        {"localhost", {.weeklySecondsToReset = std::numeric_limits<double>::infinity()}}};
    for (const Row& row : rows) {
        FennicWindowController controller(
            row.quota,
            {.endpoint = {.host = row.host, .domain = "a.b", .certificateAuthorityFile = ""}},
            [] {});
        controller.bringToFront(std::nullopt);
        controller.window().findChild<QPlainTextEdit*>("input")->setPlainText("Sort");
        auto* button = controller.window().findChild<QPushButton*>("checkButton");
        button->click();
        EXPECT_EQ(
            controller.window().findChild<QLabel*>("status")->text(),
            "Could not prepare the check.");
        EXPECT_TRUE(button->isEnabled());
        EXPECT_EQ(button->text(), "Check task");
    }
}

TEST(FennicWindowController, saysThatTheCheckIsUnavailable) {
    for (const auto& behaviour :
         {answer(201, goodBody), answer(500, goodBody), answer(404, ""), answer(200, ""),
          answer(200, "{}"), answer(307, goodBody, "Location: https://elsewhere.example/\r\n"),
          raw("220 mail.example ready\r\n")}) {
        Desk desk;
        desk.server.answerWith({answer(200, goodBody), behaviour});
        desk.check();
        desk.check();
        EXPECT_EQ(desk.status(), unavailable);
        expectIdle(desk);
        EXPECT_TRUE(desk.results().empty());
        expectNothingCut(desk);
    }
}

TEST(FennicWindowController, saysThatTheServiceCannotBeReached) {
    for (const auto& behaviour : {raw(""), answer(200, std::string(10 * 1048576, 'x'))}) {
        Desk desk;
        desk.server.answerWith({answer(200, goodBody), behaviour});
        desk.check();
        desk.check();
        EXPECT_EQ(desk.status(), unreachable);
        expectIdle(desk);
        EXPECT_TRUE(desk.results().empty());
        expectNothingCut(desk);
    }
}

TEST(FennicWindowController, saysSoAfterAWrongCertificate) {
    Desk desk("server-of-stranger");
    desk.check();
    EXPECT_EQ(desk.status(), unreachable);
    EXPECT_TRUE(desk.server.requests().empty());
}

TEST(FennicWindowController, saysSoAfterTheInterval) {
    Desk desk("server", std::chrono::milliseconds(300));
    desk.server.answerWith({staySilent});
    desk.check();
    EXPECT_EQ(desk.status(), unreachable);
    expectIdle(desk);
}

TEST(FennicWindowController, canCheckAgainAfterAFailure) {
    Desk desk;
    desk.server.answerWith({answer(503, ""), answer(200, goodBody)});
    desk.check();
    EXPECT_EQ(desk.status(), unavailable);
    desk.check();
    EXPECT_EQ(desk.status(), "");
    EXPECT_EQ(desk.results(), goodLines);
}

TEST(FennicWindowController, cancelsTheCheckAndForgetsTheTextWhenItCloses) {
    Desk desk;
    desk.server.answerWith({staySilent});
    desk.type("Sort");
    desk.press();
    ASSERT_TRUE(desk.waitForRequests(1));
    desk.window().close();
    EXPECT_EQ(desk.closings, 1);
    EXPECT_EQ(desk.input().toPlainText(), "");
    EXPECT_TRUE(
        QTest::qWaitFor([&] { return desk.server.openConnections() == 0; }, waitLimitMilliseconds));
    EXPECT_EQ(desk.status(), "");
}

TEST(FennicWindowController, forgetsItsResultsWhenItCloses) {
    Desk desk;
    desk.server.answerWith({answer(200, goodBody)});
    desk.check();
    const auto before = desk.window().findChildren<QLabel*>().size();
    desk.window().close();
    EXPECT_EQ(desk.window().findChildren<QLabel*>().size() + 7, before);
    desk.window().close();
    EXPECT_EQ(desk.closings, 1);
}

TEST(FennicWindowController, ignoresAnAnswerThatArrivesAfterItHasGone) {
    Desk desk;
    QSslSocket* client = nullptr;
    desk.server.answerWith({[&client](QSslSocket& socket) { client = &socket; }});
    desk.type("Sort");
    desk.press();
    ASSERT_TRUE(desk.waitForRequests(1));
    send(*client, answerText(200, goodBody));
    // It is on its way now, and the window has not read it.
    const QPointer<QWidget> window(&desk.window());
    desk.dropController();
    EXPECT_TRUE(window.isNull());
    EXPECT_TRUE(
        QTest::qWaitFor([&] { return desk.server.openConnections() == 0; }, waitLimitMilliseconds));
    EXPECT_EQ(desk.closings, 0);
}

TEST(FennicWindowController, startsAnewWhenItIsOpenedAgain) {
    {
        Desk desk;
        desk.server.answerWith({answer(200, goodBody)});
        desk.check();
        desk.window().close();
    }
    Desk desk;
    EXPECT_EQ(desk.input().toPlainText(), "");
    EXPECT_TRUE(desk.results().empty());
    expectIdle(desk);
}

TEST(FennicWindowController, staysOpenAndAsItIsWhenItIsBroughtToTheFront) {
    Desk desk;
    desk.type("Sort");
    QWidget other;
    other.show();
    other.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&other));
    EXPECT_FALSE(desk.window().isActiveWindow());
    desk.controller().bringToFront(std::nullopt);
    EXPECT_TRUE(QTest::qWaitForWindowActive(&desk.window()));
    EXPECT_EQ(desk.input().toPlainText(), "Sort");
    EXPECT_EQ(desk.closings, 0);
}

TEST(FennicWindowController, handsTheTokenToTheToolkit) {
    Desk desk;
    desk.controller().bringToFront("token");
    // Under Wayland it is taken from there, once; elsewhere nobody asks for it.
    const bool isTaken = QGuiApplication::platformName().startsWith("wayland");
    EXPECT_EQ(qgetenv("XDG_ACTIVATION_TOKEN"), isTaken ? "" : "token");
    qunsetenv("XDG_ACTIVATION_TOKEN");
}

TEST(FennicWindowController, comesBackFromBeingMinimised) {
    Desk desk;
    desk.window().showMinimized();
    EXPECT_TRUE(desk.window().isMinimized());
    desk.controller().bringToFront(std::nullopt);
    EXPECT_FALSE(desk.window().isMinimized());
}

TEST(FennicWindowController, doesNotCloseOnEscape) {
    Desk desk;
    desk.type("Sort");
    QTest::keyClick(&desk.input(), Qt::Key_Escape);
    QTest::keyClick(&desk.window(), Qt::Key_Escape);
    EXPECT_TRUE(desk.window().isVisible());
    EXPECT_EQ(desk.closings, 0);
    EXPECT_EQ(desk.input().toPlainText(), "Sort");
}

TEST(FennicWindowController, ignoresAnAnswerThatArrivesWhileItCloses) {
    Desk desk;
    desk.server.answerWith({answer(200, goodBody)});
    desk.type("Sort");
    desk.press();
    ClosesInTime closing;
    desk.window().installEventFilter(&closing);
    ASSERT_TRUE(QTest::qWaitFor([&] { return desk.closings == 1; }, waitLimitMilliseconds));
    QTest::qWait(0);
    EXPECT_TRUE(desk.isChecking());
    EXPECT_EQ(desk.window().findChildren<QLabel*>().size(), 5);
    EXPECT_EQ(desk.closings, 1);
}

} // namespace vorla
