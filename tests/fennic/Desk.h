// SPDX-License-Identifier: MIT
#pragma once

#include "fennic/FennicWindowController.h"
#include "fennic/TlsServer.h"

#include <QApplication>
#include <QTest>

#include <gtest/gtest.h>

namespace vorla {

inline constexpr int waitLimitMilliseconds = 60000;

/// The summary that every window at a desk is opened with.
inline const FennicQuota deskQuota = {
    .fiveHourRemainingPercent = 87, .weeklyRemainingPercent = 15, .pressureSummary = "On track."};

/// What such a window shows of `goodBody`.
inline const std::vector<std::string> goodLines = {
    "PLAN FIRST",
    "Fit probability: 28%",
    "Task size: Medium",
    "Current 5-hour quota: 87%",
    "Current weekly quota: 15%",
    "Medium task with little quota left.",
    "Experimental task-fit assessment, not an Orvane quota estimate."};

/// A window whose service is a server on the loopback, and what a user sees and does of it.
class Desk final {
public:
    explicit Desk(
        const char* certificate = "server",
        std::chrono::milliseconds timeoutInterval = std::chrono::seconds(60))
        : server(certificate),
          controller_(std::make_unique<FennicWindowController>(
              deskQuota,
              FennicWindowController::Service{
                  .endpoint =
                      {.host = server.host(),
                       .domain = "service.example",
                       .certificateAuthorityFile = certificateFile("authority")},
                  .timeoutInterval = timeoutInterval},
              [this] { ++closings; })) {
        controller().bringToFront(std::nullopt);
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&window()));
    }

    FennicWindowController& controller() { return *controller_; }

    void dropController() { controller_.reset(); }

    FennicWindow& window() { return controller_->window(); }

    QPlainTextEdit& input() { return *window().findChild<QPlainTextEdit*>("input"); }

    QPushButton& button() { return *window().findChild<QPushButton*>("checkButton"); }

    std::string status() { return window().findChild<QLabel*>("status")->text().toStdString(); }

    void type(const QString& text) { input().setPlainText(text); }

    void press() { QTest::mouseClick(&button(), Qt::LeftButton); }

    bool isChecking() { return !button().isEnabled(); }

    bool waitForRequests(std::size_t count) {
        return QTest::qWaitFor(
            [&] { return server.requests().size() == count; }, waitLimitMilliseconds);
    }

    bool waitUntilIdle() {
        return QTest::qWaitFor([&] { return !isChecking(); }, waitLimitMilliseconds);
    }

    /// One whole check.
    void check(const QString& text = "Sort the list") {
        type(text);
        press();
        EXPECT_TRUE(isChecking());
        ASSERT_TRUE(waitUntilIdle());
    }

    /// The labels below the button, from top to bottom.
    std::vector<QLabel*> resultLabels() {
        std::vector<QLabel*> labels;
        const int top = button().mapTo(&window(), QPoint(0, button().height())).y();
        for (QLabel* label : window().findChildren<QLabel*>()) {
            if (label->isVisible() && label->mapTo(&window(), QPoint(0, 0)).y() >= top) {
                labels.push_back(label);
            }
        }
        return labels;
    }

    std::vector<std::string> results() {
        QApplication::processEvents();
        std::vector<std::string> texts;
        for (const QLabel* label : resultLabels()) {
            texts.push_back(label->text().toStdString());
        }
        return texts;
    }

    TlsServer server;
    int closings = 0;

private:
    std::unique_ptr<FennicWindowController> controller_;
};

inline void expectIdle(Desk& desk) {
    EXPECT_TRUE(desk.button().isEnabled());
    EXPECT_EQ(desk.button().text(), "Check task");
}

/// Every label has the height that its text asks for, and lies within the window.
inline void expectNothingCut(Desk& desk) {
    QApplication::processEvents();
    for (const QLabel* label : desk.window().findChildren<QLabel*>()) {
        if (!label->isVisible()) {
            continue;
        }
        const std::string text = label->text().toStdString();
        EXPECT_GE(label->height(), label->heightForWidth(label->width())) << text;
        const QRect place(label->mapTo(&desk.window(), QPoint(0, 0)), label->size());
        EXPECT_TRUE(desk.window().rect().contains(place)) << text;
        for (const QString& word : label->text().split(' ')) {
            EXPECT_LE(QFontMetrics(label->font()).horizontalAdvance(word), label->width()) << text;
        }
    }
}

} // namespace vorla
