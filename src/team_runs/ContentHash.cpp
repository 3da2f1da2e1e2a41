#include "team_runs/ContentHash.h"

#include "platform/loadModule.h"
#include "team_runs/Digest.h"
#include "team_runs/FileMap.h"
#include "team_runs/runError.h"

#include <QCryptographicHash>

#include <cerrno>
#include <optional>
#include <thread>

#include <fcntl.h>

namespace orvo::RunFiles {
namespace {

constexpr size_t bufferSize = 128 << 10;
// From here on a thread costs less than it saves: 4 MB take 2 ms to hash.
constexpr qint64 largeFile = 4 << 20;

/// What stands in when the module is missing: the same digits, eight times as slowly.
class QtDigest final : public Digest {
public:
    void add(const char* data, size_t size) override {
        m_hash.addData(QByteArrayView(data, static_cast<qsizetype>(size)));
    }
    QByteArray take() override {
        const QByteArray digest = m_hash.result();
        m_hash.reset();
        return digest;
    }

private:
    QCryptographicHash m_hash{QCryptographicHash::Sha256};
};

std::unique_ptr<Digest> makeDigest() {
    static const auto make = reinterpret_cast<DigestFunction>(loadModule("orvo_hashes", digestSymbol));
    if (make) return std::unique_ptr<Digest>(make());
    return std::make_unique<QtDigest>();
}

}  // namespace

ContentHash::ContentHash() : m_digest(makeDigest()) {}
ContentHash::~ContentHash() = default;

void ContentHash::add(const char* data, size_t size) {
    m_digest->add(data, size);
}

QByteArray ContentHash::digits() {
    return m_digest->take().toHex();
}

SystemResult<QByteArray> hashDescriptor(int descriptor, const std::stop_token& stop) {
    if (lseek(descriptor, 0, SEEK_SET) != 0) return tl::unexpected<int>(errno);
    ContentHash content;
    const auto buffer = std::make_unique_for_overwrite<char[]>(bufferSize);
    qint64 total = 0;
    while (true) {
        if (stop.stop_requested()) return tl::unexpected<int>(ECANCELED);
        const auto count = readFully(descriptor, buffer.get(), bufferSize);
        if (!count) return tl::unexpected<int>(count.error());
        content.add(buffer.get(), *count);
        total += static_cast<qint64>(*count);
        // A file that is being written while we read must not keep us for ever.
        if (total > maximumBytes) return tl::unexpected<int>(EFBIG);
        if (*count < bufferSize) return content.digits();
    }
}

SystemResult<std::pair<QByteArray, QByteArray>> hashDescriptors(int first, int second,
                                                                const std::stop_token& stop) {
    struct stat status{};
    if (fstat(first, &status) != 0) return tl::unexpected<int>(errno);
    SystemResult<QByteArray> firstDigits;
    const auto hashFirst = [&] {
        firstDigits = hashDescriptor(first, stop);
    };
    std::optional<std::jthread> other;
    if (status.st_size >= largeFile) other.emplace(hashFirst);
    SystemResult<QByteArray> secondDigits = hashDescriptor(second, stop);
    if (other)
        other->join();
    else
        hashFirst();
    if (!firstDigits) return tl::unexpected<int>(firstDigits.error());
    if (!secondDigits) return tl::unexpected<int>(secondDigits.error());
    return std::pair(std::move(*firstDigits), std::move(*secondDigits));
}

Result<QByteArray> hash(const FilePath& file) {
    struct stat status{};
    const auto opened = openRegularFile(AT_FDCWD, file.bytes(), status);
    if (!opened) return pathFailure(file.bytes(), opened.error());
    auto digits = hashDescriptor(opened->number());
    if (!digits) return pathFailure(file.bytes(), digits.error());
    return std::move(*digits);
}

Result<int> mode(const FilePath& file) {
    struct stat status{};
    if (fstatat(AT_FDCWD, file.bytes().constData(), &status, AT_SYMLINK_NOFOLLOW) != 0) {
        return pathFailure(file.bytes(), errno);
    }
    return permissionsOf(status);
}

}  // namespace orvo::RunFiles
