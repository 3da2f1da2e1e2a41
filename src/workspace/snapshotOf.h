#pragma once

#include "history/HistoryEntry.h"

namespace orvo {

class TerminalSession;

/// What history keeps of a session that has ended.
HistoryEntry snapshotOf(const TerminalSession& session);

}  // namespace orvo
