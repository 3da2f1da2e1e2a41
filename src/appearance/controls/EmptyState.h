#pragma once

#include "appearance/controls/Card.h"

namespace orvo {

/// What a page shows while it has nothing to show: symbol, title and a sentence in the middle of a card.
class EmptyState final : public Card {
    Q_OBJECT

public:
    explicit EmptyState(const QString& icon, const QString& title, const QString& text,
                        QWidget* parent = nullptr);
};

}  // namespace orvo
