// SPDX-License-Identifier: MIT
#include "fennic/TaskField.h"

#include "fennic/FennicWindow.h"

#include <QEvent>
#include <QPainter>
#include <QTextDocument>

namespace vorla {

namespace {

constexpr int fieldHeight = 108;
constexpr int textSize = 13;
constexpr int horizontalInset = 4;
constexpr int verticalInset = 6;

} // namespace

TaskField::TaskField(QWidget* parent) : QPlainTextEdit(parent) {
    setFont(FennicWindow::font(textSize));
    document()->setDocumentMargin(horizontalInset);
    constexpr int above = verticalInset - horizontalInset;
    setViewportMargins(0, above, 0, above);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setFixedHeight(FennicWindow::scaled(fieldHeight));
    // Otherwise the keyboard could not get to the button: Return is a line break in here.
    setTabChangesFocus(true);
}

bool TaskField::event(QEvent* event) {
    const bool isHandled = QPlainTextEdit::event(event);
    // The margins around the viewport belong to the field, but would have the window's colour.
    if (event->type() == QEvent::Paint) {
        QPainter(this).fillRect(contentsRect(), palette().base());
    }
    return isHandled;
}

std::string TaskField::text() const {
    // Not toPlainText(), which turns no-break spaces into spaces.
    QString text = document()->toRawText();
    text.replace(QChar::ParagraphSeparator, QChar::LineFeed);
    // By way of UTF-32, in which half a surrogate pair has become U+FFFD.
    return QString::fromStdU32String(text.toStdU32String()).toStdString();
}

} // namespace vorla
