#include "appearance/controls/OrvoStyle.h"

#include "appearance/Theme.h"
#include "appearance/controls/TextField.h"
#include "appearance/controls/accessibility.h"
#include "appearance/controls/painting.h"
#include "appearance/controls/symbols.h"
#include "appearance/controls/typography.h"

#include <QAbstractScrollArea>
#include <QApplication>
#include <QComboBox>
#include <QIconEngine>
#include <QMenu>
#include <QMenuBar>
#include <QPainter>
#include <QPalette>
#include <QScrollBar>
#include <QStyleOption>
#include <QTextDocument>
#include <QToolTip>

namespace orvo {
namespace {

/// A symbol that is drawn when it is shown.
class SymbolIcon final : public QIconEngine {
public:
    SymbolIcon(QString name, const QColor& color) : m_name(std::move(name)), m_color(color) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode, QIcon::State) override {
        paintSymbol(*painter, rect, m_name, m_color, std::min(rect.width(), rect.height()));
    }
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        QPixmap pixmap(size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        paint(&painter, pixmap.rect(), mode, state);
        return pixmap;
    }
    QIconEngine* clone() const override { return new SymbolIcon(*this); }

private:
    QString m_name;
    QColor m_color;
};

}  // namespace

OrvoStyle::OrvoStyle(const Roles& roles) : QProxyStyle(QStringLiteral("Fusion")), m_roles(roles) {}

void OrvoStyle::setMotion(Motion motion) {
    if (m_motion == motion) return;
    m_motion = motion;
    for (QWidget* const widget : QApplication::allWidgets()) {
        QEvent changed(QEvent::StyleChange);
        QCoreApplication::sendEvent(widget, &changed);
    }
}

QPalette OrvoStyle::paletteOf(const Roles& roles) {
    const QColor text = toQColor(roles.text);
    const QColor surface = toQColor(roles.surface);
    QPalette palette;
    const auto set = [&palette](QPalette::ColorRole role, const QColor& color) {
        palette.setColor(QPalette::Active, role, color);
        palette.setColor(QPalette::Inactive, role, color);
        palette.setColor(QPalette::Disabled, role, color);
    };
    set(QPalette::Window, toQColor(roles.bg));
    set(QPalette::Base, surface);
    set(QPalette::AlternateBase, surface);
    set(QPalette::Button, surface);
    set(QPalette::ToolTipBase, surface);
    set(QPalette::WindowText, text);
    set(QPalette::Text, text);
    set(QPalette::ButtonText, text);
    set(QPalette::ToolTipText, text);
    set(QPalette::PlaceholderText, toQColor(roles.muted));
    set(QPalette::BrightText, toQColor(roles.danger));
    set(QPalette::Link, toQColor(roles.accent));
    set(QPalette::LinkVisited, toQColor(roles.accent));
    set(QPalette::Highlight, toQColor(over({roles.accent, 0.35}, roles.surface)));
    set(QPalette::HighlightedText, text);
    set(QPalette::Light, toQColor(mix(roles.surface, roles.text, 0.12)));
    set(QPalette::Midlight, toQColor(mix(roles.surface, roles.text, 0.06)));
    set(QPalette::Mid, toQColor(over(roles.border, roles.surface)));
    set(QPalette::Dark, toQColor(over(roles.border, roles.bg)));
    set(QPalette::Shadow, toQColor(Rgb{0, 0, 0}));
    const auto fade = [&](QPalette::ColorRole role, Rgb color) {
        palette.setColor(QPalette::Disabled, role, toQColor(over({color, 0.4}, roles.bg)));
    };
    fade(QPalette::WindowText, roles.text);
    fade(QPalette::Text, roles.text);
    fade(QPalette::ButtonText, roles.text);
    fade(QPalette::PlaceholderText, roles.muted);
    fade(QPalette::Link, roles.accent);
    return palette;
}

void OrvoStyle::polish(QWidget* widget) {
    QProxyStyle::polish(widget);
    if (const auto* area = qobject_cast<QAbstractScrollArea*>(widget);
        area && area->frameShape() == QFrame::StyledPanel) {
        area->viewport()->setAutoFillBackground(false);  // the frame fills its round shape
    }
    if (qobject_cast<QScrollBar*>(widget)) {
        // The bar lies over what scrolls and paints only its thumb.
        widget->setAttribute(Qt::WA_OpaquePaintEvent, false);
        widget->setAttribute(Qt::WA_Hover);
    } else if (qobject_cast<QMenu*>(widget)) {
        // Round corners need a window that can be seen through.
        widget->setAttribute(Qt::WA_TranslucentBackground);
        widget->setFont(fontOf(TypeRole::Body));
    } else if (widget->inherits("QTipLabel")) {
        widget->setAttribute(Qt::WA_TranslucentBackground);
        widget->setContentsMargins(4, 0, 4, 0);  // with the frame, 10 on both sides
    } else if (qobject_cast<QComboBox*>(widget) || widget->inherits("QLineEdit") ||
               widget->inherits("QAbstractSlider")) {
        widget->setAttribute(Qt::WA_Hover);
    }
}

