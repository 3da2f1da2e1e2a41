#include "terminal/Attention.h"

#include <QCoreApplication>

namespace orvo {
namespace {

QString tr(const char* text) {
    return QCoreApplication::translate("Attention", text);
}

QString age(std::chrono::steady_clock::duration passed) {
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(passed).count();
    constexpr auto minute = 60;
    constexpr auto hour = 3'600;
    if (seconds < minute) return tr("%1 s ago").arg(seconds);
    if (seconds < hour) return tr("%1 min ago").arg(seconds / minute);
    return tr("%1 h ago").arg(seconds / hour);
}

}  // namespace

void Attention::asked(Cause cause, const QString& text, Time now) {
    if (!m_inFront) m_request = Request{cause, text, now};
}

void Attention::started(Time now) {
    m_request.reset();
    m_ended.reset();
    m_seen = true;
    m_lastOutput = now;
}

void Attention::ended(Time now) {
    m_ended = now;
    m_seen = m_inFront;
}

void Attention::setInFront(bool inFront) {
    m_inFront = inFront;
    if (!inFront) return;
    m_request.reset();
    m_seen = true;
}

Attention::Mark Attention::mark(Time now) const {
    if (m_ended) return m_seen ? Mark::Seen : Mark::DoneUnseen;
    if (m_request) return Mark::WantsYou;
    return m_lastOutput && now - *m_lastOutput < workingFor ? Mark::Working : Mark::Quiet;
}

QString Attention::request() const {
    if (!m_request) return {};
    if (m_request->cause == Cause::Bell || m_request->text.isEmpty()) return tr("bell");
    return tr("message “%1”").arg(m_request->text);
}

QString Attention::evidence(Time now) const {
    if (m_ended) return tr("ended %1").arg(age(now - *m_ended));
    if (m_request) return tr("%1 %2").arg(request(), age(now - m_request->at));
    return m_lastOutput ? tr("output %1").arg(age(now - *m_lastOutput)) : QString();
}

std::optional<Attention::Time> Attention::nextChange(Time now) const {
    if (!m_lastOutput || mark(now) != Mark::Working) return std::nullopt;
    return *m_lastOutput + workingFor;
}

}  // namespace orvo
