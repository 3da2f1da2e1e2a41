#pragma once

#include <QString>

#include <chrono>
#include <optional>

namespace orvo {

/// What a session needs of the person, worked out of what happened and when. Every mark keeps its evidence,
/// so that a guess never looks like a fact. Times come from the caller.
class Attention {
public:
    using Time = std::chrono::steady_clock::time_point;

    enum class Mark {
        /// Output in the last one and a half seconds.
        Working,
        /// None for longer.
        Quiet,
        /// The program has asked since the session was last in front.
        WantsYou,
        /// Ended, and not looked at since.
        DoneUnseen,
        Seen
    };
    enum class Cause { Bell, Message };

    static constexpr std::chrono::milliseconds workingFor{1500};

    void outputArrived(Time now) { m_lastOutput = now; }
    void asked(Cause cause, const QString& text, Time now);
    void ended(Time now);
    /// A start, also after a failed one.
    void started(Time now);
    /// In front: the person looks at it, so that nothing has to be brought to notice.
    void setInFront(bool inFront);
    bool inFront() const { return m_inFront; }

    Mark mark(Time now) const;
    /// "bell", "message “Done”"; empty while the program asks for nothing.
    QString request() const;
    /// "bell 12 s ago", "message “Done” 2 min ago", "output 3 s ago", "ended 1 h ago"; empty when nothing has
    /// happened yet.
    QString evidence(Time now) const;
    /// When the mark changes without anything happening.
    std::optional<Time> nextChange(Time now) const;

private:
    struct Request {
        Cause cause;
        QString text;
        Time at;
    };

    bool m_inFront = false;
    bool m_seen = true;
    std::optional<Time> m_lastOutput;
    std::optional<Time> m_ended;
    std::optional<Request> m_request;
};

}  // namespace orvo
