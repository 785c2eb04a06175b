// SPDX-License-Identifier: MIT
#pragma once

#include "model/FennicLine.h"

#include <QDialog>
#include <QFont>
#include <QLabel>
#include <QScrollArea>
#include <QVBoxLayout>
#include <QWidget>

#include <functional>

namespace vorla {

/// The frame that the task-fit check is shown in: a window of fixed size whose content hangs from
/// the top. Knows nothing of checks. Main thread only.
///
/// Everything grows with the letters of the desktop, so that no text is ever cut; what does not fit
/// on the screen can be scrolled to.
class FennicWindow final : public QDialog {
public:
    explicit FennicWindow(std::function<void()> willClose);

    /// Where the content is laid out, as wide as the window without its insets.
    QVBoxLayout& contentLayout() { return contentLayout_; }

    /// Makes room for the content. The window never shrinks: it must not jump about while a check
    /// runs.
    void makeRoom();

    /// `length` as it is where the desktop's text has 13 pixels, and as much longer as that is
    /// larger.
    static int scaled(int length);

    /// The desktop's font; `points` as in FennicLine.
    static QFont font(int points, QFont::Weight weight = QFont::Normal);

    /// Gives the label its text and look. It wraps and cannot be selected.
    static void apply(const FennicLine& line, QLabel& label);

protected:
    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void updateSecondaryColour();

    std::function<void()> willClose_;
    int roomHeight_ = 0;
    QVBoxLayout frameLayout_;
    QScrollArea scrollArea_;
    QWidget content_;
    QVBoxLayout contentLayout_;
};

} // namespace vorla
