#include "appearance/controls/Card.h"
#include "appearance/controls/OrvoStyle.h"
#include "appearance/controls/TextField.h"
#include "appearance/controls/painting.h"
#include "appearance/controls/symbols.h"
#include "appearance/controls/typography.h"

#include <QAbstractSpinBox>
#include <QAction>
#include <QComboBox>
#include <QMenu>
#include <QPainter>
#include <QScrollBar>
#include <QSlider>
#include <QStyleOption>

#include <algorithm>

namespace orvo {
namespace {

constexpr double fieldRadius = 8;
constexpr int comboArrowWidth = 32;

bool has(const QStyleOption* option, QStyle::StateFlag flag) {
    return option->state.testFlag(flag);
}

/// A field is a well within a card, and lies on the page like a card itself.
Rgb fieldFill(const QWidget* widget, const Roles& roles) {
    for (const QWidget* up = widget ? widget->parentWidget() : nullptr; up; up = up->parentWidget()) {
        if (qobject_cast<const Card*>(up)) return roles.well;
        if (up->isWindow()) break;
    }
    return roles.surface;
}

void paintField(const QStyleOption* option, QPainter* painter, const QWidget* widget, const Roles& roles) {
    const QRectF rect = option->rect;
    const bool enabled = has(option, QStyle::State_Enabled);
    painter->save();
    if (!enabled) painter->setOpacity(0.4);
    fillRounded(*painter, rect, fieldRadius, toQColor(fieldFill(widget, roles)));
    const auto* field = qobject_cast<const TextField*>(widget);
    // Where one writes, the focus always shows; a picker tells only who came by keyboard.
    const bool focused =
        has(option, QStyle::State_HasFocus) &&
        (!qobject_cast<const QComboBox*>(widget) || has(option, QStyle::State_KeyboardFocusChange));
    if (field && field->isInvalid()) {
        strokeRing(*painter, rect, fieldRadius, toQColor(roles.danger));
    } else if (focused) {
        strokeRing(*painter, rect, fieldRadius, toQColor(roles.accent));
    } else {
        const bool lit = enabled && has(option, QStyle::State_MouseOver);
        strokeRounded(*painter, rect, fieldRadius, toQColor(lit ? roles.borderStrong : roles.border));
    }
    painter->restore();
}

void paintCheckBox(const QStyleOption* option, QPainter* painter, const Roles& roles) {
    const QRectF rect = option->rect;
    painter->save();
    if (!has(option, QStyle::State_Enabled)) painter->setOpacity(0.4);
    if (has(option, QStyle::State_On)) {
        fillRounded(*painter, rect, 4, toQColor(roles.accent));
        paintSymbol(*painter, rect, QStringLiteral("checkmark"), toQColor(roles.onAccent), 12);
    } else {
        const bool lit = has(option, QStyle::State_Enabled) && has(option, QStyle::State_MouseOver);
        strokeRounded(*painter, rect, 4, lit ? toQColor(roles.text) : toQColor(roles.controlOutline));
        if (has(option, QStyle::State_NoChange)) {
            fillRounded(*painter, rect.adjusted(4, 7, -4, -7), 1, toQColor(roles.accent));
        }
    }
    if (has(option, QStyle::State_HasFocus) && has(option, QStyle::State_KeyboardFocusChange)) {
        strokeRing(*painter, rect, 4, toQColor(has(option, QStyle::State_On) ? roles.text : roles.accent));
    }
    painter->restore();
}

void paintCommandButton(const QStyleOption* option, QPainter* painter, const Roles& roles) {
    const QRectF rect = option->rect;
    const auto* button = qstyleoption_cast<const QStyleOptionButton*>(option);
    const bool primary = button && button->features.testFlag(QStyleOptionButton::DefaultButton);
    painter->save();
    if (!has(option, QStyle::State_Enabled)) painter->setOpacity(0.4);
    const bool down = has(option, QStyle::State_Sunken);
    const bool lit = has(option, QStyle::State_MouseOver) && has(option, QStyle::State_Enabled);
    if (primary) {
        fillRounded(*painter, rect, 8,
                    toQColor(down  ? roles.accentPressed
                             : lit ? roles.accentHover
                                   : roles.accent));
    } else {
        if (down || lit) fillRounded(*painter, rect, 8, toQColor(down ? roles.pressed : roles.hover));
        strokeRounded(*painter, rect, 8, toQColor(lit ? roles.borderStrong : roles.border));
    }
    if (has(option, QStyle::State_KeyboardFocusChange) && has(option, QStyle::State_HasFocus)) {
        strokeRing(*painter, rect, 8, toQColor(primary ? roles.text : roles.accent));
    }
    painter->restore();
}

void paintMenuPanel(const QStyleOption* option, QPainter* painter, const Roles& roles) {
    painter->save();
    painter->setCompositionMode(QPainter::CompositionMode_Source);
    painter->fillRect(option->rect, Qt::transparent);
    painter->restore();
    fillRounded(*painter, option->rect, 10, toQColor(roles.surface));
    strokeRounded(*painter, option->rect, 10, toQColor(over(roles.border, roles.surface)));
}

void paintMenuItem(const QStyleOptionMenuItem& item, QPainter* painter, const Roles& roles) {
    if (item.menuItemType == QStyleOptionMenuItem::Separator) {
        const QRectF line(item.rect.left() + 10, item.rect.center().y(), item.rect.width() - 20, 1);
        painter->fillRect(snapped(*painter, line), toQColor(roles.border));
        return;
    }
    const bool enabled = item.state.testFlag(QStyle::State_Enabled);
    painter->save();
    if (item.state.testFlag(QStyle::State_Selected) && enabled) {
        fillRounded(*painter, item.rect, 6, toQColor(roles.menuHighlight));
    }
    if (!enabled) painter->setOpacity(0.4);
    QRect content = item.rect.adjusted(10, 0, -10, 0);
    const bool checkable = item.checkType != QStyleOptionMenuItem::NotCheckable;
    if (checkable && item.checked) {
        paintSymbol(*painter, QRectF(content.left() - 2, content.top(), 16, content.height()),
                    QStringLiteral("checkmark"), toQColor(roles.accent), 14);
    }
    if (item.menuHasCheckableItems) content.setLeft(content.left() + 20);
    if (!item.icon.isNull()) {
        const QRect place(content.left(), content.center().y() - 8, 16, 16);
        item.icon.paint(painter, place);
        content.setLeft(content.left() + 24);
    }
    painter->setFont(item.font);
    const int tab = static_cast<int>(item.text.indexOf(u'\t'));
    constexpr int flags = Qt::AlignVCenter | Qt::TextHideMnemonic | Qt::TextSingleLine;
    painter->setPen(toQColor(roles.text));
    painter->drawText(content, flags | Qt::AlignLeft, tab < 0 ? item.text : item.text.left(tab));
    painter->setPen(toQColor(roles.muted));
    if (tab >= 0) painter->drawText(content, flags | Qt::AlignRight, item.text.mid(tab + 1));
    if (item.menuItemType == QStyleOptionMenuItem::SubMenu) {
        paintSymbol(*painter, QRectF(content.right() - 12, content.top(), 14, content.height()),
                    QStringLiteral("chevron.right"), toQColor(roles.muted), 14);
    }
    painter->restore();
}

void paintMenuBarItem(const QStyleOptionMenuItem& item, QPainter* painter, const Roles& roles) {
    painter->fillRect(item.rect, toQColor(roles.sidebar));
    const bool open =
        item.state.testFlag(QStyle::State_Selected) || item.state.testFlag(QStyle::State_Sunken);
    if (open)
        fillRounded(*painter, QRectF(item.rect).adjusted(0, 3, 0, -3), 6, toQColor(roles.menuHighlight));
    painter->setPen(toQColor(roles.text));
    painter->drawText(item.rect, Qt::AlignCenter | Qt::TextHideMnemonic | Qt::TextSingleLine, item.text);
}

void paintScrollBar(const QStyleOptionSlider& bar, QPainter* painter, const QRect& slider,
                    const Roles& roles) {
    if (bar.maximum <= bar.minimum) return;
    const bool dragged = bar.state.testFlag(QStyle::State_Sunken) &&
                         bar.activeSubControls.testFlag(QStyle::SC_ScrollBarSlider);
    const bool lit = bar.state.testFlag(QStyle::State_MouseOver) || dragged;
    const double width = lit ? 8 : 6;
    // The thumb stands 3 from the outer edge and from both ends of its run.
    QRectF thumb = slider;
    if (bar.orientation == Qt::Vertical) {
        const double left =
            bar.direction == Qt::RightToLeft ? bar.rect.left() + 3 : bar.rect.right() + 1 - 3 - width;
        thumb = QRectF(left, slider.top() + 3, width, slider.height() - 6);
    } else {
        thumb = QRectF(slider.left() + 3, bar.rect.bottom() + 1 - 3 - width, slider.width() - 6, width);
    }
    const Rgba& color = dragged ? roles.scrollThumbDrag : lit ? roles.scrollThumbHover : roles.scrollThumb;
    fillRounded(*painter, thumb, width / 2, toQColor(color));
}

void paintSlider(const QStyleOptionSlider& slider, QPainter* painter, const QRect& handle,
                 const Roles& roles) {
    painter->save();
    if (!slider.state.testFlag(QStyle::State_Enabled)) painter->setOpacity(0.4);
    // The handle is 24 long, so that the ring around its thumb of 16 has room at both ends.
    const bool flat = slider.orientation == Qt::Horizontal;
    const QRectF area =
        QRectF(slider.rect).adjusted(flat ? 4 : 0, flat ? 0 : 4, flat ? -4 : 0, flat ? 0 : -4);
    const QPointF middle = QRectF(handle).center();
    const QRectF track = flat ? QRectF(area.left(), area.center().y() - 2, area.width(), 4)
                              : QRectF(area.center().x() - 2, area.top(), 4, area.height());
    QRectF filled = track;
    if (flat) {
        slider.upsideDown ? filled.setLeft(middle.x()) : filled.setRight(middle.x());
    } else {
        slider.upsideDown ? filled.setTop(middle.y()) : filled.setBottom(middle.y());
    }
    fillRounded(*painter, track, 2, toQColor(roles.segmentOn));
    fillRounded(*painter, filled, 2, toQColor(roles.accent));

    const QRectF thumb(middle - QPointF(8, 8), QSizeF(16, 16));
    const bool focused = slider.state.testFlag(QStyle::State_HasFocus) &&
                         slider.state.testFlag(QStyle::State_KeyboardFocusChange);
    if (focused) {
        // Two of ring and two of gap stand around the thumb; the gap hides the track below it.
        fillRounded(*painter, thumb.adjusted(-2, -2, 2, 2), 10, slider.palette.color(QPalette::Window));
        strokeRing(*painter, thumb.adjusted(-4, -4, 4, 4), 12, toQColor(roles.accent));
    }
    const bool lit =
        slider.state.testFlag(QStyle::State_MouseOver) || slider.state.testFlag(QStyle::State_Sunken);
    fillRounded(*painter, thumb, 8, lit ? QColor(Qt::white) : toQColor(roles.text));
    painter->restore();
}

void paintListItem(const QStyleOption* option, QPainter* painter, const Roles& roles) {
    if (has(option, QStyle::State_Selected)) {
        fillRounded(*painter, option->rect, fieldRadius, toQColor(roles.selected));
    } else if (has(option, QStyle::State_MouseOver) && has(option, QStyle::State_Enabled)) {
        fillRounded(*painter, option->rect, fieldRadius, toQColor(roles.hover));
    }
}

void paintProgress(const QStyleOptionProgressBar& bar, QPainter* painter, const Roles& roles) {
    const QRectF area = bar.rect;
    const QRectF track(area.left(), area.center().y() - 2, area.width(), 4);
    fillRounded(*painter, track, 2, toQColor(roles.segmentOn));
    const int range = bar.maximum - bar.minimum;
    if (range <= 0) return;
    const double part = std::clamp(double(bar.progress - bar.minimum) / range, 0.0, 1.0);
    fillRounded(*painter, QRectF(track.topLeft(), QSizeF(track.width() * part, 4)), 2,
                toQColor(roles.accent));
}

}  // namespace

void OrvoStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                              const QWidget* widget) const {
    switch (element) {
        case PE_FrameFocusRect:
            return;
        case PE_PanelLineEdit: {
            const auto* frame = qstyleoption_cast<const QStyleOptionFrame*>(option);
            if (frame && frame->lineWidth > 0) paintField(option, painter, widget, m_roles);
            return;
        }
        case PE_FrameLineEdit:
            return;  // the panel draws it
        case PE_Frame:
            paintField(option, painter, widget, m_roles);
            return;
        case PE_IndicatorCheckBox:
        case PE_IndicatorItemViewItemCheck:
            paintCheckBox(option, painter, m_roles);
            return;
        case PE_PanelButtonCommand:
            paintCommandButton(option, painter, m_roles);
            return;
        case PE_FrameDefaultButton:
            return;
        case PE_PanelMenu:
            paintMenuPanel(option, painter, m_roles);
            return;
        case PE_FrameMenu:
        case PE_PanelMenuBar:
            return;
        case PE_PanelTipLabel:
            fillRounded(*painter, option->rect, 6, toQColor(m_roles.surface));
            strokeRounded(*painter, option->rect, 6, toQColor(m_roles.borderStrong));
            return;
        case PE_PanelItemViewItem:
            paintListItem(option, painter, m_roles);
            return;
        case PE_PanelItemViewRow:
            return;
        case PE_IndicatorArrowDown:
            paintSymbol(*painter, option->rect, QStringLiteral("chevron.down"), toQColor(m_roles.muted), 16);
            return;
        case PE_IndicatorArrowRight:
            paintSymbol(*painter, option->rect, QStringLiteral("chevron.right"), toQColor(m_roles.muted), 16);
            return;
        default:
            QProxyStyle::drawPrimitive(element, option, painter, widget);
    }
}

