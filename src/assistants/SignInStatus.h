#pragma once

#include <QString>

namespace orvo {

struct ToolResult;

/// The label for the answer of `codex login status`: its exit status counts, and its words.
QString codexSignInLabel(const ToolResult& result);

/// The label for the answer of `claude auth status`: the member "loggedIn" of its JSON object, nothing else.
QString claudeSignInLabel(const ToolResult& result);

}  // namespace orvo
