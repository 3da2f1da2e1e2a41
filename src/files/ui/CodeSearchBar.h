#pragma once

#include <QWidget>

namespace orvo {

class CodeEditor;
class TextField;
class TextLabel;

/// Searches in an editor: the text to find, how often it is there, and the way to the next and the previous
/// place. Hidden until it is opened.
class CodeSearchBar final : public QWidget {
    Q_OBJECT

public:
    /// The editor outlives the bar.
    explicit CodeSearchBar(CodeEditor& editor, QWidget* parent = nullptr);

    /// Shows the bar, with what is selected in the editor as the text to find.
    void open();
    /// Hides the bar and gives the focus back to the editor.
    void close();
    void findNext();
    void findPrevious();

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void findTyped();
    void refreshCount();

    CodeEditor& m_editor;
    TextField* m_text;
    TextLabel* m_count;
};

}  // namespace orvo
