#pragma once

#include "appearance/controls/painting.h"

#include <QWidget>

namespace orvo {

/// A small rounded label with a dot, both in the colour of what it says.
class StatusPill final : public QWidget {
    Q_OBJECT

public:
    explicit StatusPill(const QString& title, Ink color = Ink::Accent, QWidget* parent = nullptr);

    const QString& title() const { return m_title; }
    void setStatus(const QString& title, Ink color);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString m_title;
    Ink m_color;
};

}  // namespace orvo
