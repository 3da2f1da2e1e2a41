#pragma once

#include "platform/DesktopControl.h"

#include <QMap>
#include <QStringList>

namespace orvo {

/// A desktop that records in `log` what it is asked and told, in order, and whose completions wait until the
/// test answers them.
class FakeDesktopControl final : public DesktopControl {
public:
    bool trusted = true;
    bool frontmost = true;
    bool terminated = false;
    Result<void> typeable;
    Result<void> settings;
    /// Identifier → application.
    QMap<QString, InstalledApplication> installed;

    mutable QStringList log;
    Opened opened;
    Done addressOpened;
    Progress progress;
    Done inputDone;

    bool isTrusted() const override {
        log.append(QStringLiteral("trusted?"));
        return trusted;
    }
    QString trustHint() const override { return QStringLiteral("Use an X11 session."); }
    Result<void> openSettings(SettingsPage page) override {
        log.append(page == SettingsPage::Accessibility ? QStringLiteral("settings accessibility")
                                                       : QStringLiteral("settings recording"));
        return settings;
    }
    std::optional<InstalledApplication> application(const QString& identifier) const override {
        log.append(QStringLiteral("application ") + identifier);
        const auto found = installed.find(identifier);
        if (found == installed.end()) return std::nullopt;
        return *found;
    }
    void openApplication(const InstalledApplication& application, Opened done) override {
        log.append(QStringLiteral("open ") + application.id);
        opened = std::move(done);
    }
    void openAddress(const QUrl& address, const InstalledApplication& application, Done done) override {
        log.append(
            QStringLiteral("open %1 in %2").arg(QString::fromLatin1(address.toEncoded()), application.id));
        addressOpened = std::move(done);
    }
    bool isTerminated(const RunningApplication&) const override {
        log.append(QStringLiteral("terminated?"));
        return terminated;
    }
    bool isFrontmost(const RunningApplication& application) const override {
        log.append(QStringLiteral("frontmost? ") + application.application.id);
        return frontmost;
    }
    Result<void> checkTypeable(const QString&) const override {
        log.append(QStringLiteral("typeable?"));
        return typeable;
    }
    void typeLine(const RunningApplication& application, const QString& line, Progress onProgress,
                  Done done) override {
        log.append(QStringLiteral("type %1 into %2").arg(line, application.application.id));
        progress = std::move(onProgress);
        inputDone = std::move(done);
    }
    void pressKey(const RunningApplication& application, quint16 code, quint64 modifiers,
                  Done done) override {
        log.append(QStringLiteral("press %1+%2 in %3")
                       .arg(modifiers, 0, 16)
                       .arg(code)
                       .arg(application.application.id));
        inputDone = std::move(done);
    }
    void cancelTyping() override { log.append(QStringLiteral("cancel typing")); }
};

}  // namespace orvo
