#include "platform/desktop/XConnection.h"

#include <cstring>
#include <string_view>

namespace orvo {

std::unique_ptr<XConnection> XConnection::open() {
    int number = 0;
    xcb_connection_t* const connection = xcb_connect(nullptr, &number);
    if (xcb_connection_has_error(connection)) {
        xcb_disconnect(connection);
        return nullptr;
    }
    xcb_screen_iterator_t screen = xcb_setup_roots_iterator(xcb_get_setup(connection));
    for (; number > 0 && screen.rem > 1; --number)
        xcb_screen_next(&screen);
    return std::unique_ptr<XConnection>(new XConnection(connection, screen.data->root));
}

XConnection::XConnection(xcb_connection_t* connection, xcb_window_t root)
    : m_connection(connection), m_root(root) {}

XConnection::~XConnection() {
    xcb_disconnect(m_connection);
}

bool XConnection::hasTestExtension() const {
    constexpr std::string_view name = "XTEST";
    const XReply<xcb_query_extension_reply_t> reply(xcb_query_extension_reply(
        m_connection, xcb_query_extension(m_connection, name.size(), name.data()), nullptr));
    return reply && reply->present;
}

xcb_atom_t XConnection::atom(const char* name) const {
    const auto cookie = xcb_intern_atom(m_connection, 1, static_cast<uint16_t>(std::strlen(name)), name);
    const XReply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(m_connection, cookie, nullptr));
    return reply ? reply->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
}

std::optional<QByteArray> XConnection::property(xcb_window_t window, const char* name) const {
    // In 32-bit units; what we read is a number, a short text, or the list of all windows.
    constexpr uint32_t longest = 4096;
    const xcb_atom_t wanted = atom(name);
    if (wanted == XCB_ATOM_NONE) return std::nullopt;
    const auto cookie = xcb_get_property(m_connection, 0, window, wanted, XCB_ATOM_ANY, 0, longest);
    xcb_generic_error_t* failed = nullptr;
    const XReply<xcb_get_property_reply_t> reply(xcb_get_property_reply(m_connection, cookie, &failed));
    const XReply<xcb_generic_error_t> error(failed);
    if (!reply || reply->type == XCB_ATOM_NONE) return std::nullopt;
    return QByteArray(static_cast<const char*>(xcb_get_property_value(reply.get())),
                      xcb_get_property_value_length(reply.get()));
}

void XConnection::synchronise() const {
    const XReply<xcb_get_input_focus_reply_t> reply(
        xcb_get_input_focus_reply(m_connection, xcb_get_input_focus(m_connection), nullptr));
}

}  // namespace orvo
