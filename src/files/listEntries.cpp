#include "files/listEntries.h"

#include "platform/listFolder.h"

#include <QCollator>

#include <algorithm>
#include <vector>

#include <sys/stat.h>

namespace orvo {
namespace {

struct Row {
    FileEntry entry;
    QCollatorSortKey key;
};

bool isFolder(const FilePath& path, FolderItem::Kind kind) {
    if (kind != FolderItem::Kind::Unknown) return kind == FolderItem::Kind::Folder;
    struct stat status{};
    return stat(path.bytes().constData(), &status) == 0 && S_ISDIR(status.st_mode);
}

QCollator naturalOrder() {
    // The C locale compares code by code, without looking at numbers.
    const QLocale person;
    QCollator collator(person.language() == QLocale::C ? QLocale(QLocale::English) : person);
    collator.setNumericMode(true);
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    return collator;
}

bool standsBefore(const Row& left, const Row& right) {
    if (left.entry.isDirectory != right.entry.isDirectory) return left.entry.isDirectory;
    if (const int order = left.key.compare(right.key); order != 0) return order < 0;
    // Names that differ in case only, say; the list must not depend on the order the system gives.
    return left.entry.url < right.entry.url;
}

}  // namespace

Result<QList<FileEntry>> listEntries(const FilePath& folder) {
    const Result<QList<FolderItem>> items = listFolderItems(folder);
    if (!items) return tl::unexpected<Error>(items.error());
    const QCollator collator = naturalOrder();
    std::vector<Row> rows;
    rows.reserve(static_cast<std::size_t>(items->size()));
    for (const FolderItem& item : *items) {
        if (item.name.startsWith('.')) continue;
        const FilePath path = folder.child(item.name);
        rows.push_back({{path, isFolder(path, item.kind)}, collator.sortKey(QString::fromUtf8(item.name))});
    }
    std::ranges::sort(rows, standsBefore);
    QList<FileEntry> entries;
    entries.reserve(static_cast<qsizetype>(rows.size()));
    for (Row& row : rows)
        entries.append(std::move(row.entry));
    return entries;
}

}  // namespace orvo
