#include "files/interpreter.h"

#include "assistants/Provider.h"

#include <algorithm>
#include <iterator>

namespace orvo {
namespace {

struct Interpreter {
    QLatin1String extension;
    QLatin1String prefix;
};
constexpr Interpreter interpreters[] = {
    {QLatin1String("js"), QLatin1String("node ")},
    {QLatin1String("mjs"), QLatin1String("node ")},
    {QLatin1String("cjs"), QLatin1String("node ")},
    {QLatin1String("swift"), QLatin1String("/usr/bin/swift ")},
    {QLatin1String("sh"), QLatin1String("/bin/bash ")},
    {QLatin1String("zsh"), QLatin1String("/bin/zsh ")},
    {QLatin1String("rb"), QLatin1String("ruby ")},
    {QLatin1String("applescript"), QLatin1String("/usr/bin/osascript ")},
};

/// What follows the last dot; nothing for a name that only begins with one.
QString extensionOf(const FilePath& file) {
    const QString name = file.displayName();
    const qsizetype dot = name.lastIndexOf(u'.');
    return dot > 0 ? name.mid(dot + 1).toLower() : QString();
}

/// One word of the shell's, whatever bytes the path has. A command is text, so those that are not UTF-8 are
/// written as escapes.
QString quoted(const FilePath& path) {
    const QByteArray& bytes = path.bytes();
    if (path.display().toUtf8() == bytes) return shellQuote(path.display());
    QString word = QStringLiteral("$'");
    for (const char byte : bytes) {
        const auto code = static_cast<unsigned char>(byte);
        if (code >= 0x80 || code < 0x20 || byte == '\'' || byte == '\\') {
            word += QStringLiteral("\\x%1").arg(uint{code}, 2, 16, QLatin1Char('0'));
        } else {
            word += QLatin1Char(byte);
        }
    }
    return word + u'\'';
}

}  // namespace

std::optional<QString> interpreterCommand(const FilePath& file, const std::optional<FilePath>& python3) {
    const QString extension = extensionOf(file);
    if (extension == QLatin1String("py")) {
        return (python3 ? quoted(*python3) : QStringLiteral("python3")) + u' ' + quoted(file);
    }
    const auto* const found = std::ranges::find(interpreters, extension, &Interpreter::extension);
    if (found == std::end(interpreters)) return std::nullopt;
    return found->prefix + quoted(file);
}

}  // namespace orvo
