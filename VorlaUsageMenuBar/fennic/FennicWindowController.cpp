// SPDX-License-Identifier: MIT
#include "fennic/FennicWindowController.h"

#include "fennic/X11Focus.h"
#include "model/FennicRequest.h"

#include <QByteArray>
#include <QString>

#include <algorithm>
#include <utility>
#include <variant>

namespace vorla {

namespace {

constexpr int buttonTextSize = 13;
constexpr int statusRowSpacing = 8;
constexpr int resultSpacing = 4;

QString toQString(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

} // namespace

FennicWindowController::FennicWindowController(
    FennicQuota quota, Service service, std::function<void()> onClose)
    : quota_(std::move(quota)), service_(std::move(service)), onClose_(std::move(onClose)),
      window_([this] { windowWillClose(); }), input_(nullptr) {
    buildContent();
    window_.makeRoom();
}

void FennicWindowController::bringToFront(const std::optional<std::string>& activationToken) {
    if (activationToken) {
        // Where the toolkit looks for it when it asks the compositor for the focus.
        qputenv("XDG_ACTIVATION_TOKEN", QByteArray::fromStdString(*activationToken));
    }
    window_.setWindowState(window_.windowState() & ~Qt::WindowMinimized);
    const bool wasShown = window_.isVisible();
    window_.show();
    window_.raise();
    // The time of the click that opens a window goes to the window manager with its start.
    if (!wasShown || !bringToUserOfX11(*window_.windowHandle(), activationToken)) {
        window_.activateWindow();
    }
}

void FennicWindowController::buildContent() {
    FennicWindow::apply(fennicHeading(), heading_);
    FennicWindow::apply(fennicPrompt(), prompt_);
    FennicWindow::apply(fennicHint(), hint_);
    FennicWindow::apply(fennicPrivacyNote(), privacyNote_);
    input_.setObjectName("input");
    input_.setAccessibleName(prompt_.text());
    input_.setAccessibleDescription(hint_.text());
    prompt_.setBuddy(&input_);
    status_.setObjectName("status");
    setStatus("");

    // As wide as the wider of its two titles, so that it stays in its place when they change.
    checkButton_.setObjectName("checkButton");
    checkButton_.setFont(FennicWindow::font(buttonTextSize));
    checkButton_.setText(toQString(fennicCheckingTitle));
    const int checkingWidth = checkButton_.sizeHint().width();
    checkButton_.setText(toQString(fennicCheckTitle));
    checkButton_.setMinimumWidth(std::max(checkingWidth, checkButton_.sizeHint().width()));
    checkButton_.setDefault(true);
    // A click leaves the cursor where it is, in the description.
    checkButton_.setFocusPolicy(Qt::TabFocus);
    QObject::connect(&checkButton_, &QPushButton::clicked, &window_, [this] { check(); });

    statusRow_.setSpacing(statusRowSpacing);
    statusRow_.addWidget(&status_, 1, Qt::AlignVCenter);
    statusRow_.addWidget(&checkButton_, 0, Qt::AlignVCenter | Qt::AlignRight);
    results_.setSpacing(resultSpacing);

    QVBoxLayout& content = window_.contentLayout();
    content.addWidget(&heading_);
    content.addWidget(&prompt_);
    content.addWidget(&hint_);
    content.addWidget(&input_);
    content.addWidget(&privacyNote_);
    content.addLayout(&statusRow_);
    content.addLayout(&results_);
    content.addStretch();
    input_.setFocus();
}

void FennicWindowController::check() {
    if (task_) {
        return;
    }
    const auto prepared = FennicRequest::prepare(input_.text(), quota_);
    if (const auto* refusal = std::get_if<FennicRefusal>(&prepared)) {
        setStatus(refusal->message);
        return;
    }
    const auto url = service_.endpoint.url();
    const auto body = std::get<FennicRequest>(prepared).encode();
    if (!url || !body) {
        setStatus(fennicCannotBePrepared);
        return;
    }
    if (window_.focusWidget() == &checkButton_) {
        // Otherwise the focus would go from the disabled button to the description, and another
        // press of Return would break a line in there.
        window_.setFocus();
    }
    checkButton_.setEnabled(false);
    checkButton_.setText(toQString(fennicCheckingTitle));
    setStatus("");
    clearResults();
    startCheck(*url, *body);
}

void FennicWindowController::startCheck(const QUrl& url, const std::string& body) {
    const FennicCheck::Settings settings = {
        .url = url,
        .tls = FennicCheck::tlsTrusting(service_.endpoint.certificateAuthorityFile),
        .timeoutInterval = service_.timeoutInterval};
    const auto completion = [this](std::optional<FennicAnswer> answer) {
        // Not at once: it ends with the check's destruction, and the check is still at work.
        QMetaObject::invokeMethod(
            &window_, [this, answer = std::move(answer)] { checkFinished(answer); },
            Qt::QueuedConnection);
    };
    task_ = std::make_unique<FennicCheck>(settings, QByteArray::fromStdString(body), completion);
}

void FennicWindowController::checkFinished(const std::optional<FennicAnswer>& answer) {
    // Closing the window has cancelled the check while its answer was on its way here.
    if (!task_) {
        return;
    }
    task_.reset();
    checkButton_.setEnabled(true);
    checkButton_.setText(toQString(fennicCheckTitle));
    if (window_.focusWidget() == &window_) {
        checkButton_.setFocus();
    }
    const FennicOutcome outcome = FennicOutcome::of(answer, service_.endpoint.domain);
    if (outcome.result) {
        render(*outcome.result);
    } else {
        setStatus(outcome.message);
    }
}

void FennicWindowController::render(const FennicResult& result) {
    clearResults();
    for (const FennicLine& line : result.lines(quota_)) {
        auto label = std::make_unique<QLabel>();
        FennicWindow::apply(line, *label);
        results_.addWidget(label.get());
        // A label that joins a visible window is hidden until it is shown itself.
        label->show();
        resultLines_.push_back(std::move(label));
    }
    window_.makeRoom();
}

void FennicWindowController::clearResults() {
    resultLines_.clear();
}

void FennicWindowController::setStatus(std::string_view message) {
    FennicWindow::apply(fennicStatus(message), status_);
    // An empty line is nothing that assistive tools should come across.
    status_.setVisible(!message.empty());
    window_.makeRoom();
}

void FennicWindowController::windowWillClose() {
    task_.reset();
    input_.clear();
    clearResults();
    if (const auto onClose = std::exchange(onClose_, nullptr)) {
        onClose();
    }
}

} // namespace vorla
