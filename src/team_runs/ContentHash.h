#pragma once

#include "platform/FilePath.h"
#include "platform/Result.h"
#include "team_runs/folderAccess.h"

#include <QByteArray>

#include <memory>
#include <stop_token>
#include <utility>

namespace orvo::RunFiles {

class Digest;

/// SHA-256 of content that comes in pieces, by the fastest means that this installation has.
class ContentHash {
public:
    ContentHash();
    ~ContentHash();

    void add(const char* data, size_t size);
    /// 64 lower-case hexadecimal digits. The hash then starts anew.
    QByteArray digits();

private:
    const std::unique_ptr<Digest> m_digest;
};

/// Reads an open file from its beginning. EFBIG when it holds more than a copy may; ECANCELED when stopped.
SystemResult<QByteArray> hashDescriptor(int descriptor, const std::stop_token& stop = {});

/// The same of two open files at once.
SystemResult<std::pair<QByteArray, QByteArray>> hashDescriptors(int first, int second,
                                                                const std::stop_token& stop = {});

/// The hash of the regular file at `file`; links are not followed.
Result<QByteArray> hash(const FilePath& file);
/// Its permission bits, read without opening it.
Result<int> mode(const FilePath& file);

}  // namespace orvo::RunFiles
