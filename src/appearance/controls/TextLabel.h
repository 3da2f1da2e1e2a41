#pragma once

#include "appearance/controls/painting.h"
#include "appearance/controls/typography.h"

#include <QLabel>

namespace orvo {

/// One line of plain text in a place of the type scale, as high as that line is.
class TextLabel : public QLabel {
    Q_OBJECT

public:
    explicit TextLabel(const QString& text, TypeRole type = TypeRole::Body, Ink ink = Ink::Text,
                       QWidget* parent = nullptr);

    void setInk(Ink ink);
    /// For lines that stand closer than the type scale's pitch, or further apart.
    void setLineHeight(int height);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void paintLine(Qt::TextElideMode elide);

private:
    int m_lineHeight;
};

}  // namespace orvo
