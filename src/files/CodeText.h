#pragma once

#include <QByteArray>
#include <QHash>
#include <QString>

#include <optional>

namespace orvo {

/// A text as an editor that knows only line feeds holds it, and what must be remembered to give it back
/// unit for unit: a byte order mark, how each line ends, and where an overlong line was parted only to be
/// shown.
///
/// An editor's line is what lies between two line feeds. Lines keep their ends through changes; new ones end
/// as most of the text does. A text that comes back by undoing has the ends it had.
class CodeText {
public:
    /// A line of more units is parted into editor's lines of `pieceLength`, and its text is not coloured.
    static constexpr qsizetype longestLine = 20'000;
    static constexpr qsizetype pieceLength = 4'000;

    explicit CodeText(const QString& text = {});

    /// What the editor shows.
    const QString& lines() const { return m_lines; }
    /// What stands in the file.
    QString text() const;
    /// The person has changed what the editor shows.
    void setLines(const QString& lines);
    /// Another text in place of this one, which may be undone.
    void replaceBy(const CodeText& next);
    /// `lines` is the result of putting `inserted` in at its editor's line `first`.
    void insertParted(const QString& lines, const CodeText& inserted, qsizetype first);

    /// Whether some line is longer than `longestLine`.
    bool hasLongLine() const { return m_hasLongLine; }
    /// Whether the editor's line with this index, from 0, goes on the one before it.
    bool isContinuation(qsizetype index) const;
    /// The number, from 1, of the line that the editor's line with this index begins or belongs to.
    qsizetype numberOf(qsizetype index) const;
    /// The index of the editor's line that begins the line of this number; the last line for greater ones.
    qsizetype indexOf(qsizetype number) const;

private:
    void remember();
    /// `usual` is the end of lines that may still come when there are no ends to see.
    void adoptEnds(QByteArray ends, char usual);
    void noteLongLines();
    char usualEnd() const;
    QByteArray allEnds() const;

    QString m_lines;
    bool m_hasMark = false;
    bool m_hasLongLine = false;
    /// All ends are this one, and `m_ends` is empty; or the ends are those in `m_ends`, one for each line
    /// feed.
    std::optional<char> m_uniformEnd;
    QByteArray m_ends;
    /// The ends that belong to texts seen before, by the hash of their lines.
    QHash<size_t, QByteArray> m_seen;
};

}  // namespace orvo
