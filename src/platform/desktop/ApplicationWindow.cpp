#include "platform/desktop/ApplicationWindow.h"

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

std::optional<ApplicationWindow> describe(const XConnection& connection, xcb_window_t id) {
    if (id == XCB_WINDOW_NONE) return std::nullopt;
    ApplicationWindow window;
    window.id = id;
    window.processID = number(connection, id, "_NET_WM_PID").value_or(0);
    const auto names = connection.property(id, "WM_CLASS");
    if (!names && window.processID == 0) return std::nullopt;
    const QList<QByteArray> parts = names.value_or(QByteArray()).split('\0');
    window.instanceName = parts.value(0);
    window.className = parts.value(1);
    return window;
}

// A busy window manager tells of a window that has gone, whose number may be another one's by then, while
// keys go to whatever is under the pointer. Programs may take their keys in a window beside the visible one.
bool getsKeys(const XConnection& connection, xcb_window_t window) {
    const XReply<xcb_get_input_focus_reply_t> reply(
        xcb_get_input_focus_reply(connection.get(), xcb_get_input_focus(connection.get()), nullptr));
    const uint32_t withinProgram = xcb_get_setup(connection.get())->resource_id_mask;
    return reply && reply->focus > XCB_INPUT_FOCUS_POINTER_ROOT &&
           (reply->focus & ~withinProgram) == (window & ~withinProgram);
}

}  // namespace

std::optional<ApplicationWindow> ApplicationWindow::inFront(const XConnection& connection) {
    const auto window = number(connection, connection.root(), "_NET_ACTIVE_WINDOW");
    return window && getsKeys(connection, *window) ? describe(connection, *window) : std::nullopt;
}

QList<ApplicationWindow> ApplicationWindow::all(const XConnection& connection) {
    QList<ApplicationWindow> windows;
    const QByteArray list =
        connection.property(connection.root(), "_NET_CLIENT_LIST_STACKING").value_or(QByteArray());
    for (qsizetype end = list.size(); end >= qsizetype{sizeof(xcb_window_t)}; end -= sizeof(xcb_window_t)) {
        xcb_window_t id = XCB_WINDOW_NONE;
        std::memcpy(&id, list.constData() + end - sizeof id, sizeof id);
        if (const auto window = describe(connection, id)) windows.append(*window);
    }
    return windows;
}

void ApplicationWindow::activate(const XConnection& connection) const {
    // "A pager", as the conventions of window managers call who acts at the person's own request; a plain
    // application would have to show a recent event of its own.
    constexpr uint32_t pager = 2;
    xcb_client_message_event_t event{};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = id;
    event.type = connection.atom("_NET_ACTIVE_WINDOW");
    event.data.data32[0] = pager;
    xcb_send_event(connection.get(), 0, connection.root(),
                   XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                   reinterpret_cast<const char*>(&event));
    xcb_flush(connection.get());
}

bool ApplicationWindow::belongsTo(const RunningApplication& application,
                                  const QByteArray& windowClass) const {
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
