#pragma once

#include "appearance/controls/Card.h"

namespace orvo {

class ElidedLabel;
class FileList;
class OrvoButton;
class TextField;
class TextLabel;
class Workspace;

/// One folder of the project at a time: a filter, the folder's name, the way up, and its files.
class FileBrowser final : public Card {
    Q_OBJECT

public:
    explicit FileBrowser(Workspace& workspace, QWidget* parent = nullptr);

private:
    void refreshSearch();
    void refreshNothingFound();
    void refreshFolder();
    void goUp();

    Workspace& m_workspace;
    TextField* m_search;
    ElidedLabel* m_folder;
    OrvoButton* m_up;
    OrvoButton* m_reload;
    TextLabel* m_nothingFound;
    FileList* m_list;
};

}  // namespace orvo
