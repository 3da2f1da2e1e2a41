#pragma once

#include <functional>
#include <memory>

class QVariantAnimation;
class QWidget;

namespace orvo {

/// A number that glides to where it is sent; what hover, notices and sheets move with. Jumps when the style
/// says that nothing should move. The animation is made at the first use.
class Glide {
public:
    /// `widget` owns the glide and outlives it. `milliseconds` is the time of one way. Each step calls
    /// `moved`, or repaints the widget when none is given.
    explicit Glide(QWidget* widget, int milliseconds = 120, std::function<void()> moved = {});
    ~Glide();

    double value() const { return m_value; }
    /// Glides to `target`, then calls `arrived`.
    void to(double target, std::function<void()> arrived = {});
    void jumpTo(double value);

private:
    void step(double value);

    QWidget* m_widget;
    int m_milliseconds;
    double m_value = 0;
    double m_target = 0;
    std::function<void()> m_moved;
    std::function<void()> m_arrived;
    std::unique_ptr<QVariantAnimation> m_animation;
};

}  // namespace orvo
