#include "app/EndRequests.h"

#include "app/OrvoApplication.h"

#include <QEvent>
#include <QGuiApplication>
#include <QSessionManager>

namespace orvo {

EndRequests::EndRequests(QGuiApplication& application, OrvoApplication& orvo) : m_orvo(orvo) {
    connect(&m_termination, &TerminationSignals::received, &orvo, &OrvoApplication::endNow);
    // The session may yet go on, when somebody else cancels the log-out.
    connect(
        &application, &QGuiApplication::commitDataRequest, &orvo, [&orvo] { orvo.keepUnsavedText(); },
        Qt::DirectConnection);
    application.installEventFilter(this);
}

bool EndRequests::eventFilter(QObject* receiver, QEvent* event) {
    if (event->type() != QEvent::Quit || receiver != QCoreApplication::instance()) return false;
    // Qt would first ask the window to close, which it answers by asking the person.
    m_orvo.endNow();
    return true;
}

}  // namespace orvo
