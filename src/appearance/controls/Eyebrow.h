#pragma once

#include "appearance/controls/TextLabel.h"

namespace orvo {

/// The small line above a title. The text stays in normal case; its capitals come from the font.
class Eyebrow final : public TextLabel {
    Q_OBJECT

public:
    explicit Eyebrow(const QString& text, QWidget* parent = nullptr)
        : TextLabel(text, TypeRole::Eyebrow, Ink::Muted, parent) {}
};

}  // namespace orvo
