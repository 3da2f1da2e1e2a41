#pragma once

#include "appearance/Theme.h"
#include "appearance/controls/OrvoStyle.h"

#include <gtest/gtest.h>

#include <QAccessible>
#include <QApplication>
#include <QFocusEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QWidget>

namespace orvo::test {

/// A themed application and a window to put controls into.
class ControlFixture : public testing::Test {
protected:
    ControlFixture() {
        style.setMotion(Motion::Reduced);
        window.resize(800, 600);
    }

    void showWindow() {
        window.show();
        QApplication::setActiveWindow(&window);
        QApplication::processEvents();
    }

    static void press(QWidget* target, int key, Qt::KeyboardModifiers modifiers = {}) {
        QKeyEvent down(QEvent::KeyPress, key, modifiers);
        QApplication::sendEvent(target, &down);
        QKeyEvent up(QEvent::KeyRelease, key, modifiers);
        QApplication::sendEvent(target, &up);
    }

    static void click(QWidget* target, QPoint at = {4, 4}) {
        for (const auto type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
            const bool down = type == QEvent::MouseButtonPress;
            QMouseEvent event(type, at, target->mapToGlobal(at), Qt::LeftButton,
                              down ? Qt::LeftButton : Qt::NoButton, Qt::NoModifier);
            if (down && (target->focusPolicy() & Qt::ClickFocus)) target->setFocus(Qt::MouseFocusReason);
            QApplication::sendEvent(target, &event);
        }
    }

    static QAccessibleInterface* interfaceOf(QWidget* widget) {
        return QAccessible::queryAccessibleInterface(widget);
    }
    static QString nameOf(QWidget* widget) { return interfaceOf(widget)->text(QAccessible::Name); }

    Theme theme{nullptr};
    OrvoStyle& style = applyTheme(theme);
    QWidget window;
};

}  // namespace orvo::test
