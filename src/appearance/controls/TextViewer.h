#pragma once

#include <QBasicTimer>
#include <QPlainTextEdit>

namespace orvo {

/// Text to read and to copy, in the fixed-width font; never rich text. A long text fills in piece by piece,
/// so that the window stays alive meanwhile.
class TextViewer : public QPlainTextEdit {
    Q_OBJECT

public:
    enum class Lines { Wrap, Scroll };
    /// A line beyond this many UTF-16 units is cut with an ellipsis: laying it out would take seconds.
    static constexpr qsizetype longestLine = 20'000;

    explicit TextViewer(const QString& label, Lines lines, QWidget* parent = nullptr);

    /// Another text, from its beginning. The same text leaves everything as it is.
    void setText(const QString& text);

protected:
    void timerEvent(QTimerEvent* event) override;

private:
    void appendPiece();

    QString m_text;
    qsizetype m_shown = 0;
    QBasicTimer m_timer;
};

}  // namespace orvo
