#pragma once

#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

namespace orvo::ctl {

/// One line of state an assistant on standard error: rewritten in place on a terminal, otherwise printed anew
/// with each change of the state itself.
class LiveStates {
public:
    struct State {
        QString text;
        /// How long it has lasted, and what the assistant says meanwhile; on a terminal only.
        std::optional<int> seconds;
        QString output;

        bool operator==(const State&) const = default;
    };

    explicit LiveStates(const QStringList& names);

    /// Whether anybody sees the output that a state is given.
    bool showsOutput() const { return m_inPlace; }
    void show(qsizetype line, const State& state);

private:
    struct Line {
        QString name;
        State state;
    };

    void draw();
    QString text(const Line& line) const;

    bool m_inPlace;
    bool m_drawn = false;
    qsizetype m_nameWidth = 0;
    QList<Line> m_lines;
};

}  // namespace orvo::ctl
