#pragma once

#include "appearance/controls/Pressable.h"

namespace orvo {

/// A card that does something when chosen: a symbol on a tile, a title, and perhaps a line that
/// explains it, which is its accessible description too.
class ActionCard final : public Pressable {
    Q_OBJECT

public:
    explicit ActionCard(const QString& icon, const QString& title, const QString& description = {},
                        QWidget* parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString m_icon;
    QString m_description;
};

}  // namespace orvo
