#pragma once

#include "platform/FilePath.h"

#include <QString>

namespace orvo::test {

/// A file system of this process alone that is soon full.
class SmallDisk {
public:
    static constexpr qint64 pageSize = 4096;
    static constexpr qint64 size = 1 << 20;

    /// Gives the process mounts of its own; before it has any thread. Says why not where the system does not
    /// allow it.
    static QString prepare();

    /// At the folder `at`, which must be there; gone with this object. `inodes` counts the root folder.
    explicit SmallDisk(const FilePath& at, int inodes = 1000);
    ~SmallDisk();
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;

    /// Takes all room but `pagesLeft`, in a file named "ballast".
    void fill(int pagesLeft = 0) const;
    /// Gives it back.
    void clear() const;

private:
    FilePath m_root;
};

}  // namespace orvo::test
