#pragma once

#include "appearance/controls/RowList.h"
#include "files/ProjectFiles.h"

#include <QAbstractListModel>

namespace orvo {

/// The listed files whose names contain the search text, as rows.
class FileModel final : public QAbstractListModel {
    Q_OBJECT

public:
    enum Role { IsFolderRole = Qt::UserRole, IsOpenRole };

    explicit FileModel(ProjectFiles& files, QObject* parent = nullptr);

    const FileEntry& entry(int row) const { return m_rows[row]; }

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;

private:
    void refreshRows();
    void refreshOpenFile();

    ProjectFiles& m_files;
    QList<FileEntry> m_rows;
};

/// The files of a folder. A click, or Return on the current row, opens a file or goes into a folder.
class FileList final : public RowList {
    Q_OBJECT

public:
    static constexpr int padding = 8;
    static constexpr int rowPadding = 8;

    explicit FileList(ProjectFiles& files, QWidget* parent = nullptr);

    void open(const QModelIndex& row);
    void pressRow(int row) override;

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;

private:
    ProjectFiles& m_files;
    FileModel* m_model;
};

}  // namespace orvo
