#include "workspace/snapshotOf.h"

#include "terminal/TerminalSession.h"

namespace orvo {

HistoryEntry snapshotOf(const TerminalSession& session) {
    return {.id = QUuid::createUuid(),
            .provider = session.providerID(),
            .title = session.title(),
            .directory = session.directory(),
            .started = session.started(),
            .exitCode = session.exitCode().value_or(-1),
            .output = QString::fromStdString(session.screen().plainText())};
}

}  // namespace orvo
