#pragma once

#include "appearance/controls/Glide.h"

#include <QWidget>

namespace orvo {

/// A short notice that floats at the top of a column, in its middle. It takes no clicks and mirrors the
/// model: how long it stays is not its affair. Announced to assistive technology when it appears.
class Notice final : public QWidget {
    Q_OBJECT

public:
    /// A child of `column`'s window, 12 under the column's top, in the middle of its width, wherever it goes.
    explicit Notice(QWidget* column);

    /// Appears with a text, or changes it while it stands.
    void showText(const QString& text);
    void dismiss();
    const QString& text() const { return m_text; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void place();

    QWidget* m_column;
    QString m_text;
    QString m_shown;
    int m_wrap = 0;
    Glide m_presence;
};

}  // namespace orvo
