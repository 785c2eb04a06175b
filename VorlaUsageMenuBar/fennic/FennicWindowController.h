// SPDX-License-Identifier: MIT
#pragma once

#include "fennic/FennicCheck.h"
#include "fennic/FennicEndpoint.h"
#include "fennic/FennicWindow.h"
#include "fennic/TaskField.h"
#include "model/FennicQuota.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vorla {

/// The task-fit check: its window, and at most one check in flight. Main thread only.
///
/// Every check sends the quota summary that the window was opened with, however long it stays open.
/// Once the window has closed, nothing of it can be used again.
class FennicWindowController final {
public:
    struct Service {
        FennicEndpoint endpoint;
        std::chrono::milliseconds timeoutInterval = FennicCheck::defaultTimeoutInterval;
    };

    /// `onClose` is called once, when the window closes; it must not destroy the controller.
    FennicWindowController(FennicQuota quota, Service service, std::function<void()> onClose);

    FennicWindow& window() { return window_; }

    /// Shows the window, in front and with the focus if the desktop lets it. `activationToken` is
    /// the desktop's permission.
    void bringToFront(const std::optional<std::string>& activationToken);

private:
    void buildContent();

    void check();
    void startCheck(const QUrl& url, const std::string& body);
    void checkFinished(const std::optional<FennicAnswer>& answer);
    void render(const FennicResult& result);
    void clearResults();
    void setStatus(std::string_view message);
    void windowWillClose();

    FennicQuota quota_;
    Service service_;
    std::function<void()> onClose_;

    FennicWindow window_;
    QLabel heading_;
    QLabel prompt_;
    QLabel hint_;
    TaskField input_;
    QLabel privacyNote_;
    QLabel status_;
    QPushButton checkButton_;
    QHBoxLayout statusRow_;
    QVBoxLayout results_;
    std::vector<std::unique_ptr<QLabel>> resultLines_;
    /// Present exactly while a check is running.
    std::unique_ptr<FennicCheck> task_;
};

} // namespace vorla
