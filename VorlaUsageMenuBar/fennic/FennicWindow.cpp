// SPDX-License-Identifier: MIT
#include "fennic/FennicWindow.h"

#include <QApplication>
#include <QCloseEvent>
#include <QFontInfo>
#include <QKeyEvent>
#include <QPalette>
#include <QScreen>

#include <algorithm>
#include <utility>

namespace vorla {

namespace {

constexpr int contentWidth = 420;
constexpr int contentHeight = 430;
constexpr int inset = 20;
constexpr int spacing = 10;

/// What a desktop's title bar may take of the screen; it is not known before the window is shown.
constexpr int titleBarHeight = 40;

/// The size of the desktop's text for which all sizes here are meant, in pixels before scaling.
constexpr double standardTextSize = 13;

/// How much of the text colour there is in the secondary one. Enough for a contrast of 4.5 to 1
/// with the usual light and dark themes, which asks more than the themes' own placeholder colour
/// gives.
constexpr double secondaryShare = 0.7;

/// The palette has no secondary text colour. Only the input field would show this role, and it has
/// no placeholder.
constexpr QPalette::ColorRole secondaryText = QPalette::PlaceholderText;

double textScale() {
    const double pixels = QFontInfo(QApplication::font()).pixelSize();
    return std::max(1.0, pixels / standardTextSize);
}

QFont::Weight fontWeight(FennicLine::Weight weight) {
    switch (weight) {
    case FennicLine::Weight::regular:
        return QFont::Normal;
    case FennicLine::Weight::semibold:
        return QFont::DemiBold;
    case FennicLine::Weight::bold:
        return QFont::Bold;
    }
    return QFont::Normal;
}

QPalette::ColorRole colourRole(FennicLine::Colour colour) {
    switch (colour) {
    case FennicLine::Colour::primary:
        return QPalette::WindowText;
    case FennicLine::Colour::secondary:
        return secondaryText;
    }
    return QPalette::WindowText;
}

QColor blended(const QColor& colour, const QColor& background, double share) {
    const auto mix = [share](int foregroundPart, int backgroundPart) {
        return static_cast<int>(foregroundPart * share + backgroundPart * (1 - share));
    };
    return {
        mix(colour.red(), background.red()), mix(colour.green(), background.green()),
        mix(colour.blue(), background.blue())};
}

} // namespace

FennicWindow::FennicWindow(std::function<void()> willClose)
    : QDialog(
          nullptr, Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint |
                       Qt::WindowSystemMenuHint | Qt::WindowCloseButtonHint),
      willClose_(std::move(willClose)), frameLayout_(this) {
    setWindowTitle(QString::fromUtf8(fennicWindowTitle));
    frameLayout_.setContentsMargins(0, 0, 0, 0);
    frameLayout_.addWidget(&scrollArea_);
    contentLayout_.setContentsMargins(inset, inset, inset, inset);
    contentLayout_.setSpacing(spacing);
    content_.setLayout(&contentLayout_);
    scrollArea_.setAccessibleName(windowTitle());
    scrollArea_.setFrameShape(QFrame::NoFrame);
    scrollArea_.setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scrollArea_.setWidgetResizable(true);
    scrollArea_.setWidget(&content_);
    updateSecondaryColour();
}

void FennicWindow::makeRoom() {
    const QSize available = screen()->availableGeometry().size();
    const int availableHeight = available.height() - titleBarHeight;
    const int width = std::min(scaled(contentWidth), available.width());
    roomHeight_ =
        std::max({scaled(contentHeight), roomHeight_, contentLayout_.totalHeightForWidth(width)});
    setFixedSize(width, std::min(roomHeight_, availableHeight));
    // Reached by the keyboard only when there is something to scroll.
    scrollArea_.setFocusPolicy(roomHeight_ > availableHeight ? Qt::StrongFocus : Qt::NoFocus);
}

int FennicWindow::scaled(int length) {
    return qRound(length * textScale());
}

QFont FennicWindow::font(int points, QFont::Weight weight) {
    QFont font = QApplication::font();
    font.setPixelSize(scaled(points));
    font.setWeight(weight);
    return font;
}

void FennicWindow::apply(const FennicLine& line, QLabel& label) {
    label.setFont(font(line.points, fontWeight(line.weight)));
    label.setForegroundRole(colourRole(line.colour));
    label.setTextFormat(Qt::PlainText);
    label.setTextInteractionFlags(Qt::NoTextInteraction);
    label.setWordWrap(true);
    label.setText(QString::fromStdString(line.text));
}

void FennicWindow::closeEvent(QCloseEvent* event) {
    event->accept();
    willClose_();
}

void FennicWindow::keyPressEvent(QKeyEvent* event) {
    // A dialog would close on Escape, and the text typed would be lost.
    if (event->key() == Qt::Key_Escape) {
        event->ignore();
        return;
    }
    QDialog::keyPressEvent(event);
}

void FennicWindow::changeEvent(QEvent* event) {
    if (event->type() == QEvent::PaletteChange) {
        updateSecondaryColour();
    }
    QDialog::changeEvent(event);
}

void FennicWindow::updateSecondaryColour() {
    const QPalette theme = palette();
    QPalette colours;
    colours.setColor(
        secondaryText,
        blended(theme.color(QPalette::WindowText), theme.color(QPalette::Window), secondaryShare));
    content_.setPalette(colours);
}

} // namespace vorla
