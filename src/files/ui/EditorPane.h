#pragma once

#include <QStackedWidget>

namespace orvo {

class Card;
class CodeEditor;
class ElidedLabel;
class CodeSearchBar;
class CodeLineBar;
class OrvoButton;
class Theme;
class Workspace;

/// The open file: its name, what can be done with it, and its text. Without one, an invitation.
class EditorPane final : public QStackedWidget {
    Q_OBJECT

public:
    EditorPane(Workspace& workspace, Theme& theme, QWidget* parent = nullptr);

private:
    QWidget* makeHeader();
    void addShortcuts();
    void refreshFile();
    void refreshHeader();
    void refreshNote();
    void refreshText();
    void refreshLooks();

    Workspace& m_workspace;
    Theme& m_theme;
    QWidget* m_empty;
    Card* m_card;
    ElidedLabel* m_name = nullptr;
    QWidget* m_modified = nullptr;
    ElidedLabel* m_note = nullptr;
    OrvoButton* m_reload = nullptr;
    CodeEditor* m_code;
    CodeSearchBar* m_find;
    CodeLineBar* m_line;
};

}  // namespace orvo
