#include "platform/desktop/LoadedDesktopControl.h"

#include "platform/loadModule.h"

#include <QCoreApplication>

namespace orvo {
namespace {

QString missing() {
    return QCoreApplication::translate("LoadedDesktopControl",
                                       "A part of Orvo AI is missing: orvo_desktop.so.");
}

tl::unexpected<Error> refusal() {
    return failure(QStringLiteral("Orvo"), missing());
}

/// Answers come later, as those of the module do.
template <class Done>
void refuseLater(Done done) {
    QMetaObject::invokeMethod(
        QCoreApplication::instance(), [done = std::move(done)] { done(refusal()); }, Qt::QueuedConnection);
}

class NoDesktopControl final : public DesktopControl {
public:
    bool isTrusted() const override { return false; }
    QString trustHint() const override { return missing(); }
    Result<void> openSettings(SettingsPage) override { return refusal(); }
    std::optional<InstalledApplication> application(const QString&) const override { return std::nullopt; }
    void openApplication(const InstalledApplication&, Opened done) override { refuseLater(std::move(done)); }
    void openAddress(const QUrl&, const InstalledApplication&, Done done) override {
        refuseLater(std::move(done));
    }
    bool isTerminated(const RunningApplication&) const override { return false; }
    bool isFrontmost(const RunningApplication&) const override { return false; }
    Result<void> checkTypeable(const QString&) const override { return refusal(); }
    void typeLine(const RunningApplication&, const QString&, Progress, Done done) override {
        refuseLater(std::move(done));
    }
    void pressKey(const RunningApplication&, quint16, quint64, Done done) override {
        refuseLater(std::move(done));
    }
    void cancelTyping() override {}
};

}  // namespace

LoadedDesktopControl::LoadedDesktopControl() = default;
LoadedDesktopControl::~LoadedDesktopControl() = default;

DesktopControl& LoadedDesktopControl::use() const {
    if (m_control) return *m_control;
    const auto make =
        reinterpret_cast<DesktopControlFunction>(loadModule("orvo_desktop", desktopControlSymbol));
    if (make)
        m_control.reset(make());
    else
        m_control = std::make_unique<NoDesktopControl>();
    return *m_control;
}

bool LoadedDesktopControl::isTrusted() const {
    return use().isTrusted();
}
QString LoadedDesktopControl::trustHint() const {
    return use().trustHint();
}
Result<void> LoadedDesktopControl::openSettings(SettingsPage page) {
    return use().openSettings(page);
}
std::optional<InstalledApplication> LoadedDesktopControl::application(const QString& identifier) const {
    return use().application(identifier);
}
void LoadedDesktopControl::openApplication(const InstalledApplication& application, Opened done) {
    use().openApplication(application, std::move(done));
}
void LoadedDesktopControl::openAddress(const QUrl& address, const InstalledApplication& application,
                                       Done done) {
    use().openAddress(address, application, std::move(done));
}
bool LoadedDesktopControl::isTerminated(const RunningApplication& application) const {
    return use().isTerminated(application);
}
bool LoadedDesktopControl::isFrontmost(const RunningApplication& application) const {
    return use().isFrontmost(application);
}
Result<void> LoadedDesktopControl::checkTypeable(const QString& line) const {
    return use().checkTypeable(line);
}
void LoadedDesktopControl::typeLine(const RunningApplication& application, const QString& line,
                                    Progress progress, Done done) {
    use().typeLine(application, line, std::move(progress), std::move(done));
}
void LoadedDesktopControl::pressKey(const RunningApplication& application, quint16 code, quint64 modifiers,
                                    Done done) {
    use().pressKey(application, code, modifiers, std::move(done));
}
void LoadedDesktopControl::cancelTyping() {
    if (m_control) m_control->cancelTyping();
}

}  // namespace orvo
