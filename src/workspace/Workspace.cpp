#include "workspace/Workspace.h"

#include "platform/Preferences.h"
#include "platform/observe.h"
#include "workspace/ReportingPreferences.h"

namespace orvo {
namespace {

using namespace std::chrono_literals;

constexpr auto noticeTime = 4s;
constexpr auto connectionsCheckDelay = 500ms;

}  // namespace

Workspace::Workspace(WorkspaceServices services, QObject* parent)
    : QObject(parent),
      m_services(std::move(services)),
      m_preferences(m_services.preferences
                        ? std::make_unique<ReportingPreferences>(
                              *m_services.preferences, [this](const Error& error) { reportUnsaved(error); })
                        : nullptr),
      m_activity(m_services.sleepInhibitor),
      m_assistants(m_preferences.get(), m_services.tools),
      m_history(m_preferences.get()),
      m_files(m_services.dialogs, [this](const QString& message) { notify(message); }) {
    if (m_services.historyInbox) {
        m_history.attachInbox(*m_services.historyInbox, HistoryStore::InboxRole::Merge);
    }
    if (m_preferences) restore();
    m_assistants.refreshProviders();
    m_files.refreshFiles();
    // The assistants' own programs are heavy; they must not run against the window's first picture.
    if (m_preferences) {
        m_services.clock.after(connectionsCheckDelay, this, [this] { m_assistants.checkConnections(); });
    }
}

Workspace::~Workspace() = default;

Assistants& Workspace::assistants() {
    return m_assistants;
}
HistoryStore& Workspace::history() {
    return m_history;
}
ProjectFiles& Workspace::files() {
    return m_files;
}
const Assistants& Workspace::assistants() const {
    return m_assistants;
}
const HistoryStore& Workspace::history() const {
    return m_history;
}
const ProjectFiles& Workspace::files() const {
    return m_files;
}

Destination Workspace::destination() const {
    return m_destination;
}
const std::optional<FilePath>& Workspace::folder() const {
    return m_folder;
}
const QList<FilePath>& Workspace::recentFolders() const {
    return m_recentFolders;
}
const QSet<QString>& Workspace::selectedProviders() const {
    return m_selectedProviders;
}
const QString& Workspace::prompt() const {
    return m_prompt;
}
bool Workspace::separateCopies() const {
    return m_separateCopies;
}
bool Workspace::preparingRun() const {
    return m_preparingRun;
}
bool Workspace::keepAwake() const {
    return m_keepAwake;
}
bool Workspace::focusMode() const {
    return m_focusMode;
}
const std::optional<QString>& Workspace::toast() const {
    return m_toast;
}
bool Workspace::presentConnector() const {
    return m_presentConnector;
}
const std::optional<Provider>& Workspace::editingProvider() const {
    return m_editingProvider;
}
const std::optional<QUuid>& Workspace::activeSessionID() const {
    return m_activeSessionID;
}

const std::vector<std::shared_ptr<TerminalSession>>& Workspace::sessions() const {
    return m_sessions;
}

void Workspace::setDestination(Destination destination) {
    if (assign(m_destination, destination)) Q_EMIT destinationChanged();
}

void Workspace::setSelectedProviders(const QSet<QString>& ids) {
    if (assign(m_selectedProviders, ids)) Q_EMIT selectedProvidersChanged();
}

void Workspace::setPrompt(const QString& prompt) {
    if (assign(m_prompt, prompt)) Q_EMIT promptChanged();
}

void Workspace::setSeparateCopies(bool separate) {
    if (assign(m_separateCopies, separate)) Q_EMIT separateCopiesChanged();
}

void Workspace::setKeepAwake(bool keepAwake) {
    const bool changed = assign(m_keepAwake, keepAwake);
    if (m_preferences) (void)m_preferences->setValue(preference::keepAwake, keepAwake);
    updateAwakeState();
    if (changed) Q_EMIT keepAwakeChanged();
}

void Workspace::setFocusMode(bool focus) {
    if (assign(m_focusMode, focus)) Q_EMIT focusModeChanged();
}

void Workspace::editConnector(const std::optional<Provider>& provider) {
    const bool other = assign(m_editingProvider, provider);
    const bool opened = assign(m_presentConnector, true);
    if (other || opened) Q_EMIT presentConnectorChanged();
}

void Workspace::dismissConnector() {
    if (assign(m_presentConnector, false)) Q_EMIT presentConnectorChanged();
}

void Workspace::saveProvider(const Provider& provider) {
    m_assistants.saveProvider(provider);
    notify(tr("%1 configuration saved.").arg(provider.shownName()));
}

void Workspace::notify(const QString& message) {
    const quint64 token = ++m_toastToken;
    if (assign(m_toast, message)) Q_EMIT toastChanged();
    m_services.clock.after(noticeTime, this, [this, token] {
        if (token == m_toastToken && assign(m_toast, std::nullopt)) Q_EMIT toastChanged();
    });
}

void Workspace::reportUnsaved(const Error& error) {
    // After the operation that was to be stored, whose own notice this must outlast.
    m_services.clock.after(0ms, this, [this, error] {
        notify(tr("Your settings could not be saved and hold until you quit: %1").arg(error.message));
    });
}

void Workspace::refreshWorkspace() {
    m_assistants.refreshProviders();
    m_files.refreshFiles();
    notify(tr("Workspace refreshed."));
}

void Workspace::clearHistory() {
    m_history.clear();
    notify(tr("Orvo history cleared."));
}

bool Workspace::confirmQuit() {
    // A workspace that keeps nothing serves a run without a person to ask.
    if (!m_preferences) return true;
    if (!m_files.confirmDiscard()) return false;
    if (m_preparingRun) cancelPreparation();
    if (!anySessionRunning()) return true;
    return m_services.dialogs.alert(
               {.message = tr("Quit and stop running sessions?"),
                .informativeText = tr("Running assistants and terminal processes will be stopped."),
                .buttons = {tr("Quit & stop"), tr("Cancel")},
                .defaultButton = Alert::Default::FirstButton}) == 0;
}

}  // namespace orvo
