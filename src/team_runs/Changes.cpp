#include "team_runs/Changes.h"

#include "team_runs/ContentHash.h"
#include "team_runs/FileMap.h"
#include "team_runs/runError.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <limits>
#include <memory>
#include <thread>
#include <vector>

#include <unistd.h>

namespace orvo::RunFiles {
namespace {

constexpr size_t bufferSize = 64 << 10;
// From here on a thread costs less than it saves: two files of 4 MB take 1 ms to compare.
constexpr qint64 largeFile = 4 << 20;
// Files that one worker takes together: they often share a folder.
constexpr size_t batchFiles = 32;

/// One path of either tree. Null where the tree lacks it.
struct Pair {
    const MappedFile* before = nullptr;
    const MappedFile* after = nullptr;

    const QByteArray& path() const { return before != nullptr ? before->path : after->path; }
};

std::vector<Pair> pairsOf(const FileMap& baseline, const FileMap& result) {
    std::vector<Pair> pairs;
    pairs.reserve(std::max(baseline.size(), result.size()));
    auto before = baseline.begin();
    auto after = result.begin();
    while (before != baseline.end() || after != result.end()) {
        const bool onlyAfter =
            before == baseline.end() || (after != result.end() && after->path < before->path);
        const bool onlyBefore = !onlyAfter && (after == result.end() || before->path < after->path);
        pairs.push_back({onlyAfter ? nullptr : &*before, onlyBefore ? nullptr : &*after});
        if (!onlyAfter) ++before;
        if (!onlyBefore) ++after;
    }
    return pairs;
}

/// A file as it is found when it is opened.
struct Found {
    FileDescriptor file;
    int mode = 0;
};

struct Buffers {
    std::unique_ptr<char[]> left = std::make_unique_for_overwrite<char[]>(bufferSize);
    std::unique_ptr<char[]> right = std::make_unique_for_overwrite<char[]>(bufferSize);
};

constexpr qint64 toTheEnd = std::numeric_limits<qint64>::max();

/// Compares two open files, parts of them in several threads where that pays.
class Comparison {
public:
    /// `size` is what both files had when they were looked at.
    Comparison(int before, int after, qint64 size, const std::stop_token& stop)
        : m_before(before), m_after(after), m_size(size), m_stop(stop) {}

    /// Whether they are equal from `begin` to `end`; false as well when another part has been found
    /// different.
    SystemResult<bool> sameIn(qint64 begin, qint64 end, Buffers& buffers) {
        while (begin < end && !m_differs) {
            if (m_stop.stop_requested()) return tl::unexpected<int>(ECANCELED);
            const auto wanted =
                static_cast<size_t>(std::min<qint64>(static_cast<qint64>(bufferSize), end - begin));
            const auto left = read(m_before, buffers.left.get(), wanted, begin);
            if (!left) return tl::unexpected<int>(left.error());
            const auto right = read(m_after, buffers.right.get(), wanted, begin);
            if (!right) return tl::unexpected<int>(right.error());
            if (*left != *right || std::memcmp(buffers.left.get(), buffers.right.get(), *left) != 0)
                m_differs = true;
            if (*left < wanted) break;
            begin += static_cast<qint64>(wanted);
        }
        return !m_differs;
    }

private:
    /// What there is of `wanted` bytes. Does not ask again at the end that the file is known to have.
    SystemResult<size_t> read(int descriptor, char* buffer, size_t wanted, qint64 from) const {
        size_t filled = 0;
        while (filled < wanted) {
            const qint64 at = from + static_cast<qint64>(filled);
            if (filled > 0 && at >= m_size) break;
            const ssize_t count = pread(descriptor, buffer + filled, wanted - filled, at);
            if (count < 0 && errno == EINTR) continue;
            if (count < 0) return tl::unexpected<int>(errno);
            if (count == 0) break;
            filled += static_cast<size_t>(count);
        }
        return filled;
    }

    int m_before;
    int m_after;
    qint64 m_size;
    const std::stop_token& m_stop;
    std::atomic<bool> m_differs{false};
};

/// Examines pairs, one at a time; one of these a thread.
class Examiner {
public:
    Examiner(int baseline, int result, const std::stop_token& stop)
        : m_baseline(baseline, FolderCursor::Missing::Fail),
          m_result(result, FolderCursor::Missing::Fail),
          m_stop(stop) {}

    /// The change, nothing when there is none, or the number of the error.
    SystemResult<std::optional<FileChange>> examine(const Pair& pair) {
        if (pair.before != nullptr && pair.after != nullptr) return compare(pair);
        FileChange change{pair.path(), {}, {}, {}, {}};
        const bool added = pair.before == nullptr;
        auto found = open(added ? m_result : m_baseline, pair.path());
        if (!found) return tl::unexpected<int>(found.error());
        auto digits = hashDescriptor(found->file.number(), m_stop);
        if (!digits) return tl::unexpected<int>(digits.error());
        (added ? change.after : change.before) = std::move(*digits);
        (added ? change.afterMode : change.beforeMode) = found->mode;
        return change;
    }

private:
    static SystemResult<Found> open(FolderCursor& cursor, const QByteArray& path) {
        const auto folder = cursor.folderOf(path);
        if (!folder) return tl::unexpected<int>(folder.error());
        struct stat status{};
        auto file = openRegularFile(*folder, fileNameIn(path), status);
        if (!file) return tl::unexpected<int>(file.error());
        return Found{std::move(*file), permissionsOf(status)};
    }

