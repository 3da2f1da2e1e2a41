#pragma once

#include <QByteArray>

namespace orvo::RunFiles {

/// One running SHA-256, as the module "orvo_hashes" makes it.
class Digest {
public:
    virtual ~Digest() = default;

    virtual void add(const char* data, size_t size) = 0;
    /// The 32 bytes. It then starts anew.
    virtual QByteArray take() = 0;
};

/// The module's one function. The caller owns the result. Any thread.
using DigestFunction = Digest* (*)();
inline constexpr auto digestSymbol = "orvoMakeDigest";

}  // namespace orvo::RunFiles
