#pragma once

#include "appearance/HexColor.h"
#include "appearance/controls/Pressable.h"

namespace orvo {

/// A tab of the session deck: the connector's symbol in its colour, and the session's title. Between 96 and
/// 220 wide; cut short at the right, with the full title as tooltip then.
class SessionTab final : public Pressable {
    Q_OBJECT

public:
    explicit SessionTab(const QString& icon, Rgb color, const QString& title, QWidget* parent = nullptr);

    bool isCurrent() const { return m_current; }
    void setCurrent(bool current);
    /// A dot at the symbol: nothing, a ring while something goes on, filled when the person is wanted, in the
    /// text's colour when something is over.
    enum class Mark { None, Busy, Wanted, Over };
    Mark mark() const { return m_mark; }
    /// `meaning` is the accessible description.
    void setMark(Mark mark, const QString& meaning);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    QRect textRect() const;
    void paintMark(QPainter& painter) const;

    QString m_icon;
    Rgb m_color;
    bool m_current = false;
    Mark m_mark = Mark::None;
};

}  // namespace orvo
