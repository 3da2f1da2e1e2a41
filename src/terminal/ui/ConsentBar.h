#pragma once

#include <QWidget>

namespace orvo {

/// Asks the person whether a program may write the clipboard. Lies over the top of the terminal.
class ConsentBar : public QWidget {
    Q_OBJECT

public:
    explicit ConsentBar(QWidget* host);

Q_SIGNALS:
    void allowed();
    void refused();

protected:
    void paintEvent(QPaintEvent* event) override;
};

}  // namespace orvo
