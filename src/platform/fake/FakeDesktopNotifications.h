#pragma once

#include "platform/DesktopNotifications.h"

#include <QList>

#include <optional>

namespace orvo {

/// Remembers what was shown; a test presses the notice with `choose`.
class FakeDesktopNotifications final : public DesktopNotifications {
public:
    const std::optional<Notice>& shown() const { return m_shown; }
    /// All notices so far.
    const QList<Notice>& history() const { return m_history; }

    void show(const Notice& notice) override {
        m_shown = notice;
        m_history.append(notice);
    }
    void withdraw() override { m_shown.reset(); }
    void choose(const QByteArray& activationToken = {}) {
        m_shown.reset();
        if (onChosen) onChosen(activationToken);
    }

private:
    std::optional<Notice> m_shown;
    QList<Notice> m_history;
};

}  // namespace orvo
