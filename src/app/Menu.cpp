#include "app/Menu.h"

#include "app/OrvoApplication.h"

#include <QApplication>
#include <QMenuBar>
#include <QMetaMethod>
#include <QSystemTrayIcon>

namespace orvo {
namespace {

QString tr(const char* text) {
    return QCoreApplication::translate("Menu", text);
}

/// Calls an editing slot such as "paste()" of the focused control, if it has one.
void editFocused(const char* slot) {
    QWidget* const focused = QApplication::focusWidget();
    if (!focused) return;
    const int index = focused->metaObject()->indexOfSlot(slot);
    if (index >= 0) focused->metaObject()->method(index).invoke(focused);
}

QMenu& addMenu(QMenuBar& bar, const char* title) {
    return *bar.addMenu(tr(title));
}

template <class Work>
QAction& addItem(QMenu& menu, const char* text, const QKeySequence& keys, OrvoApplication& context,
                 Work work) {
    QAction* const action = menu.addAction(tr(text));
    action->setShortcut(keys);
    // A role would let a platform move the item or rename it; ours stay where they are.
    action->setMenuRole(QAction::NoRole);
    QObject::connect(action, &QAction::triggered, &context, [work] { work(); });
    return *action;
}

void addEditItem(QMenu& menu, const char* text, const QKeySequence& keys, OrvoApplication& context,
                 const char* slot) {
    addItem(menu, text, keys, context, [slot] { editFocused(slot); });
}

}  // namespace

void createMenu(QMenuBar& bar, OrvoApplication& application) {
    OrvoApplication* const app = &application;

    QMenu& main = addMenu(bar, QT_TR_NOOP("Orvo AI"));
    addItem(main, QT_TR_NOOP("About Orvo AI"), {}, application, [app] { app->about(); });
    main.addSeparator();
    addItem(main, QT_TR_NOOP("Settings…"), Qt::CTRL | Qt::Key_Comma, application,
            [app] { app->showSettings(); });
    QAction& stopAudio =
        addItem(main, QT_TR_NOOP("Stop microphone && audio"), {}, application, [app] { app->stopAudio(); });
    // The status item has it, where the desktop shows status items. Asked late: the desktop takes its time to
    // say.
    QObject::connect(&main, &QMenu::aboutToShow, &stopAudio,
                     [&stopAudio] { stopAudio.setVisible(!QSystemTrayIcon::isSystemTrayAvailable()); });
    main.addSeparator();
    addItem(main, QT_TR_NOOP("Hide Orvo AI"), Qt::CTRL | Qt::Key_H, application, [app] { app->hide(); });
    main.addSeparator();
    addItem(main, QT_TR_NOOP("Quit Orvo AI"), Qt::CTRL | Qt::Key_Q, application, [app] { app->quit(); });

    QMenu& file = addMenu(bar, QT_TR_NOOP("File"));
    addItem(file, QT_TR_NOOP("Open Project…"), Qt::CTRL | Qt::Key_O, application,
            [app] { app->openProject(); });
    addItem(file, QT_TR_NOOP("New Terminal"), Qt::CTRL | Qt::Key_N, application,
            [app] { app->newTerminal(); });
    addItem(file, QT_TR_NOOP("Save File"), Qt::CTRL | Qt::Key_S, application, [app] { app->saveFile(); });
    addItem(file, QT_TR_NOOP("Export Interface Preview…"), {}, application, [app] { app->exportPreview(); });

    QMenu& edit = addMenu(bar, QT_TR_NOOP("Edit"));
    addEditItem(edit, QT_TR_NOOP("Undo"), Qt::CTRL | Qt::Key_Z, application, "undo()");
    addEditItem(edit, QT_TR_NOOP("Redo"), Qt::CTRL | Qt::SHIFT | Qt::Key_Z, application, "redo()");
    edit.addSeparator();
    addEditItem(edit, QT_TR_NOOP("Cut"), Qt::CTRL | Qt::Key_X, application, "cut()");
    addEditItem(edit, QT_TR_NOOP("Copy"), Qt::CTRL | Qt::Key_C, application, "copy()");
    addEditItem(edit, QT_TR_NOOP("Paste"), Qt::CTRL | Qt::Key_V, application, "paste()");
    addEditItem(edit, QT_TR_NOOP("Select All"), Qt::CTRL | Qt::Key_A, application, "selectAll()");

    QMenu& window = addMenu(bar, QT_TR_NOOP("Window"));
    addItem(window, QT_TR_NOOP("Minimize"), Qt::CTRL | Qt::Key_M, application, [app] { app->minimize(); });
    addItem(window, QT_TR_NOOP("Zoom"), {}, application, [app] { app->zoom(); });
}

}  // namespace orvo
