#include "assistants/Provider.h"
#include "orvoctl/Console.h"
#include "orvoctl/Invocation.h"

#include <QJsonObject>

#include <array>

namespace orvo::ctl {
namespace {

Provider connector(const Invocation& invocation) {
    Provider provider;
    provider.id = invocation.value("id");
    provider.template_ = invocation.positional().first();
    return provider;
}

ExitStatus check(const Invocation& invocation) {
    if (invocation.positional().size() != 1) {
        return invocation.wrongUsage(QStringLiteral("Give exactly one launch command."));
    }
    const Provider provider = connector(invocation);
    const auto error = provider.templateError();
    if (invocation.format() == Invocation::Format::Json) {
        Invocation::printJson(QJsonDocument(
            QJsonObject{{QStringLiteral("error"), error ? QJsonValue(*error) : QJsonValue(QJsonValue::Null)},
                        {QStringLiteral("receivesTasks"), provider.receivesTasks()}}));
    } else if (error) {
        printError(*error);
    } else {
        print(provider.receivesTasks() ? "The launch command is fine and receives tasks.\n"
                                       : "The launch command is fine. It receives no tasks.\n");
    }
    return error ? ExitStatus::Failed : ExitStatus::Done;
}

std::optional<QString> readPrompt(const QString& argument) {
    QFile file(argument == QLatin1String("-") ? QStringLiteral("/dev/stdin")
                                              : QFile::decodeName(Invocation::path(argument).bytes()));
    if (!file.open(QIODevice::ReadOnly)) return std::nullopt;
    return QString::fromUtf8(file.readAll());
}

ExitStatus command(const Invocation& invocation) {
    if (invocation.positional().size() != 1) {
        return invocation.wrongUsage(QStringLiteral("Give exactly one launch command."));
    }
    if (!invocation.isSet("prompt-file")) {
        return invocation.wrongUsage(QStringLiteral("--prompt-file is missing."));
    }
    const Provider provider = connector(invocation);
    if (const auto error = provider.templateError()) return invocation.failed(*error);
    const auto prompt = readPrompt(invocation.value("prompt-file"));
    if (!prompt) {
        return invocation.failed(
            QStringLiteral("The file \"%1\" cannot be read.").arg(invocation.value("prompt-file")));
    }
    const QString line =
        invocation.isSet("batch") ? provider.batchCommand(*prompt) : provider.command(*prompt);
    if (invocation.format() == Invocation::Format::Json) {
        Invocation::printJson(QJsonDocument(QJsonObject{{QStringLiteral("command"), line}}));
    } else {
        print(line.toUtf8() + '\n');
    }
    return ExitStatus::Done;
}

constexpr Option idOption = {"id", "ID", "the connector's id; the built-in ids have rules of their own"};
constexpr std::array checkOptions = {idOption};
constexpr std::array commandOptions = {
    idOption,
    Option{"batch", nullptr, "the command line for a run that must finish by itself"},
    Option{"prompt-file", "FILE", "the file that holds the prompt; - reads standard input"},
};

}  // namespace

const Verb templateCheckVerb = {
    "template check",
    "TEMPLATE",
    "check a connector's launch command",
    "Says whether a connector may have TEMPLATE as its launch command, and whether it\n"
    "receives tasks with it. Put \"--\" before a TEMPLATE that begins with \"-\".",
    checkOptions,
    check};

const Verb templateCommandVerb = {
    "template command",
    "TEMPLATE",
    "show the command line made from a launch command",
    "Prints the command line that a connector with the launch command TEMPLATE would\n"
    "run for the prompt in a file. Nothing is started.",
    commandOptions,
    command};

}  // namespace orvo::ctl
