#pragma once

#include <QString>
#include <QStringList>

namespace orvo::ctl {

/// One line of state an assistant on standard error: rewritten in place on a terminal, otherwise printed anew
/// with each change.
class LiveStates {
public:
    explicit LiveStates(const QStringList& names);

    /// `running` is how long in seconds the state has lasted; it is shown on a terminal only.
    void show(qsizetype line, const QString& state, int running = -1);

private:
    struct Line {
        QString name;
        QString state;
        int running = -1;
    };

    void draw();
    QString text(const Line& line) const;

    bool m_inPlace;
    bool m_drawn = false;
    qsizetype m_nameWidth = 0;
    QList<Line> m_lines;
};

}  // namespace orvo::ctl
