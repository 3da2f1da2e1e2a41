#pragma once

#include "appearance/controls/painting.h"

#include <QWidget>

namespace orvo {

/// A symbol without a tile, beside a text that says the same: it has no meaning of its own to read out.
class Symbol final : public QWidget {
    Q_OBJECT

public:
    Symbol(const QString& name, int size, Ink ink, QWidget* parent = nullptr);

    void setSymbol(const QString& name, Ink ink);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString m_name;
    const int m_size;
    Ink m_ink;
};

}  // namespace orvo
