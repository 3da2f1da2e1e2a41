#include "platform/linux/processTable.h"

#include "platform/listFolder.h"

#include <cstdio>
#include <cstring>

#include <fcntl.h>
#include <unistd.h>

namespace orvo {
namespace {

/// The kernel's line about one process; empty when it is gone.
QByteArray statLine(const QByteArray& pid) {
    const int file = open(("/proc/" + pid + "/stat").constData(), O_RDONLY | O_CLOEXEC);
    if (file < 0) return {};
    QByteArray line(1024, '\0');
    const ssize_t size = read(file, line.data(), static_cast<std::size_t>(line.size()));
    close(file);
    line.truncate(std::max<ssize_t>(size, 0));
    return line;
}

}  // namespace

QList<ProcessEntry> processTable() {
    QList<ProcessEntry> table;
    const QList<QByteArray> names = listFolder(FilePath("/proc")).value_or(QList<QByteArray>());
    for (const QByteArray& name : names) {
        ProcessEntry entry;
        bool isProcess = false;
        entry.pid = name.toLongLong(&isProcess);
        if (!isProcess) continue;
        const QByteArray line = statLine(name);
        // The name in parentheses may hold anything, so the fields are counted from its end.
        const qsizetype nameStart = line.indexOf('(');
        const qsizetype nameEnd = line.lastIndexOf(')');
        if (nameStart < 0 || nameEnd < nameStart) continue;
        entry.name = line.mid(nameStart + 1, nameEnd - nameStart - 1);
        // The state is field 3, the start field 22.
        const QList<QByteArray> fields = line.mid(nameEnd + 1).simplified().split(' ');
        if (fields.size() < 20) continue;
        entry.state = fields[0].front();
        entry.parent = fields[1].toLongLong();
        entry.group = fields[2].toLongLong();
        entry.session = fields[3].toLongLong();
        entry.started = fields[19].toULongLong();
        table.append(entry);
    }
    return table;
}

}  // namespace orvo
