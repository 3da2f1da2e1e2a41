#include "team_runs/FileCopier.h"

#include "team_runs/runError.h"

#include <QCoreApplication>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <memory>
#include <thread>

#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>

namespace orvo::RunFiles {
namespace {

// Fits the second-level cache, so that what is read is still there when it is written the last time.
constexpr size_t bufferSize = 256 << 10;
// One step of a copy inside the kernel; between two the token is looked at.
constexpr size_t kernelStep = 8 << 20;
constexpr size_t batchFiles = 16;
constexpr qint64 batchBytes = 4 << 20;
constexpr auto reportInterval = std::chrono::milliseconds(50);

bool unsupportedClone(int code) {
    return code == EOPNOTSUPP || code == EXDEV || code == EINVAL || code == ENOTTY || code == ENOSYS ||
           code == EPERM;
}

}  // namespace

/// One thread's folders and buffer.
class FileCopier::Worker {
public:
    explicit Worker(FileCopier& copier)
        : m_copier(copier),
          m_source(copier.m_source, FolderCursor::Missing::Fail),
          m_buffer(std::make_unique_for_overwrite<char[]>(bufferSize)) {
        for (const FileDescriptor& destination : copier.m_destinations) {
            m_destinations.emplace_back(destination.number(), FolderCursor::Missing::Create);
        }
        m_targets.resize(m_destinations.size());
    }

    /// False when the copier has failed or been stopped.
    bool copy(const MappedFile& file) {
        const auto folder = m_source.folderOf(file.path);
        if (!folder) return failed(file, folder.error());
        struct stat status{};
        const auto source = openRegularFile(*folder, fileNameIn(file.path), status);
        if (!source) return failed(file, source.error());
        if (!createTargets(file)) return false;
        if (status.st_size > 0 && !fill(file, source->number(), status.st_size)) return false;
        return finishTargets(file, status);
    }

private:
    bool failed(const MappedFile& file, int code) {
        m_copier.fail(pathFailure(file.path, code).value());
        return false;
    }

