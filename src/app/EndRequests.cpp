#include "app/EndRequests.h"

#include "app/OrvoApplication.h"

#include <QEvent>
#include <QGuiApplication>
#include <QSessionManager>

namespace orvo {
namespace {

/// The next log-in starts the application as a person does. Qt would add an option of its own, which ours
/// refuse.
void setRestart(QSessionManager& session) {
    session.setRestartCommand({QCoreApplication::applicationFilePath()});
}

}  // namespace

EndRequests::EndRequests(QGuiApplication& application, OrvoApplication& orvo) : m_orvo(orvo) {
    connect(&m_termination, &TerminationSignals::received, &orvo, &OrvoApplication::endNow);
    // The session may yet go on, when somebody else cancels the log-out.
    connect(
        &application, &QGuiApplication::commitDataRequest, &orvo,
        [&orvo](QSessionManager& session) {
            orvo.keepUnsavedText();
            setRestart(session);
        },
        Qt::DirectConnection);
    connect(&application, &QGuiApplication::saveStateRequest, &orvo, setRestart, Qt::DirectConnection);
    application.installEventFilter(this);
}

bool EndRequests::eventFilter(QObject* receiver, QEvent* event) {
    if (event->type() != QEvent::Quit || receiver != QCoreApplication::instance()) return false;
    // Qt would first ask the window to close, which it answers by asking the person.
    m_orvo.endNow();
    return true;
}

}  // namespace orvo
