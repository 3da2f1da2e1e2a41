#include "platform/desktop/FrontWindow.h"

#include "platform/FilePath.h"
#include "platform/desktop/XConnection.h"
#include "platform/readFile.h"

#include <QList>

#include <cstring>

namespace orvo {
namespace {

std::optional<uint32_t> number(const XConnection& connection, xcb_window_t window, const char* name) {
    const auto bytes = connection.property(window, name);
    uint32_t value = 0;
    if (!bytes || bytes->size() < static_cast<qsizetype>(sizeof value)) return std::nullopt;
    std::memcpy(&value, bytes->constData(), sizeof value);
    return value;
}

// 0 when there is none, or no such process.
qint64 parentOf(qint64 processID) {
    constexpr qsizetype longest = 4096;
    const auto status = readFile(FilePath("/proc/" + QByteArray::number(processID) + "/stat"), longest);
    if (!status) return 0;
    // The name, in parentheses, may hold anything; the state and the parent follow it.
    const QList<QByteArray> fields = status->mid(status->lastIndexOf(')') + 2).split(' ');
    return fields.size() > 1 ? fields[1].toLongLong() : 0;
}

bool descendsFrom(qint64 processID, qint64 ancestor) {
    for (; processID > 1; processID = parentOf(processID)) {
        if (processID == ancestor) return true;
    }
    return false;
}

}  // namespace

std::optional<FrontWindow> FrontWindow::find(const XConnection& connection) {
    const auto window = number(connection, connection.root(), "_NET_ACTIVE_WINDOW");
    if (!window || *window == XCB_WINDOW_NONE) return std::nullopt;
    FrontWindow front;
    front.processID = number(connection, *window, "_NET_WM_PID").value_or(0);
    const auto names = connection.property(*window, "WM_CLASS");
    if (!names && front.processID == 0) return std::nullopt;
    const QList<QByteArray> parts = names.value_or(QByteArray()).split('\0');
    front.instanceName = parts.value(0);
    front.className = parts.value(1);
    return front;
}

bool FrontWindow::belongsTo(const RunningApplication& application, const QByteArray& windowClass) const {
    if (application.processID > 0 && descendsFrom(processID, application.processID)) return true;
    QByteArray entry = application.application.id.toUtf8();
    if (entry.endsWith(".desktop")) entry.chop(8);
    for (const QByteArray& name : {instanceName, className}) {
        if (name.isEmpty()) continue;
        const bool isNamed =
            !windowClass.isEmpty() ? name == windowClass : name.compare(entry, Qt::CaseInsensitive) == 0;
        if (isNamed) return true;
    }
    return false;
}

}  // namespace orvo
