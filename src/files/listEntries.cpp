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

Result<QList<FileEntry>> readEntries(const FilePath& folder) {
    const Result<QList<FolderItem>> items = listFolderItems(folder);
    if (!items) return tl::unexpected<Error>(items.error());
    QList<FileEntry> entries;
    entries.reserve(items->size());
    for (const FolderItem& item : *items) {
        if (item.name.startsWith('.')) continue;
        const FilePath path = folder.child(item.name);
        entries.append({path, isFolder(path, item.kind)});
    }
    return entries;
}

void sortEntries(QList<FileEntry>& entries) {
    if (entries.size() < 2) return;
    const QCollator collator = naturalOrder();
    std::vector<Row> rows;
    rows.reserve(static_cast<std::size_t>(entries.size()));
    for (FileEntry& entry : entries) {
        QCollatorSortKey key = collator.sortKey(entry.url.displayName());
        rows.push_back({std::move(entry), std::move(key)});
    }
    std::ranges::sort(rows, standsBefore);
    std::ranges::transform(rows, entries.begin(), [](Row& row) { return std::move(row.entry); });
}

Result<QList<FileEntry>> listEntries(const FilePath& folder) {
    Result<QList<FileEntry>> entries = readEntries(folder);
    if (entries) sortEntries(*entries);
    return entries;
}

}  // namespace orvo
