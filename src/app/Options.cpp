#include "app/Options.h"

#include <QCoreApplication>
#include <QDir>

namespace orvo {
namespace {

QString tr(const char* text) {
    return QCoreApplication::translate("Options", text);
}

tl::unexpected<Error> refusal(const QString& message) {
    return failure(QStringLiteral("Orvo"), message);
}

FilePath resolved(const QByteArray& path, const FilePath& currentFolder) {
    return path.startsWith('/') ? FilePath(path) : currentFolder.child(path);
}

}  // namespace

Result<Options> parseOptions(const QList<QByteArray>& arguments, const FilePath& currentFolder) {
    Options options;
    bool optionsEnded = false;
    for (qsizetype index = 0; index < arguments.size(); ++index) {
        const QByteArray& argument = arguments[index];
        const auto folderAfter = [&](std::optional<FilePath>& target) {
            if (index + 1 >= arguments.size() || arguments[index + 1].isEmpty()) return false;
            target = resolved(arguments[++index], currentFolder);
            return true;
        };
        if (!optionsEnded && argument.startsWith('-') && argument != "-") {
            bool complete = true;
            if (argument == "--")
                optionsEnded = true;
            else if (argument == "--help" || argument == "-h")
                options.request = Options::Request::Help;
            else if (argument == "--version")
                options.request = Options::Request::Version;
            else if (argument == "--workspace")
                complete = folderAfter(options.workspace);
            else if (argument == "--capture")
                complete = folderAfter(options.capture);
            else
                return refusal(tr("There is no option %1.").arg(QString::fromUtf8(argument)));
            if (!complete) return refusal(tr("Name a folder after %1.").arg(QString::fromUtf8(argument)));
            continue;
        }
        if (argument.isEmpty()) return refusal(tr("The name of a project folder is empty."));
        if (options.workspace) return refusal(tr("Name only one project folder."));
        options.workspace = resolved(argument, currentFolder);
    }
    return options;
}

QString optionsHelp() {
    return tr(
        "Usage: orvo [options] [folder]\n"
        "\n"
        "Opens the Orvo AI workspace, in the given project folder if there is one.\n"
        "\n"
        "  --workspace FOLDER  open this project folder for this run only\n"
        "  --capture FOLDER    save a picture of each of six pages into this folder, then quit\n"
        "  --version           print the version\n"
        "  --help              print this text\n");
}

}  // namespace orvo
