#pragma once

#include <QWidget>

namespace orvo {

class FileBrowser;
class Theme;
class Workspace;

/// The project's files: a list to choose from, the editor of the open one, and a line to run commands with.
class FilesView final : public QWidget {
    Q_OBJECT

public:
    /// The models outlive the page.
    FilesView(Workspace& workspace, Theme& theme, QWidget* parent = nullptr);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    FileBrowser* m_browser;
};

}  // namespace orvo
