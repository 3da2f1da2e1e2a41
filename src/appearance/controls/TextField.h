#pragma once

#include "appearance/controls/Caret.h"

#include <QLineEdit>

namespace orvo {

/// A line of text to write, with an optional symbol before it, and an edge that shows when it is wrong.
class TextField final : public QLineEdit {
    Q_OBJECT

public:
    explicit TextField(const QString& placeholder = {}, QWidget* parent = nullptr);

    void setIcon(const QString& icon);
    bool isInvalid() const { return m_invalid; }
    /// The sentence that says what is wrong stands below the field and is the page's.
    void setInvalid(bool invalid);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString m_icon;
    Caret m_caret;
    bool m_invalid = false;
};

}  // namespace orvo
