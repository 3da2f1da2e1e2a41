#pragma once

#include "platform/FileDescriptor.h"
#include "team_runs/Snapshot.h"
#include "team_runs/folderAccess.h"

#include <atomic>
#include <mutex>
#include <optional>
#include <vector>

namespace orvo::RunFiles {

/// Copies the files of one map from a folder to one or more others, several at a time.
class FileCopier {
public:
    /// `map` and the descriptors outlive the copier.
    FileCopier(const FileMap& map, int source, const std::vector<FileDescriptor>& destinations,
               const CopyOptions& options);

    Result<CopySummary> run();

private:
    class Worker;

    /// Neighbours in the map that one worker takes together: they often share a folder.
    struct Batch {
        size_t begin = 0;
        size_t end = 0;
    };

    void makeBatches();
    void work();
    /// Counts bytes of content against the limit; false when there are too many.
    bool count(qint64 bytes);
    void fail(Error error);
    bool halted() const { return m_failed || m_options.stop.stop_requested(); }
    void fileDone();

    const FileMap& m_map;
    int m_source;
    const std::vector<FileDescriptor>& m_destinations;
    const CopyOptions& m_options;
    qint64 m_allBytes = 0;

    std::vector<Batch> m_batches;
    std::atomic<size_t> m_nextBatch{0};
    std::atomic<qint64> m_bytes{0};
    std::atomic<int> m_files{0};
    std::atomic<bool> m_failed{false};
    // Shared extents: tried until the file system says no.
    std::atomic<bool> m_cloneFromSource{true};
    std::atomic<bool> m_cloneAmongDestinations{true};
    // Guards what follows. The workers are threads of this object's own call, so no model is behind it.
    std::mutex m_mutex;
    std::optional<Error> m_error;
    std::chrono::steady_clock::time_point m_lastReport;
};

}  // namespace orvo::RunFiles
