#pragma once

#include <QHash>
#include <QWidget>

class QVBoxLayout;

namespace orvo {

class CheckRow;
class ElidedLabel;
class OrvoButton;
class Paragraph;
class Workspace;

/// The column beside the deck: the project, who gets the next task, and how work is shared.
class WorkspaceInspector : public QWidget {
    Q_OBJECT

public:
    explicit WorkspaceInspector(Workspace& workspace, QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QWidget* makeProject();
    QWidget* makeTargets();
    QWidget* makeModeExplanation();
    QWidget* makeNotes();
    void rebuildTargets();
    void refreshProject();
    void refreshTargets();
    void refreshMode();
    void select(const QString& providerID, bool on);

    Workspace& m_workspace;
    QWidget* m_projectName = nullptr;
    ElidedLabel* m_folderName = nullptr;
    Paragraph* m_noFolder = nullptr;
    OrvoButton* m_chooseFolder = nullptr;
    QVBoxLayout* m_targetRows = nullptr;
    /// Provider id → its row.
    QHash<QString, CheckRow*> m_rows;
    Paragraph* m_mode = nullptr;
};

}  // namespace orvo
