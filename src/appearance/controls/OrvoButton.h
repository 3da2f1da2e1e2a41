#pragma once

#include "appearance/controls/Pressable.h"

#include <QMenu>
#include <QPointer>

namespace orvo {

/// The application's button: a symbol and a title, never cut short.
class OrvoButton final : public Pressable {
    Q_OBJECT

public:
    enum class Kind {
        /// Filled with the accent; one in each card or area.
        Primary,
        Outlined,
        Destructive,
        /// Filled, for the button that acts in an alert.
        DestructiveFilled,
        /// Without border, muted until pointed at.
        Plain,
        /// Accent text that leads out of the application; as wide as its words.
        Link,
        /// A square with a symbol alone; the title is its accessible name and its tooltip.
        Icon,
        IconOutlined,
        /// A symbol alone, with the mark of what opens a menu.
        MenuOutlined,
    };
    /// 32 high; 28 high; 28 high and narrow, for the compact connector card.
    enum class Size { Regular, Small, Compact };

    explicit OrvoButton(const QString& title, const QString& icon = {}, Kind kind = Kind::Outlined,
                        Size size = Size::Regular, QWidget* parent = nullptr);

    void setIconName(const QString& icon);
    /// A plain button whose text begins and ends at its edges, so that it lines up with what stands above and
    /// below it. Its ink alone tells hover.
    void setFlush(bool flush);
    /// For a button that is disabled while it does what its title then says: the title stays readable.
    void setBusy(bool busy);
    /// Pops up below the button when it is pressed. The button does not own the menu.
    void setMenu(QMenu* menu);
    QMenu* menu() const { return m_menu; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    bool isSquare() const { return m_kind == Kind::Icon || m_kind == Kind::IconOutlined; }
    bool hidesTitle() const { return isSquare() || m_kind == Kind::MenuOutlined; }
    bool isFilled() const { return m_kind == Kind::Primary || m_kind == Kind::DestructiveFilled; }
    bool isBusy() const { return m_busy && !isEnabled(); }
    bool isBare() const { return m_kind == Kind::Link || m_flush; }
    void adoptKind();
    void paintBox(QPainter& painter) const;
    QColor inkNow() const;
    QColor iconInkNow() const;

    QString m_icon;
    QPointer<QMenu> m_menu;
    Kind m_kind;
    Size m_size;
    bool m_flush = false;
    bool m_busy = false;
};

}  // namespace orvo
