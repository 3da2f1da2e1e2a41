#pragma once

#include "appearance/HexColor.h"
#include "appearance/controls/Pressable.h"

namespace orvo {

/// A row with a check box, a symbol in its own colour and a name; the whole row reacts. A check box to
/// assistive technology. A row that is not ready never shows a check: choosing it asks for setting it up.
class CheckRow final : public Pressable {
    Q_OBJECT

public:
    explicit CheckRow(const QString& icon, Rgb color, const QString& name, QWidget* parent = nullptr);

    /// Shows the model's state; emits nothing.
    void setState(bool ready, bool on);
    bool isReady() const { return m_ready; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

Q_SIGNALS:
    /// The person switched a ready row.
    void chosen(bool on);
    /// The person chose a row that is not ready.
    void setupRequested();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void report(bool on);

    QString m_icon;
    Rgb m_color;
    bool m_ready = true;
};

}  // namespace orvo
