#pragma once

#include "platform/Launcher.h"

#include <QList>

namespace orvo {

/// Records what would have been opened; can refuse like a desktop without a program for it.
class FakeLauncher final : public Launcher {
public:
    void refuse(std::optional<Error> error) { m_refusal = std::move(error); }
    const QList<FilePath>& folders() const { return m_folders; }
    const QList<QUrl>& addresses() const { return m_addresses; }

    Result<void> openFolder(const FilePath& folder) override {
        m_folders.append(folder);
        return answer();
    }
    Result<void> openAddress(const QUrl& address) override {
        m_addresses.append(address);
        return answer();
    }

private:
    Result<void> answer() const {
        if (m_refusal) return tl::unexpected<Error>(*m_refusal);
        return {};
    }

    QList<FilePath> m_folders;
    QList<QUrl> m_addresses;
    std::optional<Error> m_refusal;
};

}  // namespace orvo
