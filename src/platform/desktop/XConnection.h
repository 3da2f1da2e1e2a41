#pragma once

#include <QByteArray>

#include <memory>
#include <optional>

#include <xcb/xcb.h>

namespace orvo {

/// A connection to the X server, closed with it. Used by one thread at a time.
class XConnection {
public:
    /// Null when no server answers.
    static std::unique_ptr<XConnection> open();
    ~XConnection();
    XConnection(const XConnection&) = delete;
    XConnection& operator=(const XConnection&) = delete;

    xcb_connection_t* get() const { return m_connection; }
    xcb_window_t root() const { return m_root; }
    /// Whether keyboard input can be synthesized (the XTEST extension).
    bool hasTestExtension() const;
    /// 0 when the server does not know the name.
    xcb_atom_t atom(const char* name) const;
    /// A window's property; nothing when either does not exist, which a window may cease to do at any time.
    std::optional<QByteArray> property(xcb_window_t window, const char* name) const;
    /// Returns once the server has handled everything sent so far.
    void synchronise() const;

private:
    XConnection(xcb_connection_t* connection, xcb_window_t root);

    xcb_connection_t* const m_connection;
    const xcb_window_t m_root;
};

/// A reply or event of the X server, which is released by free().
template <class Reply>
using XReply = std::unique_ptr<Reply, decltype([](Reply* reply) { std::free(reply); })>;

}  // namespace orvo
