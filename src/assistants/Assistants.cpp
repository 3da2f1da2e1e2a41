#include "assistants/Assistants.h"

#include "assistants/SignInStatus.h"
#include "platform/LocalTools.h"
#include "platform/Preferences.h"
#include "platform/observe.h"
#include "platform/runInBackground.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>

namespace orvo {
namespace {

using namespace std::chrono_literals;

constexpr auto statusTimeLimit = 12s;
const QString shellID = QStringLiteral("shell");

bool isExecutableFile(const QByteArray& path) {
    struct stat status{};
    return stat(path.constData(), &status) == 0 && S_ISREG(status.st_mode) &&
           access(path.constData(), X_OK) == 0;
}

/// The folders that are searched for a program, best first.
QList<QByteArray> searchFolders(const ToolEnvironment& environment) {
    const QByteArray& home = environment.home.bytes();
    QList<QByteArray> folders = {home + "/.local/bin", home + "/.kimi-code/bin", home + "/.cargo/bin"};
    for (const QByteArray& folder : (environment.systemFolders + ':' + environment.path).split(':')) {
        // A relative entry would find another program in every working folder.
        if (folder.startsWith('/')) folders.append(folder);
    }
    return folders;
}

/// The list with `provider` in the place of the record with its id, or new just before the last one, so that
/// the Terminal stays last.
QList<Provider> withProvider(QList<Provider> providers, const Provider& provider) {
    const auto same = std::ranges::find(providers, provider.id, &Provider::id);
    if (same != providers.end()) {
        *same = provider;
    } else {
        providers.insert(std::max<qsizetype>(providers.size() - 1, 0), provider);
    }
    return providers;
}

}  // namespace

Assistants::Assistants(Preferences* preferences, ToolEnvironment environment, QObject* parent)
    : QObject(parent),
      m_preferences(preferences),
      m_environment(std::move(environment)),
      m_stored(Provider::defaults()) {
    if (m_preferences) {
        if (const auto json = m_preferences->value(preference::providers)) {
            if (auto providers = decodeProviders(*json)) {
                m_stored = *std::move(providers);
            } else {
                m_preferences->markDamaged(preference::providers);
            }
        }
    }
    m_providers = m_stored;
}

Assistants::~Assistants() {
    m_stopChecks.request_stop();
}

const QList<Provider>& Assistants::providers() const {
    return m_providers;
}

const QMap<QString, FilePath>& Assistants::available() const {
    return m_available;
}

const QMap<QString, QString>& Assistants::connectionStatus() const {
    return m_connectionStatus;
}

bool Assistants::checkingConnections() const {
    return m_checkingConnections;
}

Provider Assistants::provider(const QString& id) const {
    const auto found = std::ranges::find(m_providers, id, &Provider::id);
    return found == m_providers.end() ? Provider::defaults().last() : *found;
}

bool Assistants::isReady(const Provider& provider) const {
    return m_available.contains(provider.id) && !provider.template_.trimmed().isEmpty();
}

int Assistants::readyCount() const {
    return static_cast<int>(std::ranges::count_if(m_providers, [this](const Provider& provider) {
        return provider.id != shellID && isReady(provider);
    }));
}

QString Assistants::connectionLabel(const Provider& provider) const {
    if (!isReady(provider)) {
        return provider.id == QLatin1String("zai") ? tr("Profile needed") : tr("Not installed");
    }
    const auto status = m_connectionStatus.constFind(provider.id);
    if (status != m_connectionStatus.constEnd()) return *status;
    return provider.id == shellID ? tr("Ready") : tr("Installed · login unchecked");
}

std::optional<FilePath> Assistants::executablePath(const QString& name) const {
    QByteArray bytes = name.toUtf8();
    if (bytes == "~" || bytes.startsWith("~/")) bytes.replace(0, 1, m_environment.home.bytes());
    // What still begins with "~" names another person's home, where none of our tools lie.
    if (bytes.startsWith('/') || bytes.startsWith('~')) {
        const bool found = bytes.startsWith('/') && isExecutableFile(bytes);
        return found ? std::optional(FilePath(bytes)) : std::nullopt;
    }
    for (const QByteArray& folder : searchFolders(m_environment)) {
        const QByteArray path = folder + '/' + bytes;
        if (isExecutableFile(path)) return FilePath(path);
    }
    return std::nullopt;
}

void Assistants::saveProvider(const Provider& provider) {
    m_stored = withProvider(std::move(m_stored), provider);
    m_temporary.removeIf([&](const Provider& temporary) { return temporary.id == provider.id; });
    store();
    showProviders();
}

void Assistants::addTemporary(const Provider& provider) {
    m_temporary.append(provider);
    showProviders();
}

void Assistants::store() {
    // A list that could not be kept still holds until the process ends; whoever gave the preferences reports
    // it.
    if (m_preferences) (void)m_preferences->setValue(preference::providers, encodeProviders(m_stored));
}

void Assistants::showProviders() {
    QList<Provider> providers = m_stored;
    for (const Provider& provider : m_temporary)
        providers = withProvider(std::move(providers), provider);
    if (assign(m_providers, std::move(providers))) Q_EMIT providersChanged();
    refreshProviders();
}

void Assistants::refreshProviders() {
    QMap<QString, FilePath> available;
    for (const Provider& provider : m_providers) {
        if (const auto path = executablePath(provider.executable)) available.insert(provider.id, *path);
    }
    if (assign(m_available, std::move(available))) Q_EMIT availableChanged();
}

void Assistants::checkConnections() {
    if (m_checkingConnections) return;
    m_checkingConnections = true;
    Q_EMIT checkingConnectionsChanged();
    const auto check = [available = m_available, home = m_environment.home, stop = m_stopChecks.get_token()] {
        const auto ask = [&](const QString& id, const QStringList& arguments) {
            return LocalTools::run({.executable = available.value(id),
                                    .arguments = arguments,
                                    .directory = std::nullopt,
                                    .home = home,
                                    .timeout = statusTimeLimit},
                                   stop);
        };
        const QString codex = QStringLiteral("codex");
        const QString claude = QStringLiteral("claude");
        QMap<QString, QString> labels;
        if (available.contains(codex)) {
            const ToolResult result = ask(codex, {QStringLiteral("login"), QStringLiteral("status")});
            labels.insert(codex, codexSignInLabel(result));
        }
        if (available.contains(claude)) {
            const ToolResult result = ask(claude, {QStringLiteral("auth"), QStringLiteral("status")});
            labels.insert(claude, claudeSignInLabel(result));
        }
        return labels;
    };
    runInBackground(this, check, [this](QMap<QString, QString> labels) {
        const bool changed = assign(m_connectionStatus, std::move(labels));
        m_checkingConnections = false;
        if (changed) Q_EMIT connectionStatusChanged();
        Q_EMIT checkingConnectionsChanged();
    });
}

}  // namespace orvo