void OrvoStyle::unpolish(QWidget* widget) {
    if (qobject_cast<QScrollBar*>(widget)) widget->setAttribute(Qt::WA_OpaquePaintEvent);
    QProxyStyle::unpolish(widget);
}

QIcon OrvoStyle::standardIcon(StandardPixmap standard, const QStyleOption* option,
                              const QWidget* widget) const {
    // Every menu bar asks for it, and few show it; Qt's own would load all picture formats with the window.
    if (standard == SP_ToolBarHorizontalExtensionButton)
        return QIcon(new SymbolIcon(QStringLiteral("ellipsis"), toQColor(m_roles.text)));
    return QProxyStyle::standardIcon(standard, option, widget);
}

int OrvoStyle::pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const {
    switch (metric) {
        case PM_DefaultFrameWidth:
            return qobject_cast<const QMenu*>(widget) ? 0 : 1;
        case PM_ScrollBarExtent:
        case PM_ScrollView_ScrollBarOverlap:
            return 14;
        case PM_ScrollView_ScrollBarSpacing:
            return 0;
        case PM_ScrollBarSliderMin:
            return 32;
        case PM_IndicatorWidth:
        case PM_IndicatorHeight:
            return 16;
        case PM_CheckBoxLabelSpacing:
            return 8;
        case PM_SliderThickness:
        case PM_SliderControlThickness:
        case PM_SliderLength:
            return 24;
        case PM_SplitterWidth:
            return 1;
        case PM_MenuPanelWidth:
            return 0;
        case PM_MenuHMargin:
        case PM_MenuVMargin:
            return 4;
        case PM_MenuBarPanelWidth:
        case PM_MenuBarVMargin:
            return 0;
        case PM_MenuBarHMargin:
            return 8;
        case PM_MenuBarItemSpacing:
            return 0;
        case PM_SmallIconSize:
        case PM_ButtonIconSize:
            return 16;
        case PM_ToolTipLabelFrameWidth:
            return 5;
        case PM_TextCursorWidth: {
            // A text field paints its caret itself, in the accent. QLineEdit asks with the option alone.
            const QObject* object = widget ? widget : option ? option->styleObject : nullptr;
            return qobject_cast<const TextField*>(object) ? 0 : 2;
        }
        case PM_ButtonShiftHorizontal:
        case PM_ButtonShiftVertical:
        case PM_FocusFrameHMargin:
        case PM_FocusFrameVMargin:
            return 0;
        default:
            return QProxyStyle::pixelMetric(metric, option, widget);
    }
}

int OrvoStyle::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                         QStyleHintReturn* returned) const {
    switch (hint) {
        case SH_Widget_Animation_Duration:
            return m_motion == Motion::Full ? 120 : 0;
        case SH_Widget_Animate:
            return m_motion == Motion::Full ? 1 : 0;
        case SH_ToolTip_WakeUpDelay:
            return 600;
        case SH_ScrollBar_Transient:
        case SH_ComboBox_Popup:
        case SH_ComboBox_PopupFrameStyle:
        case SH_ToolTip_Mask:
        case SH_Menu_Mask:
        case SH_EtchDisabledText:
        case SH_DitherDisabledText:
        case SH_UnderlineShortcut:
            return 0;
        case SH_Menu_SubMenuPopupDelay:
            return 150;
        case SH_Slider_AbsoluteSetButtons:
            return Qt::LeftButton;
        case SH_ScrollBar_LeftClickAbsolutePosition:
            return 1;
        default:
            return QProxyStyle::styleHint(hint, option, widget, returned);
    }
}

const Roles& rolesOf(const QWidget* widget) {
    if (const auto* style = qobject_cast<const OrvoStyle*>(widget->style())) return style->roles();
    static const Roles defaults = Roles::of(Theme(nullptr));
    return defaults;
}

OrvoStyle& applyTheme(Theme& theme) {
    installControlAccessibility();
    QApplication::setFont(fontOf(TypeRole::Body));
    QToolTip::setFont(fontOf(TypeRole::SmallControl));
    auto* style = new OrvoStyle(Roles::of(theme));
    QApplication::setStyle(style);
    QApplication::setPalette(style->standardPalette());

    const auto refresh = [&theme, style] {
        const Roles roles = Roles::of(theme);
        if (roles == style->roles()) return;
        style->setRoles(roles);
        QApplication::setPalette(style->standardPalette());
        for (QWidget* widget : QApplication::allWidgets())
            widget->update();
    };
    QObject::connect(&theme, &Theme::backgroundHexChanged, style, refresh);
    QObject::connect(&theme, &Theme::accentHexChanged, style, refresh);
    return *style;
}

QString plainToolTip(const QString& text) {
    return Qt::mightBeRichText(text) ? QStringLiteral("<span>%1</span>").arg(text.toHtmlEscaped()) : text;
}

}  // namespace orvo
