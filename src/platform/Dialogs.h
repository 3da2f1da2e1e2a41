#pragma once

#include "platform/FilePath.h"

#include <QString>
#include <QStringList>

#include <optional>

namespace orvo {

/// A modal question. Buttons stand in the order given; the first is the one that acts.
struct Alert {
    enum class Default { FirstButton, LastButton };

    QString message;
    QString informativeText;
    QStringList buttons;
    /// The button that Return presses: the last (the way out) when the first one destroys something.
    Default defaultButton = Default::LastButton;
};

/// One existing file to choose.
struct OpenPanel {
    QString message;
    /// Where to begin; where the person last was when there is none.
    std::optional<FilePath> folder;
    /// Patterns such as "*.png"; without any, every file can be chosen.
    QStringList patterns;
};

/// Questions put to the person. Each call blocks (with a running event loop) until answered. Main thread
/// only.
class Dialogs {
public:
    virtual ~Dialogs() = default;

    /// The index of the chosen button; closing the alert counts as its last button.
    virtual int alert(const Alert& alert) = 0;
    /// One existing folder, or nothing when cancelled.
    virtual std::optional<FilePath> openFolder(const QString& message) = 0;
    /// One existing file, or nothing when cancelled.
    virtual std::optional<FilePath> openFile(const OpenPanel& panel) = 0;
    /// A place to save to, or nothing when cancelled. The platform asks before replacing a file.
    virtual std::optional<FilePath> saveFile(const QString& proposedName,
                                             const std::optional<FilePath>& folder) = 0;
};

}  // namespace orvo
