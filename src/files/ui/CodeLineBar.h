#pragma once

#include <QWidget>

namespace orvo {

class CodeEditor;
class TextField;
class TextLabel;

/// Goes to a line of an editor by its number. Hidden until it is opened.
class CodeLineBar final : public QWidget {
    Q_OBJECT

public:
    /// The editor outlives the bar.
    explicit CodeLineBar(CodeEditor& editor, QWidget* parent = nullptr);

    void open();
    /// Hides the bar and gives the focus back to the editor.
    void close();

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    CodeEditor& m_editor;
    TextField* m_number;
    TextLabel* m_last;
};

}  // namespace orvo
