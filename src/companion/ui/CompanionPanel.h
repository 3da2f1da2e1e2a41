#pragma once

#include <QWidget>

#include <functional>

namespace orvo {

/// A small window of the companion: without frame, above others, on every virtual desktop, clear where its
/// content is. Showing it does not take the keyboard from the application that has it, unless it is told to.
class CompanionPanel final : public QWidget {
    Q_OBJECT

public:
    enum class Shadow { None, Soft };
    /// A pet is clicked and dragged, and leaves the keyboard alone.
    enum class Focus { Refuses, Takes };

    /// `content` fills the panel, which takes it over.
    CompanionPanel(const QString& title, QWidget* content, Shadow shadow, Focus focus);

    /// The content's size, in dip.
    void setContentSize(const QSize& size);
    /// Where the content's upper left corner stands, in the toolkit's coordinates.
    void placeContent(const QPoint& corner);
    /// The shape that shows where nothing blends the panel with what is below. Asked for whenever that is so;
    /// without one the panel is a box with round corners.
    void setOutline(std::function<QRegion()> outline);
    /// Looks anew whether the desktop blends, and takes the outline that is right now.
    void refreshBlending();

    /// In front, with the keyboard where the panel takes it.
    void showInFront();
    /// In front, and the keyboard stays where it is.
    void showQuietly();

Q_SIGNALS:
    /// The desktop asks to close the panel, or the person presses Escape in it.
    void closeRequested();

protected:
    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    QRect contentRect() const;
    int margin() const;
    void adoptGeometry();

    QWidget* m_content;
    const Shadow m_shadow;
    bool m_blended = true;
    QSize m_size;
    QPoint m_corner;
    std::function<QRegion()> m_outline;
};

}  // namespace orvo
