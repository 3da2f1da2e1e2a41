#pragma once

#include "platform/FilePath.h"

#include <QList>
#include <QObject>

#include <stop_token>

namespace orvo {

/// Removes the folders of abandoned preparations, one after another in the background, but never while a new
/// run is being prepared: deleting many files slows down creating others for minutes on some file systems.
/// What is not removed when this object goes is found again by `RunFolder::abandonedIn`. Main thread only.
class AbandonedFolders : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;
    ~AbandonedFolders() override;

    void add(const FilePath& folder);
    /// Between `pause` and `resume` nothing is removed.
    void pause();
    void resume();

private:
    void removeNext();

    QList<FilePath> m_folders;
    std::stop_source m_stop;
    bool m_removing = false;
    bool m_paused = false;
};

}  // namespace orvo
