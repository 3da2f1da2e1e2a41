#include "team_runs/Preview.h"

#include "platform/readFile.h"
#include "team_runs/changePath.h"
#include "team_runs/folderAccess.h"

#include <QCoreApplication>
#include <QStringDecoder>

namespace orvo::RunFiles {

QString preview(const FilePath& root, const QByteArray& path) {
    const auto bytes = content(root, path, previewLimit - 1);
    if (!bytes) return previewPlaceholder();
    // A byte order mark is a part of the text like any other.
    QStringDecoder decoder(QStringDecoder::Utf8,
                           QStringDecoder::Flag::Stateless | QStringDecoder::Flag::ConvertInitialBom);
    QString text = decoder.decode(*bytes);
    return decoder.hasError() ? previewPlaceholder() : text;
}

QString previewPlaceholder() {
    return QCoreApplication::translate("RunFiles", "File absent, binary, or too large for the text preview.");
}

std::optional<QByteArray> content(const FilePath& root, const QByteArray& path, qint64 limit) {
    const Result<QByteArray> checked = checkedPath(path);
    if (!checked) return std::nullopt;
    const auto rootFolder = openRoot(root);
    if (!rootFolder) return std::nullopt;
    const auto folder = openFolderBeneath(rootFolder->number(), parentPath(*checked));
    if (!folder) return std::nullopt;
    struct stat status{};
    const auto file = openRegularFile(folder->number(), fileName(*checked), status);
    if (!file) return std::nullopt;
    const Result<QByteArray> bytes = readFile(file->number(), limit);
    if (!bytes) return std::nullopt;
    return *bytes;
}

}  // namespace orvo::RunFiles
