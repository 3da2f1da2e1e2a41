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

QString onlyOneProject() {
    return tr("Name only one project folder.");
}

FilePath resolved(const QByteArray& path, const FilePath& currentFolder) {
    return path.startsWith('/') ? FilePath(path) : currentFolder.child(path);
}

/// Where the folder that follows this option goes; null for an option without one.
std::optional<FilePath>* folderOption(const QByteArray& argument, Options& options) {
    if (argument == "--workspace") return &options.workspace;
    if (argument == "--capture") return &options.capture;
    if (argument == "--test-output") return &options.testOutput;
    return nullptr;
}

/// False when there is no such option.
bool applySwitch(const QByteArray& argument, Options& options) {
    if (argument == "--help" || argument == "-h")
        options.request = Options::Request::Help;
    else if (argument == "--version")
        options.request = Options::Request::Version;
    else if (argument == "--self-test")
        options.request = Options::Request::SelfTest;
    else if (argument == "--new-terminal")
        options.errand = Options::Errand::NewTerminal;
    else if (argument == "--quick-draft")
        options.errand = Options::Errand::QuickDraft;
    else
        return false;
    return true;
}

}  // namespace

Result<Options> parseOptions(const QList<QByteArray>& arguments, const FilePath& currentFolder) {
    Options options;
    bool optionsEnded = false;
    for (qsizetype index = 0; index < arguments.size(); ++index) {
        const QByteArray& argument = arguments[index];
        if (!optionsEnded && argument == "--") {
            optionsEnded = true;
            continue;
        }
        if (optionsEnded || !argument.startsWith('-') || argument == "-") {
            if (argument.isEmpty()) return refusal(tr("The name of a project folder is empty."));
            if (options.workspace) return refusal(onlyOneProject());
            options.workspace = resolved(argument, currentFolder);
            continue;
        }
        if (std::optional<FilePath>* const folder = folderOption(argument, options)) {
            if (index + 1 >= arguments.size() || arguments[index + 1].isEmpty()) {
                return refusal(tr("Name a folder after %1.").arg(QString::fromUtf8(argument)));
            }
            if (folder == &options.workspace && *folder) return refusal(onlyOneProject());
            if (*folder) return refusal(tr("Give %1 only once.").arg(QString::fromUtf8(argument)));
            *folder = resolved(arguments[++index], currentFolder);
            continue;
        }
        if (!applySwitch(argument, options)) {
            return refusal(tr("There is no option %1.").arg(QString::fromUtf8(argument)));
        }
    }
    return options;
}

QString optionsHelp() {
    return tr(
        "Usage: orvo [options] [folder]\n"
        "\n"
        "Opens the Orvo AI workspace, in the given project folder if there is one. A window that is\n"
        "open already comes to the front instead.\n"
        "\n"
        "  --workspace FOLDER    open this project folder for this run only\n"
        "  --new-terminal        start a terminal session\n"
        "  --quick-draft         open the companion's quick draft\n"
        "  --capture FOLDER      save a picture of each of six pages into this folder, then quit\n"
        "  --self-test           check offline what this computer offers, without a window\n"
        "  --test-output FOLDER  where the self-test leaves its report\n"
        "  --version             print the version\n"
        "  --help                print this text\n");
}

}  // namespace orvo