    bool createTargets(const MappedFile& file) {
        const char* const name = fileNameIn(file.path);
        for (size_t i = 0; i < m_targets.size(); ++i) {
            const auto folder = m_destinations[i].folderOf(file.path);
            if (!folder) return failed(file, folder.error());
            m_targets[i] = FileDescriptor(
                openat(*folder, name, O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
            if (!m_targets[i].isOpen()) return failed(file, errno);
        }
        return true;
    }

    bool finishTargets(const MappedFile& file, const struct stat& status) {
        const std::array<timespec, 2> times = {status.st_atim, status.st_mtim};
        for (FileDescriptor& target : m_targets) {
            if (fchmod(target.number(), status.st_mode & 07777) != 0) return failed(file, errno);
            // Build tools compare times; a file system that keeps none is no reason to fail.
            [[maybe_unused]] const int kept = futimens(target.number(), times.data());
            target = FileDescriptor();
        }
        return true;
    }

    /// Content of all targets. The first one comes from the source, or all at once; the others can also share
    /// the first one's extents, which never changes under our hands.
    bool fill(const MappedFile& file, int source, qint64 size) {
        const int first = m_targets.front().number();
        if (clone(m_copier.m_cloneFromSource, source, first)) {
            struct stat status{};
            if (fstat(first, &status) != 0) return failed(file, errno);
            if (!m_copier.count(status.st_size)) return false;
            return fillOthers(file, 1);
        }
        if (m_targets.size() == 1) return copyInKernel(file, source, first);
        const bool small = size <= static_cast<qint64>(bufferSize);
        if (small || !m_copier.m_cloneAmongDestinations) return stream(file, source, 0, m_targets.size());
        return stream(file, source, 0, 1) && fillOthers(file, 1);
    }

    bool fillOthers(const MappedFile& file, size_t from) {
        const int first = m_targets.front().number();
        for (size_t i = from; i < m_targets.size(); ++i) {
            if (clone(m_copier.m_cloneAmongDestinations, first, m_targets[i].number())) continue;
            if (lseek(first, 0, SEEK_SET) != 0) return failed(file, errno);
            return stream(file, first, i, m_targets.size());
        }
        return true;
    }

    static bool clone(std::atomic<bool>& possible, int from, int to) {
        if (!possible) return false;
        if (ioctl(to, FICLONE, from) == 0) return true;
        if (unsupportedClone(errno)) possible = false;
        return false;
    }

    /// Reads once, writes to the targets from `begin` to `end`.
    bool stream(const MappedFile& file, int from, size_t begin, size_t end) {
        while (true) {
            if (m_copier.halted()) return false;
            const auto read = readFully(from, m_buffer.get(), bufferSize);
            if (!read) return failed(file, read.error());
            // Only content that comes from outside counts; the first target's is counted already.
            if (begin == 0 && !m_copier.count(static_cast<qint64>(*read))) return false;
            for (size_t i = begin; i < end; ++i) {
                const auto written = writeFully(m_targets[i].number(), m_buffer.get(), *read);
                if (!written) return failed(file, written.error());
            }
            if (*read < bufferSize) return true;
        }
    }

    /// One target only: the system copies without showing us the bytes, and a file server does it by itself.
    bool copyInKernel(const MappedFile& file, int from, int to) {
        while (true) {
            if (m_copier.halted()) return false;
            const ssize_t copied = copy_file_range(from, nullptr, to, nullptr, kernelStep, 0);
            if (copied < 0 && errno == EINTR) continue;
            // Some systems refuse, and some give nothing of files whose content is made up on reading: the
            // descriptors stand where they stood, so plain reading goes on from there and meets real errors
            // itself.
            if (copied <= 0) return stream(file, from, 0, 1);
            if (!m_copier.count(copied)) return false;
        }
    }

    FileCopier& m_copier;
    FolderCursor m_source;
    std::vector<FolderCursor> m_destinations;
    std::vector<FileDescriptor> m_targets;
    std::unique_ptr<char[]> m_buffer;
};

FileCopier::FileCopier(const FileMap& map, int source, const std::vector<FileDescriptor>& destinations,
                       const CopyOptions& options)
    : m_map(map), m_source(source), m_destinations(destinations), m_options(options) {
    for (const MappedFile& file : map)
        m_allBytes += file.size;
    makeBatches();
}

void FileCopier::makeBatches() {
    for (size_t begin = 0; begin < m_map.size();) {
        size_t end = begin;
        qint64 bytes = 0;
        while (end < m_map.size() && end - begin < batchFiles && (end == begin || bytes < batchBytes)) {
            bytes += m_map[end++].size;
        }
        m_batches.push_back({begin, end});
        begin = end;
    }
}

Result<CopySummary> FileCopier::run() {
    const size_t threads = std::clamp<size_t>(std::thread::hardware_concurrency(), 2, 4);
    {
        std::vector<std::jthread> others;
        for (size_t i = 1; i < std::min(threads, m_batches.size()); ++i)
            others.emplace_back([this] { work(); });
        work();
    }
    if (m_options.stop.stop_requested()) return stopped();
    if (m_error) return tl::unexpected<Error>(*m_error);
    if (m_options.progress) m_options.progress({m_files, m_files, m_bytes, m_bytes});
    return CopySummary{m_files, m_bytes};
}

void FileCopier::work() {
    Worker worker(*this);
    while (true) {
        const size_t number = m_nextBatch++;
        if (number >= m_batches.size()) return;
        for (size_t i = m_batches[number].begin; i < m_batches[number].end; ++i) {
            if (halted() || !worker.copy(m_map[i])) return;
            fileDone();
        }
    }
}

bool FileCopier::count(qint64 bytes) {
    if (m_bytes.fetch_add(bytes) + bytes <= maximumBytes) return true;
    fail(error(overLimit()));
    return false;
}

void FileCopier::fail(Error error) {
    const std::scoped_lock lock(m_mutex);
    if (!m_error) m_error = std::move(error);
    m_failed = true;
}

void FileCopier::fileDone() {
    const int files = ++m_files;
    if (!m_options.progress) return;
    // Whoever comes while another reports has nothing newer to say.
    const std::unique_lock lock(m_mutex, std::try_to_lock);
    if (!lock) return;
    const auto now = std::chrono::steady_clock::now();
    if (now - m_lastReport < reportInterval) return;
    m_lastReport = now;
    m_options.progress(
        {files, static_cast<int>(m_map.size()), m_bytes, std::max<qint64>(m_allBytes, m_bytes)});
}

}  // namespace orvo::RunFiles
