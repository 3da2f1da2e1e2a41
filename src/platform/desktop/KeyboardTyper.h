#pragma once

#include "platform/Result.h"

#include <QCoreApplication>

#include <functional>
#include <memory>
#include <stop_token>

namespace orvo {

class XConnection;

/// Sends keyboard input to the window that has the keyboard, exactly as if it had been typed. Blocks while it
/// does; a long line of rare characters takes many seconds, so it runs on a thread of its own.
class KeyboardTyper {
    Q_DECLARE_TR_FUNCTIONS(KeyboardTyper)

public:
    /// On a connection of its own.
    static Result<std::unique_ptr<KeyboardTyper>> open();
    ~KeyboardTyper();

    /// What must hold while typing goes on: asked before each few characters.
    using Guard = std::function<bool(const XConnection&)>;
    using Progress = std::function<void(qsizetype sent)>;

    /// Why this line cannot be typed; success when every character of it can.
    static Result<void> check(const QString& line);
    Result<void> type(const QString& line, const std::stop_token& stop, const Guard& guard,
                      const Progress& progress);
    /// One key by the virtual key code of the ANSI keyboard, with Control held for the Command flag.
    Result<void> press(quint16 code, quint64 modifiers, const Guard& guard);

private:
    explicit KeyboardTyper(std::unique_ptr<XConnection> connection);

    Result<void> waitForReleasedModifiers() const;
    void strike(quint8 keycode) const;
    void send(quint8 type, quint8 keycode) const;

    std::unique_ptr<XConnection> m_connection;
};

}  // namespace orvo
