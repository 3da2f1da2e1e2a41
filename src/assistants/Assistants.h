#pragma once

#include "assistants/Provider.h"
#include "platform/ToolEnvironment.h"

#include <QMap>
#include <QObject>

namespace orvo {

class Preferences;

/// The connectors a person has, which of their programs are installed, and whether they are signed in.
/// Main thread only; sign-in checks run helpers on a background thread.
class Assistants : public QObject {
    Q_OBJECT

public:
    /// `preferences` is null for a model that keeps nothing; otherwise it outlives this object.
    Assistants(Preferences* preferences, ToolEnvironment environment, QObject* parent = nullptr);

    const QList<Provider>& providers() const;
    /// Provider id → absolute path of its executable, for installed providers only.
    const QMap<QString, FilePath>& available() const;
    /// Provider id → sign-in label, for checked providers only.
    const QMap<QString, QString>& connectionStatus() const;
    bool checkingConnections() const;

    /// The provider with this id, else the built-in Terminal.
    Provider provider(const QString& id) const;
    bool isReady(const Provider& provider) const;
    /// Ready providers other than the shell.
    int readyCount() const;
    QString connectionLabel(const Provider& provider) const;
    std::optional<FilePath> executablePath(const QString& name) const;

    /// Replaces the record with this id in place, or adds it just before the last one; stores the list.
    void saveProvider(const Provider& provider);
    void refreshProviders();
    /// Asks the installed tools whether they are signed in; sends no request to any service.
    void checkConnections();

    /// Adds connectors for this process only; nothing is stored.
    void addTemporary(const Provider& provider);

Q_SIGNALS:
    void providersChanged();
    void availableChanged();
    void connectionStatusChanged();
    void checkingConnectionsChanged();
};

}  // namespace orvo
