#pragma once

#include <QStackedWidget>

namespace orvo {

class Card;
class CodeEditor;
class ElidedLabel;
class Theme;
class Workspace;

/// The open file: its name, what can be done with it, and its text. Without one, an invitation.
class EditorPane final : public QStackedWidget {
    Q_OBJECT

public:
    EditorPane(Workspace& workspace, Theme& theme, QWidget* parent = nullptr);

private:
    QWidget* makeHeader();
    void refreshFile();
    void refreshHeader();
    void refreshText();
    void refreshLooks();

    Workspace& m_workspace;
    Theme& m_theme;
    QWidget* m_empty;
    Card* m_card;
    ElidedLabel* m_name = nullptr;
    QWidget* m_modified = nullptr;
    CodeEditor* m_code;
};

}  // namespace orvo
