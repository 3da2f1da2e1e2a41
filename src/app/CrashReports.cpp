#include "app/CrashReports.h"

#include "platform/Dialogs.h"
#include "platform/listFolder.h"

#include <algorithm>
#include <cstdio>

#include <unistd.h>

namespace orvo {
namespace {

/// Seconds since 1970 in front, so that names sort by time until 2286.
QList<QByteArray> oldestFirst(const FilePath& folder) {
    QList<QByteArray> names = listFolder(folder).value_or(QList<QByteArray>());
    names.removeIf([](const QByteArray& name) {
        return !name.startsWith(CrashReports::prefix) || !name.endsWith(CrashReports::toldSuffix);
    });
    std::ranges::sort(names);
    return names;
}

}  // namespace

void CrashReports::tell(Dialogs& dialogs) const {
    QList<QByteArray> names = oldestFirst(m_folder);
    // What has not been told of yet is the news, whatever the clock said when it was written.
    std::ranges::stable_partition(names, [](const QByteArray& name) { return !name.endsWith(untoldSuffix); });
    while (names.size() > maximumKept)
        unlink(m_folder.child(names.takeFirst()).bytes().constData());
    std::optional<FilePath> latest;
    for (QByteArray name : std::as_const(names)) {
        if (!name.endsWith(untoldSuffix)) continue;
        const FilePath untold = m_folder.child(name);
        name.chop(static_cast<qsizetype>(std::size(untoldSuffix)) - 1);
        const FilePath told = m_folder.child(name + toldSuffix);
        // Before it is said: a fault while it is being said must not say it for ever.
        if (std::rename(untold.bytes().constData(), told.bytes().constData()) == 0) latest = told;
    }
    if (!latest) return;
    dialogs.alert(
        {.message = tr("Orvo AI ended unexpectedly."),
         .informativeText = tr("A report without any of your text is in %1. It helps to find the fault when "
                               "you send it along with a description of what you did.")
                                .arg(latest->display()),
         .buttons = {tr("OK")}});
}

}  // namespace orvo
