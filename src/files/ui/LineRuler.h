#pragma once

#include <QWidget>

namespace orvo {

class CodeEditor;

/// The numbers of the lines, beside the text of an editor.
class LineRuler final : public QWidget {
    Q_OBJECT

public:
    explicit LineRuler(CodeEditor& editor);

    /// Wide enough for the numbers of `lines` lines; at least 45.
    static int widthFor(int lines);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    CodeEditor& m_editor;
};

}  // namespace orvo
