#include "appearance/controls/SegmentedControl.h"

#include "appearance/controls/OrvoStyle.h"
#include "appearance/controls/Pressable.h"
#include "appearance/controls/lineText.h"
#include "appearance/controls/painting.h"
#include "appearance/controls/typography.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QPainter>
#include <QSignalBlocker>

#include <algorithm>

namespace orvo {

/// One option of the control. Exclusive buttons of one parent: Qt moves the choice with the arrow keys.
class Segment final : public Pressable {
public:
    Segment(const QString& title, QWidget* parent) : Pressable(title, parent) {
        setFont(fontOf(TypeRole::SmallControl));
        setCheckable(true);
        setAutoExclusive(true);
        setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    }

    QSize sizeHint() const override { return {20 + measureText(font(), title()), 24}; }
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    bool event(QEvent* event) override {
        // The ring is drawn around the whole control.
        if (event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut) parentWidget()->update();
        return Pressable::event(event);
    }

    void mousePressEvent(QMouseEvent* event) override {
        Pressable::mousePressEvent(event);
        parentWidget()->update();
    }

    void paintEvent(QPaintEvent*) override {
        const Roles& roles = rolesOf(this);
        QPainter painter(this);
        painter.setOpacity(controlOpacity());
        if (isChecked()) {
            fillRounded(painter, rect(), 6, toQColor(roles.segmentOn));
        } else if (isDown()) {
            fillRounded(painter, rect(), 6, toQColor(roles.pressed));
        }
        const QColor on = toQColor(roles.text);
        painter.setPen(isChecked() ? on : blended(toQColor(roles.muted), on, hover()));
        paintText(painter, rect(), Qt::AlignCenter, title());
    }
};

SegmentedControl::SegmentedControl(const QStringList& options, QWidget* parent) : QWidget(parent) {
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(2, 2, 2, 2);
    row->setSpacing(0);
    for (const QString& option : options) {
        auto* segment = new Segment(option, this);
        const int index = static_cast<int>(m_segments.size());
        m_segments.push_back(segment);
        row->addWidget(segment);
        connect(segment, &QAbstractButton::toggled, this, [this, index](bool on) {
            if (!on) return;
            adoptChoice();
            Q_EMIT chosen(index);
        });
    }
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setCurrentIndex(0);
}

int SegmentedControl::currentIndex() const {
    const auto on =
        std::find_if(m_segments.begin(), m_segments.end(), [](Segment* s) { return s->isChecked(); });
    return static_cast<int>(on - m_segments.begin());
}

void SegmentedControl::setCurrentIndex(int index) {
    Segment* segment = m_segments.at(static_cast<std::size_t>(index));
    const QSignalBlocker quiet(segment);
    segment->setChecked(true);
    adoptChoice();
}

void SegmentedControl::adoptChoice() {
    for (Segment* segment : m_segments) {
        segment->setFocusPolicy(segment->isChecked() ? Qt::StrongFocus : Qt::ClickFocus);
    }
    update();
}

void SegmentedControl::setOptionEnabled(int index, bool enabled, const QString& reason) {
    Segment* segment = m_segments.at(static_cast<std::size_t>(index));
    segment->setEnabled(enabled);
    segment->setToolTip(enabled ? QString() : plainToolTip(reason));
}

void SegmentedControl::paintEvent(QPaintEvent*) {
    const Roles& roles = rolesOf(this);
    QPainter painter(this);
    if (!isEnabled()) painter.setOpacity(0.4);
    fillRounded(painter, rect(), 8, toQColor(roles.bg));
    const bool focused = std::any_of(m_segments.begin(), m_segments.end(),
                                     [](Segment* s) { return s->hasFocus() && s->isFocusVisible(); });
    if (focused) {
        strokeRing(painter, rect(), 8, toQColor(roles.accent));
    } else {
        strokeRounded(painter, rect(), 8, toQColor(roles.border));
    }
}

}  // namespace orvo
