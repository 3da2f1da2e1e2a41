#pragma once

#include "appearance/controls/Caret.h"

#include <QPlainTextEdit>

namespace orvo {

/// Where a task is written: grows with its text from `least` to `most` dip, then scrolls. Has no frame of its
/// own; the card around it shows the focus. Tab moves on. The placeholder is its accessible description too.
class TaskEditor final : public QPlainTextEdit {
    Q_OBJECT

public:
    /// The text begins this far inside the editor.
    static constexpr int textInset = 2;

    TaskEditor(const QString& label, const QString& placeholder, QWidget* parent = nullptr);

    void setGrowth(int least, int most);
    /// Shows a text of the model's; the caret and the undo steps stay when it is the text already there.
    void setText(const QString& text);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

Q_SIGNALS:
    /// The focus came or went; the card around shows it.
    void focusChanged(bool focused);

protected:
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void adoptHeight();

    Caret m_caret;
    int m_least = 60;
    int m_most = 160;
};

}  // namespace orvo
