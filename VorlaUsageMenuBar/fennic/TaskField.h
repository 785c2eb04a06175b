// SPDX-License-Identifier: MIT
#pragma once

#include <QPlainTextEdit>

#include <string>

namespace vorla {

/// The field that the task is described in: plain text, just as it was typed or pasted.
class TaskField final : public QPlainTextEdit {
public:
    explicit TaskField(QWidget* parent);

    /// The whole text as UTF-8. Lines are separated by line feeds, or by U+2028 where Shift was
    /// held with Return; nothing else is changed.
    std::string text() const;

protected:
    bool event(QEvent* event) override;
};

} // namespace vorla
