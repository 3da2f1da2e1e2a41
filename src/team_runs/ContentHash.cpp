#include "team_runs/ContentHash.h"

#include "team_runs/FileMap.h"
#include "team_runs/runError.h"

#include <array>
#include <cerrno>

#include <fcntl.h>
#include <openssl/evp.h>

namespace orvo::RunFiles {
namespace {

constexpr size_t bufferSize = 128 << 10;

const EVP_MD* algorithm() {
    // Fetched once: looking it up costs more than hashing a small file.
    static EVP_MD* const fetched = EVP_MD_fetch(nullptr, "SHA256", nullptr);
    return fetched;
}

}  // namespace

void ContentHash::Free::operator()(evp_md_ctx_st* context) const {
    EVP_MD_CTX_free(context);
}

ContentHash::ContentHash() : m_context(EVP_MD_CTX_new()) {
    restart();
}
ContentHash::~ContentHash() = default;

// The library fails here only without memory or without its own code, where nothing can go on.
void ContentHash::restart() {
    if (EVP_DigestInit_ex2(m_context.get(), algorithm(), nullptr) != 1) qFatal("SHA-256 is not available");
}

void ContentHash::add(const char* data, size_t size) {
    if (EVP_DigestUpdate(m_context.get(), data, size) != 1) qFatal("SHA-256 failed");
}

QByteArray ContentHash::digits() {
    std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
    unsigned int size = 0;
    if (EVP_DigestFinal_ex(m_context.get(), digest.data(), &size) != 1) qFatal("SHA-256 failed");
    restart();
    return QByteArray(reinterpret_cast<const char*>(digest.data()), static_cast<qsizetype>(size)).toHex();
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
