#pragma once

#include "appearance/controls/Pressable.h"

#include <QImage>

namespace orvo {

/// A pet to choose: its picture, or a symbol where there is none yet, and its name. A radio button to
/// assistive technology; checked follows the model, not the click.
class PetTile final : public Pressable {
    Q_OBJECT

public:
    explicit PetTile(const QString& title, QWidget* parent = nullptr);

    /// A null image stands for none.
    void setImage(const QImage& image);

    QSize sizeHint() const override { return {112, 108}; }
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QImage m_image;
};

}  // namespace orvo
