#pragma once

#include "appearance/controls/Glide.h"

#include <QPointer>
#include <QWidget>

namespace orvo {

class Card;

/// A panel over a whole window, which it dims and keeps from being used: clicks, Tab and shortcuts stay
/// within until it is dismissed. Escape dismisses; the focus then goes back to where it was.
class Sheet : public QWidget {
    Q_OBJECT

public:
    /// A child of `widget`'s window. Hidden until `open`.
    explicit Sheet(QWidget* widget, int panelWidth = 560);
    ~Sheet() override;

    /// What the panel shows, from top to bottom; only the body scrolls when the window is too low. Each is
    /// taken over and may be null.
    void setContent(QWidget* header, QWidget* body, QWidget* footer);

    /// `first` gets the focus.
    void open(QWidget* first);
    /// Also what Escape does. Emits `dismissed` once it is gone.
    void dismiss();
    bool isOpen() const { return m_open; }

Q_SIGNALS:
    void dismissed();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    bool focusNextPrevChild(bool next) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

    Card& panel() { return *m_panel; }
    void setPadding(int padding);

private:
    class BodyScroll;

    void placePanel();
    bool isWithin(const QObject* object) const;

    Card* m_panel;
    BodyScroll* m_body = nullptr;
    QPointer<QWidget> m_opener;
    int m_panelWidth;
    int m_padding = 24;
    bool m_open = false;
    Glide m_presence;
};

}  // namespace orvo