    SystemResult<std::optional<FileChange>> compare(const Pair& pair) {
        const bool bothEmpty = pair.before->size == 0 && pair.after->size == 0;
        if (bothEmpty && pair.before->mode == pair.after->mode) return std::nullopt;
        auto before = open(m_baseline, pair.path());
        if (!before) return tl::unexpected<int>(before.error());
        auto after = open(m_result, pair.path());
        if (!after) return tl::unexpected<int>(after.error());

        SystemResult<bool> equal = false;
        if (pair.before->size == pair.after->size)
            equal = sameContent(before->file.number(), after->file.number(), pair.before->size);
        if (!equal) return tl::unexpected<int>(equal.error());
        if (*equal && before->mode == after->mode) return std::nullopt;
        auto digits = *equal ? hashDescriptor(before->file.number(), m_stop).map([](const QByteArray& same) {
            return std::pair(same, same);
        })
                             : hashDescriptors(before->file.number(), after->file.number(), m_stop);
        if (!digits) return tl::unexpected<int>(digits.error());
        // A file may have been written between the walk and now, and be as it was again.
        if (digits->first == digits->second && before->mode == after->mode) return std::nullopt;
        return FileChange{pair.path(), std::move(digits->first), std::move(digits->second), before->mode,
                          after->mode};
    }

    SystemResult<bool> sameContent(int before, int after, qint64 size) {
        Comparison comparison(before, after, size, m_stop);
        if (size < largeFile) return comparison.sameIn(0, toTheEnd, m_buffers);
        // Where there are few large files, the second half is the only work there is for a second core.
        const qint64 middle = size / 2;
        SystemResult<bool> end = false;
        std::jthread other([&] {
            Buffers buffers;
            end = comparison.sameIn(middle, toTheEnd, buffers);
        });
        const SystemResult<bool> beginning = comparison.sameIn(0, middle, m_buffers);
        other.join();
        return beginning && *beginning ? end : beginning;
    }

    FolderCursor m_baseline;
    FolderCursor m_result;
    const std::stop_token& m_stop;
    Buffers m_buffers;
};

using Answers = std::vector<SystemResult<std::optional<FileChange>>>;

/// Each worker writes the answers of its own pairs only.
void examineAll(const std::vector<Pair>& pairs, int baseline, int result, const std::stop_token& stop,
                const ReadingProgress& progress, Answers& answers) {
    const size_t threads = std::clamp<size_t>(std::thread::hardware_concurrency(), 2, 4);
    // A few large files are shared out one by one; of many small ones a worker takes some at a time.
    const size_t batch = std::clamp<size_t>(pairs.size() / (threads * 8), 1, batchFiles);
    std::atomic<size_t> next{0};
    std::atomic<size_t> done{0};
    // One of the workers tells what all of them have done.
    const auto work = [&](const ReadingProgress& tell) {
        Examiner examiner(baseline, result, stop);
        for (size_t begin = next.fetch_add(batch); begin < pairs.size(); begin = next.fetch_add(batch)) {
            const size_t end = std::min(begin + batch, pairs.size());
            for (size_t i = begin; i < end && !stop.stop_requested(); ++i)
                answers[i] = examiner.examine(pairs[i]);
            const size_t examined = done += end - begin;
            if (tell) tell(static_cast<int>(examined), static_cast<int>(pairs.size()));
        }
    };
    std::vector<std::jthread> others;
    for (size_t i = 1; i < threads && i * batch < pairs.size(); ++i)
        others.emplace_back([&work] { work({}); });
    work(progress);
    others.clear();  // waits for them
    const int all = static_cast<int>(pairs.size());
    // The others may have been quicker at everything.
    if (progress && !stop.stop_requested()) progress(all, all);
}

}  // namespace

Result<QList<FileChange>> changes(const FilePath& baseline, const FilePath& result,
                                  const std::stop_token& stop, const ReadingProgress& progress) {
    // Both trees at the same time: with many folders this is most of the work.
    Result<FileMap> after;
    std::jthread walkingResult([&after, &result, &stop] { after = files(result, stop); });
    const Result<FileMap> before = files(baseline, stop);
    walkingResult.join();
    if (!before) return tl::unexpected<Error>(before.error());
    if (!after) return tl::unexpected<Error>(after.error());
    const auto baselineRoot = openRoot(baseline);
    if (!baselineRoot) return pathFailure(baseline.bytes(), baselineRoot.error());
    const auto resultRoot = openRoot(result);
    if (!resultRoot) return pathFailure(result.bytes(), resultRoot.error());

    const std::vector<Pair> pairs = pairsOf(*before, *after);
    Answers answers(pairs.size());
    examineAll(pairs, baselineRoot->number(), resultRoot->number(), stop, progress, answers);
    if (stop.stop_requested()) return stopped();
    QList<FileChange> found;
    for (size_t i = 0; i < pairs.size(); ++i) {
        if (!answers[i]) return pathFailure(pairs[i].path(), answers[i].error());
        if (const std::optional<FileChange>& change = *answers[i]) found.append(*change);
    }
    return found;
}

}  // namespace orvo::RunFiles
