#pragma once

#include <QPlainTextDocumentLayout>

namespace orvo {

/// The layout of plain text with a line distance of its own, which Qt's takes from the font alone.
class CodeLayout final : public QPlainTextDocumentLayout {
    Q_OBJECT

public:
    explicit CodeLayout(QTextDocument* document) : QPlainTextDocumentLayout(document) {}

    /// In dip, from one line to the next. Before anything is laid out anew.
    void setPitch(double pitch) { m_pitch = pitch; }
    double pitch() const { return m_pitch; }

    QRectF blockBoundingRect(const QTextBlock& block) const override;

private:
    double m_pitch = 0;
};

}  // namespace orvo
