#include "platform/extendedAttributes.h"

#include <QByteArray>
#include <QList>

#include <sys/xattr.h>

namespace orvo {
namespace {

bool isWithheld(const QByteArray& attribute) {
    return attribute == "security.capability" || attribute == "security.ima" || attribute == "security.evm";
}

}  // namespace

void copyAttributes(int from, int to) {
    const ssize_t size = flistxattr(from, nullptr, 0);
    if (size <= 0) return;
    QByteArray names(static_cast<qsizetype>(size), Qt::Uninitialized);
    const ssize_t listed = flistxattr(from, names.data(), static_cast<size_t>(names.size()));
    if (listed <= 0) return;
    names.truncate(static_cast<qsizetype>(listed) - 1);
    for (const QByteArray& name : names.split('\0')) {
        if (isWithheld(name)) continue;
        const ssize_t length = fgetxattr(from, name.constData(), nullptr, 0);
        if (length < 0) continue;
        QByteArray value(static_cast<qsizetype>(length), Qt::Uninitialized);
        const ssize_t got =
            fgetxattr(from, name.constData(), value.data(), static_cast<size_t>(value.size()));
        if (got < 0) continue;
        // Some belong to the system alone; those it keeps to itself.
        [[maybe_unused]] const int kept =
            fsetxattr(to, name.constData(), value.constData(), static_cast<size_t>(got), 0);
    }
}

}  // namespace orvo
