#pragma once

#include "appearance/controls/Pressable.h"

namespace orvo {

/// An entry of the sidebar: symbol, text, and a count when there is one. Named by its text alone; the count,
/// and whether something of it wants the person, is its accessible description.
class NavRow final : public Pressable {
    Q_OBJECT

public:
    explicit NavRow(const QString& icon, const QString& text, QWidget* parent = nullptr);

    bool isCurrent() const { return m_current; }
    void setCurrent(bool current);
    /// 0 shows none.
    void setCount(int count);
    /// A dot at the count, for something among what is counted that wants the person.
    void setWanted(bool wanted);
    bool isWanted() const { return m_wanted; }

    QSize sizeHint() const override { return {120, 32}; }
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void describe();

    QString m_icon;
    int m_count = 0;
    bool m_current = false;
    bool m_wanted = false;
};

}  // namespace orvo
