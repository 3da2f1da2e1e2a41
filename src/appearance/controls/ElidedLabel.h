#pragma once

#include "appearance/controls/TextLabel.h"

namespace orvo {

/// One line that gives way: what does not fit is replaced by an ellipsis, and only then a tooltip tells all.
class ElidedLabel final : public TextLabel {
    Q_OBJECT

public:
    explicit ElidedLabel(const QString& text, TypeRole type = TypeRole::Body, Ink ink = Ink::Text,
                         QWidget* parent = nullptr);

    /// `Qt::ElideRight` unless told otherwise; paths elide in the middle.
    void setElideMode(Qt::TextElideMode mode);
    bool isElided() const;

    QSize minimumSizeHint() const override;

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    Qt::TextElideMode m_mode = Qt::ElideRight;
};

}  // namespace orvo
