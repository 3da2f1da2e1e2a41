#pragma once

#include <QDBusConnection>

#include <optional>
#include <utility>

namespace orvo {

/// A connection to a message bus, made when it is used first: that waits for the bus.
class BusOnDemand {
public:
    using Open = QDBusConnection (*)();

    /// Implicit, because a connection will do.
    BusOnDemand(QDBusConnection bus) : m_bus(std::move(bus)) {}
    explicit BusOnDemand(Open open) : m_open(open) {}

    QDBusConnection& get() {
        if (!m_bus) m_bus = m_open();
        return *m_bus;
    }

private:
    Open m_open = nullptr;
    std::optional<QDBusConnection> m_bus;
};

}  // namespace orvo
