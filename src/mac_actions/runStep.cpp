// Carries out one step of a reviewed plan. The order of the checks is the safety of the feature: valid plan,
// installed application, the person's word, permission, and, before any input, the target in front.

#include "mac_actions/ComputerPlanner.h"
#include "mac_actions/planError.h"
#include "mac_actions/visibleText.h"
#include "platform/Clock.h"
#include "platform/DesktopControl.h"
#include "platform/Dialogs.h"

#include <QPointer>

namespace orvo {
namespace {

// What an application gets to put its window up before it must be the one in front.
constexpr std::chrono::milliseconds settleTime(600);

bool sendsInput(const ComputerStep& step) {
    return step.action == u"key" || step.action == u"type_text";
}

}  // namespace

void ComputerPlanner::runNext() {
    if (!m_plan || m_completed >= m_plan->steps.size() || m_executing) return;
    const ComputerStep step = m_plan->steps[m_completed];
    if (const auto valid = m_plan->validated(); !valid) {
        setMessage(valid.error().message);
        return;
    }
    const auto application = m_services.desktop.application(step.app);
    if (!application) {
        setMessage(tr("The app %1 is not installed. Adjust your request and make a new plan.").arg(step.app));
        return;
    }
    if (step.action == u"type_text") {
        if (const auto typeable = m_services.desktop.checkTypeable(step.value); !typeable) {
            setMessage(typeable.error().message);
            return;
        }
    }
    // The question runs an event loop: what was true before it is looked at again after it.
    const QPointer<ComputerPlanner> planner(this);
    const bool confirmed = confirm(step);
    if (!planner || !confirmed || m_executing || !m_plan) return;
    if (m_completed >= m_plan->steps.size() || m_plan->steps[m_completed] != step) return;
    if (sendsInput(step) && !m_services.desktop.isTrusted()) {
        setMessage(tr("Allow Orvo AI in macOS Accessibility settings, then try this step again."));
        return;
    }
    setExecuting(true);
    if (step.action == u"open_url") {
        m_services.desktop.openAddress(QUrl(step.value, QUrl::StrictMode), *application,
                                       [planner](const Result<void>& outcome) {
                                           if (planner) planner->finish(outcome);
                                       });
        return;
    }
    openTarget(step, *application);
}

bool ComputerPlanner::confirm(const ComputerStep& step) {
    const QString action = step.value.isEmpty() ? tr("Open this application.") : visibleText(step.value);
    Alert alert;
    alert.message = visibleText(step.title) + u'?';
    alert.informativeText =
        tr("App: %1\nAction: %2\n\n").arg(visibleText(step.app), step.action) + action +
        tr("\n\nTyping and keys go to this app’s focused control. Confirm the intended document or field "
           "before proceeding.");
    alert.buttons = {tr("Run this step"), tr("Cancel")};
    alert.defaultButton = Alert::Default::FirstButton;
    return m_services.dialogs.alert(alert) == 0;
}

void ComputerPlanner::openTarget(const ComputerStep& step, const InstalledApplication& application) {
    const QPointer<ComputerPlanner> planner(this);
    m_services.desktop.openApplication(
        application, [this, planner, step](Result<std::optional<RunningApplication>> opened) {
            if (!planner) return;
            m_services.clock.after(settleTime, this, [this, step, opened = std::move(opened)] {
                if (!opened)
                    finish(tl::unexpected(opened.error()));
                else if (!*opened || m_services.desktop.isTerminated(**opened))
                    finish(planError(tr("The app could not be opened.")));
                else
                    act(step, **opened);
            });
        });
}

void ComputerPlanner::act(const ComputerStep& step, const RunningApplication& application) {
    if (!sendsInput(step)) {
        finish({});
    } else if (!m_services.desktop.isFrontmost(application)) {
        finish(planError(tr("The target app is no longer active. Nothing was typed. Try this step again.")));
    } else {
        send(step, application);
    }
}

void ComputerPlanner::send(const ComputerStep& step, const RunningApplication& application) {
    if (!m_services.desktop.isTrusted()) {
        finish(planError(tr("Accessibility permission is needed.")));
        return;
    }
    const QPointer<ComputerPlanner> planner(this);
    const auto done = [planner](const Result<void>& outcome) {
        if (planner) planner->finish(outcome);
    };
    if (step.action == u"type_text") {
        m_services.desktop.typeLine(
            application, step.value,
            [planner](qsizetype sent) {
                if (planner) planner->setTyped(sent);
            },
            done);
    } else {
        const ComputerKey* const key = ComputerPlan::key(step.value);
        m_services.desktop.pressKey(application, key->code, key->modifiers, done);
    }
}

void ComputerPlanner::stopTyping() {
    if (m_executing) m_services.desktop.cancelTyping();
}

void ComputerPlanner::finish(const Result<void>& outcome) {
    setTyped(0);
    setExecuting(false);
    if (!outcome) {
        setMessage(outcome.error().message);
        return;
    }
    setCompleted(m_completed + 1);
    setMessage(tr("Step sent. Check the target app before continuing."));
}

}  // namespace orvo
