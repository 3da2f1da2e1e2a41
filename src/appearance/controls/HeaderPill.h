#pragma once

#include <QWidget>

namespace orvo {

/// A rounded label with a border and no fill; the symbol is optional.
class HeaderPill final : public QWidget {
    Q_OBJECT

public:
    explicit HeaderPill(const QString& icon, const QString& text, QWidget* parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString m_icon;
    QString m_text;
};

}  // namespace orvo
