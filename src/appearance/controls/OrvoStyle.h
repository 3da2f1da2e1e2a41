#pragma once

#include "appearance/Roles.h"

#include <QProxyStyle>

namespace orvo {

class Theme;

/// Whether things glide or jump.
enum class Motion { Full, Reduced };

/// The look of stock widgets, painted with the theme's roles over Qt's Fusion style. Custom-painted controls
/// read the roles and the motion setting from it too, so it is the one place that holds them.
class OrvoStyle final : public QProxyStyle {
    Q_OBJECT

public:
    explicit OrvoStyle(const Roles& roles);

    const Roles& roles() const { return m_roles; }
    void setRoles(const Roles& roles) { m_roles = roles; }
    /// Widgets that move hear of a change as a style change.
    void setMotion(Motion motion);

    /// The roles as the palette that stock widgets look their colours up in. Muted text is the placeholder
    /// role, accent text the link role, errors are bright text.
    static QPalette paletteOf(const Roles& roles);

    QPalette standardPalette() const override { return paletteOf(m_roles); }
    void polish(QWidget* widget) override;
    void unpolish(QWidget* widget) override;
    using QProxyStyle::polish;
    using QProxyStyle::unpolish;

    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override;
    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                            const QWidget* widget) const override;
    QRect subElementRect(SubElement element, const QStyleOption* option,
                         const QWidget* widget) const override;
    QRect subControlRect(ComplexControl control, const QStyleOptionComplex* option, SubControl part,
                         const QWidget* widget) const override;
    QSize sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& contents,
                           const QWidget* widget) const override;
    QIcon standardIcon(StandardPixmap standard, const QStyleOption* option,
                       const QWidget* widget) const override;
    int pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const override;
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* returned) const override;

private:
    Roles m_roles;
    Motion m_motion = Motion::Full;
};

/// The roles a widget is painted with: those of its style, or the default theme's under a foreign style.
const Roles& rolesOf(const QWidget* widget);

/// Gives the application its style, palette and font, and follows the theme from then on. Call once, after
/// the application object was made; the theme outlives the application's windows. The application owns the
/// style.
OrvoStyle& applyTheme(Theme& theme);

/// A text for a tooltip. Qt shows what looks like markup as markup; this keeps it as it stands.
QString plainToolTip(const QString& text);

}  // namespace orvo
