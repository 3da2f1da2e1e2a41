#include "platform/loadModule.h"

#include <QCoreApplication>
#include <QLibrary>
#include <QLoggingCategory>

namespace orvo {

QFunctionPointer loadModule(const char* name, const char* symbol) {
    QLibrary module(QStringLiteral("%1/" ORVO_MODULES "/%2.so")
                        .arg(QCoreApplication::applicationDirPath(), QString::fromLatin1(name)));
    module.setLoadHints(QLibrary::PreventUnloadHint);
    const QFunctionPointer function = module.resolve(symbol);
    if (!function) qWarning("%s", qUtf8Printable(module.errorString()));
    return function;
}

}  // namespace orvo