void OrvoStyle::drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                            const QWidget* widget) const {
    switch (element) {
        case CE_MenuItem:
            if (const auto* item = qstyleoption_cast<const QStyleOptionMenuItem*>(option)) {
                paintMenuItem(*item, painter, m_roles);
            }
            return;
        case CE_MenuEmptyArea:
            return;
        case CE_MenuBarItem:
            if (const auto* item = qstyleoption_cast<const QStyleOptionMenuItem*>(option)) {
                paintMenuBarItem(*item, painter, m_roles);
            }
            return;
        case CE_MenuBarEmptyArea:
            painter->fillRect(option->rect, toQColor(m_roles.sidebar));
            return;
        case CE_Splitter:
            painter->fillRect(option->rect, toQColor(m_roles.border));
            return;
        case CE_ProgressBar:
            if (const auto* bar = qstyleoption_cast<const QStyleOptionProgressBar*>(option)) {
                paintProgress(*bar, painter, m_roles);
            }
            return;
        case CE_PushButtonLabel:
            if (const auto* button = qstyleoption_cast<const QStyleOptionButton*>(option);
                button && button->features.testFlag(QStyleOptionButton::DefaultButton)) {
                QStyleOptionButton primary = *button;
                primary.palette.setColor(QPalette::ButtonText, toQColor(m_roles.onAccent));
                QProxyStyle::drawControl(element, &primary, painter, widget);
                return;
            }
            break;
        case CE_ComboBoxLabel:
            if (const auto* combo = qstyleoption_cast<const QStyleOptionComboBox*>(option)) {
                const QRect text = subControlRect(CC_ComboBox, combo, SC_ComboBoxEditField, widget);
                painter->save();
                if (!has(option, State_Enabled)) painter->setOpacity(0.4);
                painter->setPen(toQColor(m_roles.text));
                painter->drawText(
                    text, Qt::AlignVCenter | Qt::AlignLeft | Qt::TextSingleLine,
                    option->fontMetrics.elidedText(combo->currentText, Qt::ElideRight, text.width()));
                painter->restore();
            }
            return;
        default:
            break;
    }
    QProxyStyle::drawControl(element, option, painter, widget);
}

void OrvoStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                                   QPainter* painter, const QWidget* widget) const {
    const auto* slider = qstyleoption_cast<const QStyleOptionSlider*>(option);
    if (control == CC_ScrollBar && slider) {
        paintScrollBar(*slider, painter, subControlRect(control, option, SC_ScrollBarSlider, widget),
                       m_roles);
    } else if (control == CC_Slider && slider) {
        paintSlider(*slider, painter, subControlRect(control, option, SC_SliderHandle, widget), m_roles);
    } else if (control == CC_ComboBox) {
        paintField(option, painter, widget, m_roles);
        const QRectF arrow = subControlRect(control, option, SC_ComboBoxArrow, widget);
        painter->save();
        if (!has(option, State_Enabled)) painter->setOpacity(0.4);
        paintSymbol(*painter, arrow, QStringLiteral("chevron.down"), toQColor(m_roles.muted), 16);
        painter->restore();
    } else {
        QProxyStyle::drawComplexControl(control, option, painter, widget);
    }
}

QRect OrvoStyle::subElementRect(SubElement element, const QStyleOption* option, const QWidget* widget) const {
    // The field inside a spin box is as wide as its number needs.
    const bool isInSpinBox = widget && qobject_cast<const QAbstractSpinBox*>(widget->parentWidget());
    if (element == SE_LineEditContents && !isInSpinBox) {
        // QLineEdit adds 2 on both sides by itself; with them the text stands 10 from the edge.
        return option->rect.adjusted(8, 1, -8, -1);
    }
    return QProxyStyle::subElementRect(element, option, widget);
}

