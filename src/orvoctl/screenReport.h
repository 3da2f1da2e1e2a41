#pragma once

#include <QJsonObject>
#include <QStringList>

namespace orvo {
class TerminalScreen;
}

namespace orvo::ctl {

/// Everything that can be seen of a terminal screen, and the replies it has given.
QJsonObject screenReport(const TerminalScreen& screen, const QStringList& responses);

}  // namespace orvo::ctl
