#pragma once

#include "assistants/Provider.h"
#include "platform/ToolEnvironment.h"

#include <QMap>
#include <QObject>

#include <stop_token>

namespace orvo {

class Preferences;

/// The connectors a person has, which of their programs are installed, and whether they are signed in.
/// Main thread only; sign-in checks run helpers on a background thread.
class Assistants : public QObject {
    Q_OBJECT

public:
    /// `preferences` is null for a model that keeps nothing; otherwise it outlives this object.
    /// Reads the stored connectors; what is installed is known after `refreshProviders`.
    Assistants(Preferences* preferences, ToolEnvironment environment, QObject* parent = nullptr);
    /// A running sign-in check is told to end and its answer dropped.
    ~Assistants() override;

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
    /// Where the program with this name, absolute path, or path below "~" lies; nothing when there is none.
    std::optional<FilePath> executablePath(const QString& name) const;

    /// Replaces the record with this id in place, or adds it just before the last one; stores the list and
    /// looks again for what is installed.
    void saveProvider(const Provider& provider);
    void refreshProviders();
    /// Asks the installed tools whether they are signed in; sends no request to any service.
    void checkConnections();

    /// Adds a connector, or puts it in place of the one with its id, for this process only; nothing is
    /// stored.
    void addTemporary(const Provider& provider);

Q_SIGNALS:
    void providersChanged();
    void availableChanged();
    void connectionStatusChanged();
    void checkingConnectionsChanged();

private:
    void showProviders();
    void store();

    Preferences* m_preferences;
    ToolEnvironment m_environment;
    // What is stored, and what was added for this process only; `m_providers` is both.
    QList<Provider> m_stored;
    QList<Provider> m_temporary;
    QList<Provider> m_providers;
    QMap<QString, FilePath> m_available;
    QMap<QString, QString> m_connectionStatus;
    bool m_checkingConnections = false;
    std::stop_source m_stopChecks;
};

}  // namespace orvo