QRect OrvoStyle::subControlRect(ComplexControl control, const QStyleOptionComplex* option, SubControl part,
                                const QWidget* widget) const {
    if (control == CC_ComboBox) {
        const QRect rect = option->rect;
        switch (part) {
            case SC_ComboBoxEditField:
                return rect.adjusted(10, 0, -comboArrowWidth, 0);
            case SC_ComboBoxArrow:
                return {rect.right() + 1 - comboArrowWidth, rect.top(), comboArrowWidth, rect.height()};
            case SC_ComboBoxListBoxPopup:
                return rect.translated(0, 4);
            default:
                return rect;
        }
    }
    if (control == CC_ScrollBar) {
        // No arrows: the groove is the whole bar.
        const auto* bar = qstyleoption_cast<const QStyleOptionSlider*>(option);
        if (!bar) return {};
        const bool vertical = bar->orientation == Qt::Vertical;
        const int length = vertical ? bar->rect.height() : bar->rect.width();
        const auto range = static_cast<qint64>(bar->maximum) - bar->minimum;
        int thumb = length;
        if (range > 0) {
            thumb = static_cast<int>(length * static_cast<qint64>(bar->pageStep) / (range + bar->pageStep));
            thumb = std::min(length, std::max(thumb, pixelMetric(PM_ScrollBarSliderMin, bar, widget)));
        }
        const int start = sliderPositionFromValue(bar->minimum, bar->maximum, bar->sliderPosition,
                                                  length - thumb, bar->upsideDown);
        const auto piece = [&](int from, int size) {
            return vertical ? QRect(bar->rect.left(), bar->rect.top() + from, bar->rect.width(), size)
                            : QRect(bar->rect.left() + from, bar->rect.top(), size, bar->rect.height());
        };
        switch (part) {
            case SC_ScrollBarSlider:
                return piece(start, thumb);
            case SC_ScrollBarSubPage:
                return piece(0, start);
            case SC_ScrollBarAddPage:
                return piece(start + thumb, length - start - thumb);
            case SC_ScrollBarGroove:
                return bar->rect;
            default:
                return {};
        }
    }
    return QProxyStyle::subControlRect(control, option, part, widget);
}

