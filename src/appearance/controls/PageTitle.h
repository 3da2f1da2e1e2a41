#pragma once

#include <QWidget>

class QHBoxLayout;

namespace orvo {

/// The heading of a page: eyebrow, title, subtitle; actions stand at its right, level with its last line.
class PageTitle final : public QWidget {
    Q_OBJECT

public:
    explicit PageTitle(const QString& eyebrow, const QString& title, const QString& subtitle,
                       QWidget* parent = nullptr);

    /// The title takes the widget over.
    void addTrailing(QWidget* widget);

private:
    QHBoxLayout* m_row;
};

}  // namespace orvo
