#include "orvoctl/unifiedDiff.h"

#include "orvoctl/Console.h"
#include "platform/saveAtomically.h"
#include "team_runs/Preview.h"

#include <QProcess>
#include <QTemporaryDir>

namespace orvo::ctl {
namespace {

tl::unexpected<Error> refusal(const QString& sentence) {
    return failure(QStringLiteral("orvoctl"), sentence);
}

// The side's content; empty where there is no such file, nothing where it is not shown.
std::optional<QByteArray> side(const FilePath& root, const QByteArray& path,
                               const std::optional<QByteArray>& hash) {
    if (!hash) return QByteArray();
    return RunFiles::content(root, path, RunFiles::previewLimit - 1);
}

// A name that diff's own output format has no room for is shown without its control characters.
QString label(const char* prefix, const QByteArray& path, const std::optional<QByteArray>& hash) {
    if (!hash) return QStringLiteral("/dev/null");
    return QLatin1String(prefix) + oneLine(QString::fromUtf8(path));
}

}  // namespace

Result<QByteArray> unifiedDiff(const FileChange& change, const FilePath& baseline, const FilePath& result) {
    const auto before = side(baseline, change.path, change.before);
    const auto after = side(result, change.path, change.after);
    const QString oldLabel = label("a/", change.path, change.before);
    const QString newLabel = label("b/", change.path, change.after);
    if (!before || !after)
        return QStringLiteral("Files %1 and %2 differ; too large to be shown.\n")
            .arg(oldLabel, newLabel)
            .toUtf8();

    // The contents as they were read, once and not through links; the copies belong to the assistants.
    const QTemporaryDir folder;
    const FilePath oldFile = FilePath::fromString(folder.filePath(QStringLiteral("before")));
    const FilePath newFile = FilePath::fromString(folder.filePath(QStringLiteral("after")));
    if (const auto saved = saveAtomically(oldFile, *before); !saved) return tl::unexpected(saved.error());
    if (const auto saved = saveAtomically(newFile, *after); !saved) return tl::unexpected(saved.error());

    QProcess diff;
    diff.start(QStringLiteral("diff"),
               {QStringLiteral("-u"), QStringLiteral("--label"), oldLabel, QStringLiteral("--label"),
                newLabel, QStringLiteral("--"), oldFile.display(), newFile.display()});
    constexpr int limit = 60'000;
    if (!diff.waitForFinished(limit)) {
        return refusal(QStringLiteral("The program \"diff\" could not be run: %1.").arg(diff.errorString()));
    }
    constexpr int differ = 1;
    QByteArray text = diff.readAllStandardOutput();
    if (diff.exitCode() > differ) {
        return refusal(QString::fromLocal8Bit(diff.readAllStandardError()).trimmed());
    }
    // Equal contents: what differs is the mode.
    if (text.isEmpty()) {
        return QStringLiteral("%1: mode %2 -> %3\n")
            .arg(newLabel, QString::number(change.beforeMode.value_or(0), 8),
                 QString::number(change.afterMode.value_or(0), 8))
            .toUtf8();
    }
    return text;
}

QByteArray shownOnTerminal(const QByteArray& diff, DiffColor color) {
    QByteArray shown;
    for (const QByteArray& line : diff.split('\n')) {
        QString text = QString::fromUtf8(line);
        for (QChar& c : text) {
            const bool isControl = c.category() == QChar::Other_Control && c != u'\t';
            if (isControl || c.category() == QChar::Other_Format) c = QChar(QChar::ReplacementCharacter);
        }
        const char* start = "";
        if (color == DiffColor::ByLine) {
            if (text.startsWith(u"+++") || text.startsWith(u"---"))
                start = "\033[1m";
            else if (text.startsWith(u'+'))
                start = "\033[32m";
            else if (text.startsWith(u'-'))
                start = "\033[31m";
            else if (text.startsWith(u"@@"))
                start = "\033[36m";
        }
        shown += start + text.toUtf8() + (*start ? "\033[0m\n" : "\n");
    }
    shown.chop(1);
    return shown;
}

}  // namespace orvo::ctl