QSize OrvoStyle::sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& contents,
                                  const QWidget* widget) const {
    switch (type) {
        case CT_LineEdit:
            return {contents.width() + 20, 32};
        case CT_ComboBox:
            return {contents.width() + 10 + comboArrowWidth, 32};
        case CT_PushButton:
            return {std::max(contents.width() + 24, 64), 32};
        case CT_MenuBarItem:
            return {contents.width() + 20, 28};
        case CT_MenuBar:
            return {contents.width(), 28};
        case CT_MenuItem: {
            const auto* item = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
            if (!item) break;
            if (item->menuItemType == QStyleOptionMenuItem::Separator) return {contents.width(), 9};
            int width = contents.width() + 20;
            if (item->text.contains(u'\t')) width += 24;
            if (item->menuHasCheckableItems) width += 20;
            if (!item->icon.isNull()) width += 24;
            if (item->menuItemType == QStyleOptionMenuItem::SubMenu) width += 24;
            return {width, 28};
        }
        case CT_ItemViewItem: {
            const QSize natural = QProxyStyle::sizeFromContents(type, option, contents, widget);
            return {natural.width(), std::max(natural.height(), 28)};
        }
        default:
            break;
    }
    return QProxyStyle::sizeFromContents(type, option, contents, widget);
}

}  // namespace orvo
