#include "appearance/controls/Glide.h"

#include <QEasingCurve>
#include <QStyle>
#include <QVariantAnimation>
#include <QWidget>

#include <utility>

namespace orvo {

Glide::Glide(QWidget* widget, int milliseconds, std::function<void()> moved)
    : m_widget(widget), m_milliseconds(milliseconds), m_moved(std::move(moved)) {}

Glide::~Glide() = default;

void Glide::to(double target, std::function<void()> arrived) {
    m_arrived = std::move(arrived);
    if (target == m_target && m_animation && m_animation->state() == QAbstractAnimation::Running) return;
    m_target = target;
    const bool moves =
        m_widget->isVisible() &&
        m_widget->style()->styleHint(QStyle::SH_Widget_Animation_Duration, nullptr, m_widget) > 0;
    if (!moves || m_value == target) {
        jumpTo(target);
        if (const auto done = std::exchange(m_arrived, {})) done();
        return;
    }
    if (!m_animation) {
        m_animation = std::make_unique<QVariantAnimation>();
        m_animation->setDuration(m_milliseconds);
        m_animation->setEasingCurve(QEasingCurve::OutCubic);
        QObject::connect(m_animation.get(), &QVariantAnimation::valueChanged, m_widget,
                         [this](const QVariant& value) { step(value.toDouble()); });
        QObject::connect(m_animation.get(), &QVariantAnimation::finished, m_widget, [this] {
            if (const auto done = std::exchange(m_arrived, {})) done();
        });
    }
    m_animation->stop();
    m_animation->setStartValue(m_value);
    m_animation->setEndValue(target);
    m_animation->start();
}

void Glide::jumpTo(double value) {
    if (m_animation) m_animation->stop();
    m_target = value;
    step(value);
}

void Glide::step(double value) {
    if (m_value == value) return;
    m_value = value;
    if (m_moved) {
        m_moved();
    } else {
        m_widget->update();
    }
}

}  // namespace orvo
