#pragma once

#include "appearance/controls/Glide.h"

#include <QAbstractButton>

namespace orvo {

/// What every control that can be pressed has in common: a title that is shown and read out as it stands, the
/// glide of hover, focus that shows only when it came by keyboard, and Return beside Space.
class Pressable : public QAbstractButton {
    Q_OBJECT

public:
    const QString& title() const { return m_title; }
    /// An ampersand in the title is an ampersand, not a mnemonic.
    void setTitle(const QString& title);

    /// Whether the keyboard brought the focus here, so that the ring is due.
    bool isFocusVisible() const { return m_focusVisible; }
    /// Takes the focus and shows it, as if the keyboard had brought it: the first control of a sheet.
    void takeVisibleFocus();

protected:
    Pressable(const QString& title, QWidget* parent);

    /// 0 at rest, 1 under the pointer.
    double hover() const { return m_hover.value(); }
    /// The opacity that a whole control is painted with: disabled ones fade.
    double controlOpacity() const { return isEnabled() ? 1.0 : 0.4; }

    bool event(QEvent* event) override;
    void changeEvent(QEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;

private:
    QString m_title;
    Glide m_hover;
    bool m_focusVisible = false;
};

}  // namespace orvo
