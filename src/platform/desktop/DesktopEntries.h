#pragma once

#include "platform/DesktopControl.h"

#include <QByteArray>
#include <QCoreApplication>

#include <optional>

namespace orvo {

/// The applications that are installed, by their desktop entries, and their start. Main thread only.
class DesktopEntries {
    Q_DECLARE_TR_FUNCTIONS(DesktopEntries)

public:
    /// By desktop-entry id or file; by the identifiers that well-known applications have on other systems,
    /// which stand for this desktop's own one of the kind; by the last piece of the identifier as id or name.
    static std::optional<InstalledApplication> find(const QString& identifier);
    /// The first of these ids that is installed.
    static std::optional<InstalledApplication> first(std::initializer_list<const char*> ids);
    /// The class of its windows that the entry names; empty when it names none.
    static QByteArray windowClass(const InstalledApplication& application);

    /// Starts or activates it, with an address to open when one is given. Gives the process that was started,
    /// which the caller reaps, or 0 when the application took the request over by itself.
    static Result<qint64> launch(const InstalledApplication& application, const QUrl& address = {});
};

}  // namespace orvo
