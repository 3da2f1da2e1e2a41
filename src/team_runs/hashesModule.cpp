#include "team_runs/Digest.h"

#include <array>
#include <memory>

#include <openssl/crypto.h>
#include <openssl/evp.h>

namespace {

const EVP_MD* algorithm() {
    // Fetched once: looking it up costs more than hashing a small file. Nothing here needs the library's
    // settings.
    static EVP_MD* const fetched = [] {
        OPENSSL_init_crypto(OPENSSL_INIT_NO_LOAD_CONFIG, nullptr);
        return EVP_MD_fetch(nullptr, "SHA256", nullptr);
    }();
    return fetched;
}

class CryptoDigest final : public orvo::RunFiles::Digest {
public:
    CryptoDigest() { restart(); }

    void add(const char* data, size_t size) override {
        if (EVP_DigestUpdate(m_context.get(), data, size) != 1) qFatal("SHA-256 failed");
    }
    QByteArray take() override {
        std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
        unsigned int size = 0;
        if (EVP_DigestFinal_ex(m_context.get(), digest.data(), &size) != 1) qFatal("SHA-256 failed");
        restart();
        return QByteArray(reinterpret_cast<const char*>(digest.data()), static_cast<qsizetype>(size));
    }

private:
    // The library fails here only without memory or without its own code, where nothing can go on.
    void restart() {
        if (EVP_DigestInit_ex2(m_context.get(), algorithm(), nullptr) != 1)
            qFatal("SHA-256 is not available");
    }

    struct Free {
        void operator()(EVP_MD_CTX* context) const { EVP_MD_CTX_free(context); }
    };
    const std::unique_ptr<EVP_MD_CTX, Free> m_context{EVP_MD_CTX_new()};
};

}  // namespace

extern "C" Q_DECL_EXPORT orvo::RunFiles::Digest* orvoMakeDigest() {
    return new CryptoDigest;
}
