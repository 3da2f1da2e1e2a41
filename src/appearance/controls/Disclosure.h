#pragma once

#include "appearance/controls/Pressable.h"

namespace orvo {

/// A row with a chevron that shows and hides what is below it; handle `toggled`. Checked while open; to
/// assistive technology a button that is expanded or collapsed.
class Disclosure final : public Pressable {
    Q_OBJECT

public:
    explicit Disclosure(const QString& title, QWidget* parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void checkStateSet() override;
    void nextCheckState() override;
    void paintEvent(QPaintEvent* event) override;

private:
    /// 0 closed, 1 open.
    Glide m_turn;
};

}  // namespace orvo
