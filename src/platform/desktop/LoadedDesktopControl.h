#pragma once

#include "platform/DesktopControl.h"

#include <memory>

namespace orvo {

/// The desktop's control from the module "orvo_desktop", loaded when it is used first: most days nobody has
/// other applications opened, and GIO and the input libraries cost a start more than the rest of this folder.
class LoadedDesktopControl final : public DesktopControl {
public:
    LoadedDesktopControl();
    ~LoadedDesktopControl() override;

    bool isTrusted() const override;
    QString trustHint() const override;
    Result<void> openSettings(SettingsPage page) override;
    std::optional<InstalledApplication> application(const QString& identifier) const override;
    void openApplication(const InstalledApplication& application, Opened done) override;
    void openAddress(const QUrl& address, const InstalledApplication& application, Done done) override;
    bool isTerminated(const RunningApplication& application) const override;
    bool isFrontmost(const RunningApplication& application) const override;
    Result<void> checkTypeable(const QString& line) const override;
    void typeLine(const RunningApplication& application, const QString& line, Progress progress,
                  Done done) override;
    void pressKey(const RunningApplication& application, quint16 code, quint64 modifiers, Done done) override;
    void cancelTyping() override;

private:
    /// The module's control, or one that refuses everything when the module is missing.
    DesktopControl& use() const;

    mutable std::unique_ptr<DesktopControl> m_control;
};

/// The module's one function. The caller owns the result.
using DesktopControlFunction = DesktopControl* (*)();
inline constexpr auto desktopControlSymbol = "orvoMakeDesktopControl";

}  // namespace orvo
