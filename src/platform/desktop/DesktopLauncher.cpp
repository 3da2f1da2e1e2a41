#include "platform/desktop/DesktopLauncher.h"

#include <QDesktopServices>

#include <sys/stat.h>

namespace orvo {
namespace {

tl::unexpected<Error> refusal(const QString& sentence) {
    return failure(QStringLiteral("OrvoLauncher"), sentence);
}

}  // namespace

Result<void> DesktopLauncher::openFolder(const FilePath& folder) {
    struct stat status{};
    if (stat(folder.bytes().constData(), &status) != 0 || !S_ISDIR(status.st_mode)) {
        return refusal(tr("This folder is no longer available."));
    }
    // Built from the bytes, because QUrl::fromLocalFile would lose a name that is not UTF-8.
    const QUrl address =
        QUrl::fromEncoded("file://" + folder.bytes().toPercentEncoding("/"), QUrl::StrictMode);
    if (QDesktopServices::openUrl(address)) return {};
    return refusal(tr("No program on this desktop opens folders."));
}

Result<void> DesktopLauncher::openAddress(const QUrl& address) {
    const bool isWeb =
        address.scheme() == QLatin1String("https") || address.scheme() == QLatin1String("http");
    if (!address.isValid() || !isWeb || address.host().isEmpty()) {
        return refusal(tr("This is not a web address."));
    }
    if (QDesktopServices::openUrl(address)) return {};
    return refusal(tr("No program on this desktop opens web addresses."));
}

}  // namespace orvo
