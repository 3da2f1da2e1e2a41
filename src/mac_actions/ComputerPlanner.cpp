#include "mac_actions/ComputerPlanner.h"

#include "assistants/Provider.h"
#include "mac_actions/MacActionsHost.h"
#include "mac_actions/planError.h"
#include "mac_actions/readPlanFile.h"
#include "platform/AppFolders.h"
#include "platform/DesktopControl.h"
#include "platform/observe.h"
#include "platform/saveAtomically.h"
#include "terminal/TerminalSession.h"

#include <QPointer>
#include <QUuid>

namespace orvo {
namespace {

// The words the planner gets before the request. Never translated: they are a contract with the schema.
constexpr QLatin1String instructions(
    "Make a simple macOS action plan for the user's request below. Plan only; do not run tools, commands, or "
    "interact with the computer. No screenshot is provided. Supported actions: open_app (value empty), "
    "open_url (HTTP/HTTPS value), type_text (one line, <=2000 UTF16 units), key (return, tab, escape, space, "
    "command+a, command+c, command+v, command+s, command+n, command+f). Every action targets a real macOS "
    "app "
    "bundle identifier in app, e.g. com.apple.TextEdit. Use at most 12 steps with unique integer ids and "
    "plain-language titles. Show all text and destinations in the values. Do not invent app features. If "
    "reliable steps require seeing a screen, passwords, unsupported actions, or additional information, "
    "return "
    "an empty steps array and explain what is needed. Typing goes to the currently focused field in the "
    "named "
    "app. The user reviews and triggers every individual step. Do not assume a document or input is already "
    "focused; explain any manual positioning needed. Request: ");

}  // namespace

ComputerPlanner::ComputerPlanner(const ComputerPlannerServices& services, QObject* parent)
    : QObject(parent), m_services(services) {}

ComputerPlanner::~ComputerPlanner() = default;

bool ComputerPlanner::accessibility() const {
    if (!m_accessibility) m_accessibility = m_services.desktop.isTrusted();
    return *m_accessibility;
}

QString ComputerPlanner::accessibilityHint() const {
    return m_services.desktop.trustHint();
}

void ComputerPlanner::setTask(const QString& task) {
    if (assign(m_task, task)) Q_EMIT taskChanged();
}

void ComputerPlanner::prepare() {
    if (m_planning || m_executing || m_task.trimmed().isEmpty()) return;
    const auto codex = m_services.host.executable(QStringLiteral("codex"));
    if (!codex) {
        setMessage(tr("Install and sign in to Codex in Assistants to create a plan."));
        return;
    }
    const auto folder = makePlanFolder();
    if (!folder) {
        setMessage(folder.error().message);
        return;
    }
    setPlan(std::nullopt);
    setCompleted(0);
    setPlanning(true);
    setMessage(tr("Codex is drafting steps. No computer actions run during planning."));
    m_session = m_services.host.startSession(
        QStringLiteral("codex"), tr("Plan Mac actions"), planCommand(*codex, *folder), *folder,
        [planner = QPointer(this), file = folder->child("plan.json")](TerminalSession& session) {
            if (planner) planner->planningFinished(session, file);
        });
    Q_EMIT sessionChanged();
    m_services.host.showMacActions();
}

// A folder of its own for each run, so that an earlier answer is never taken for this one's.
Result<FilePath> ComputerPlanner::makePlanFolder() const {
    const QString id = QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper();
    FilePath folder = m_services.plans.child(id.toLatin1());
    return createPrivateFolder(folder)
        .and_then([&] { return saveAtomically(folder.child("schema.json"), ComputerPlan::schema()); })
        .map([&] { return folder; });
}

QString ComputerPlanner::planCommand(const FilePath& codex, const FilePath& folder) const {
    return shellQuote(codex.display()) +
           QStringLiteral(
               " exec --ignore-user-config --ephemeral --skip-git-repo-check --sandbox read-only "
               "--output-schema ") +
           shellQuote(folder.child("schema.json").display()) + QStringLiteral(" --output-last-message ") +
           shellQuote(folder.child("plan.json").display()) + u' ' + shellQuote(instructions + m_task);
}

void ComputerPlanner::planningFinished(const TerminalSession& session, const FilePath& file) {
    setPlanning(false);
    if (session.exitCode() != 0) {
        setMessage(tr("Planning stopped or failed. Open the planner output to see the provider’s message."));
        return;
    }
    auto plan = readPlanFile(file).and_then(&ComputerPlan::fromJson).and_then(&ComputerPlan::validated);
    if (!plan) {
        setMessage(tr("Could not use this plan: %1").arg(plan.error().message));
        return;
    }
    const bool hasSteps = !plan->steps.isEmpty();
    setPlan(std::move(*plan));
    setMessage(hasSteps ? tr("Review the steps below. Run next step performs one action only.")
                        : tr("This request needs more information or manual steps."));
}

void ComputerPlanner::stopPlanning() {
    const auto planner = session();
    if (m_planning && planner) planner->stop();
}

void ComputerPlanner::showPlannerOutput() {
    if (const auto planner = session()) m_services.host.focusSession(planner->id());
}

void ComputerPlanner::refreshPermissions() {
    if (assign(m_accessibility, m_services.desktop.isTrusted())) Q_EMIT accessibilityChanged();
}

void ComputerPlanner::openAccessibility() {
    if (const auto opened = m_services.desktop.openSettings(SettingsPage::Accessibility); !opened)
        m_services.host.notify(opened.error().message);
}

void ComputerPlanner::openScreenPermission() {
    if (const auto opened = m_services.desktop.openSettings(SettingsPage::ScreenRecording); !opened)
        m_services.host.notify(opened.error().message);
}

void ComputerPlanner::setPlan(std::optional<ComputerPlan> plan) {
    if (assign(m_plan, std::move(plan))) Q_EMIT planChanged();
}

void ComputerPlanner::setPlanning(bool planning) {
    if (assign(m_planning, planning)) Q_EMIT planningChanged();
}

void ComputerPlanner::setExecuting(bool executing) {
    if (assign(m_executing, executing)) Q_EMIT executingChanged();
}

void ComputerPlanner::setCompleted(int completed) {
    if (assign(m_completed, completed)) Q_EMIT completedChanged();
}

void ComputerPlanner::setMessage(const QString& message) {
    if (assign(m_message, message)) Q_EMIT messageChanged();
}

void ComputerPlanner::setTyped(qsizetype typed) {
    if (assign(m_typed, typed)) Q_EMIT typedChanged();
}

}  // namespace orvo
