#include "platform/loadModule.h"

#include <QLibrary>
#include <QLoggingCategory>

#include <filesystem>
#include <system_error>

namespace orvo {

QFunctionPointer loadModule(const char* name, const char* symbol) {
    // Asked of the system: Qt knows it only where there is an application object.
    std::error_code unknown;
    const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", unknown);
    QLibrary module(
        QStringLiteral("%1/" ORVO_MODULES "/%2.so")
            .arg(QString::fromStdString(program.parent_path().string()), QString::fromLatin1(name)));
    module.setLoadHints(QLibrary::PreventUnloadHint);
    const QFunctionPointer function = module.resolve(symbol);
    if (!function) qWarning("%s", qUtf8Printable(module.errorString()));
    return function;
}

}  // namespace orvo
