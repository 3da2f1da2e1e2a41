#pragma once

#include "platform/FilePath.h"
#include "platform/Result.h"

#include <QByteArray>
#include <QList>

#include <optional>

namespace orvo {

/// What the command line asks for.
struct Options {
    enum class Request { Window, SelfTest, Help, Version };
    /// What the window is to do first; also for a window that is open already.
    enum class Errand : quint8 { None, NewTerminal, QuickDraft };

    Request request = Request::Window;
    /// Project folder for this run only, instead of the saved one.
    std::optional<FilePath> workspace = {};
    /// Folder for pictures of the pages. The run is transient then: no preference is read or written.
    std::optional<FilePath> capture = {};
    /// Folder for the self-test's report; below the system's temporary folder when absent.
    std::optional<FilePath> testOutput = {};
    Errand errand = Errand::None;

    bool operator==(const Options&) const = default;
};

/// Reads the arguments after the program's name. Folders may be relative to `currentFolder`. They are bytes,
/// because a folder's name need not be UTF-8. The error's message is one sentence for the terminal.
Result<Options> parseOptions(const QList<QByteArray>& arguments, const FilePath& currentFolder);

/// The text of "--help".
QString optionsHelp();

}  // namespace orvo
