#include "team_runs/AbandonedFolders.h"

#include "platform/runInBackground.h"
#include "team_runs/RunFolder.h"
#include "team_runs/removeTree.h"

#include <cerrno>

namespace orvo {

AbandonedFolders::~AbandonedFolders() {
    m_stop.request_stop();
}

void AbandonedFolders::add(const FilePath& folder) {
    if (m_folders.contains(folder)) return;
    m_folders.append(folder);
    removeNext();
}

void AbandonedFolders::pause() {
    m_paused = true;
    m_stop.request_stop();
}

void AbandonedFolders::resume() {
    m_paused = false;
    removeNext();
}

void AbandonedFolders::removeNext() {
    if (m_paused || m_removing || m_folders.isEmpty()) return;
    m_removing = true;
    m_stop = {};
    runInBackground(
        this,
        [folder = m_folders.front(), stop = m_stop.get_token()] {
            const auto removed = removeTree(folder, RunFolder::marker, stop);
            return removed || removed.error() != ECANCELED;
        },
        [this](bool done) {
            m_removing = false;
            // What could not be removed is marked still; the next start tries again.
            if (done) m_folders.removeFirst();
            removeNext();
        });
}

}  // namespace orvo
