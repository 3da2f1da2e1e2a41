#include "app/QtArguments.h"

#include "platform/desktop/XConnection.h"

#include <QCoreApplication>

namespace orvo {
namespace {

QString tr(const char* text) {
    return QCoreApplication::translate("QtArguments", text);
}

}  // namespace

QtArguments::QtArguments(const char* program, const QByteArrayList& options) : m_texts{program} {
    m_texts += options;
    for (QByteArray& text : m_texts)
        m_pointers.push_back(text.data());
    m_pointers.push_back(nullptr);
    m_count = static_cast<int>(m_texts.size());
}

Result<QByteArrayList> displayOptions() {
    if (!qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) return QByteArrayList();
    // Wayland lets no program place, raise or type into windows, so the X server is preferred where there is
    // one. It is asked first: Qt would abort the process over one that does not answer.
    const QString display = qEnvironmentVariable("DISPLAY");
    if (!display.isEmpty() && XConnection::open()) return QByteArrayList{"-platform", "xcb"};
    if (!qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY")) return QByteArrayList{"-platform", "wayland"};
    return failure(QStringLiteral("Orvo"),
                   display.isEmpty() ? tr("There is no display to open a window on. Try orvoctl.")
                                     : tr("The display %1 does not answer. Try orvoctl.").arg(display));
}

}  // namespace orvo
