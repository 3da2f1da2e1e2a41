#pragma once

#include "platform/Dialogs.h"

#include <QCoreApplication>

#include <functional>

namespace orvo {

/// Questions in windows: Qt's file panels over the active window, alerts as the given presenter shows them.
class QtDialogs final : public Dialogs {
    Q_DECLARE_TR_FUNCTIONS(QtDialogs)

public:
    /// Shows an alert, blocks until it is answered and gives the index of the chosen button.
    using AlertPresenter = std::function<int(const Alert&)>;

    explicit QtDialogs(AlertPresenter presenter) : m_present(std::move(presenter)) {}

    int alert(const Alert& alert) override { return m_present(alert); }
    std::optional<FilePath> openFolder(const QString& message) override;
    std::optional<FilePath> openFile(const OpenPanel& panel) override;
    std::optional<FilePath> saveFile(const QString& proposedName,
                                     const std::optional<FilePath>& folder) override;

private:
    bool mayReplace(const FilePath& file);

    AlertPresenter m_present;
};

}  // namespace orvo
