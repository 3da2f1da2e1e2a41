#pragma once

#include "appearance/controls/Card.h"

class QVBoxLayout;

namespace orvo {

class Paragraph;

/// A card that explains: symbol (optional), bold title, running text. More can be added below the text.
class InfoCard final : public Card {
    Q_OBJECT

public:
    explicit InfoCard(const QString& icon, const QString& title, const QString& text,
                      QWidget* parent = nullptr);

    void setText(const QString& text);
    /// A widget of its own line below the text; the card takes it over.
    void addBelow(QWidget* widget);

private:
    Paragraph* m_text;
    QVBoxLayout* m_column;
};

}  // namespace orvo
