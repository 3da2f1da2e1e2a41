#include "assistants/Assistants.h"
#include "orvoctl/Console.h"
#include "orvoctl/Interrupts.h"
#include "orvoctl/Invocation.h"
#include "orvoctl/StoredState.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QJsonArray>
#include <QJsonObject>

#include <unistd.h>

#include <array>

namespace orvo::ctl {
namespace {

/// False when interrupted.
bool waitForChecks(Assistants& assistants) {
    Interrupts interrupts;
    QEventLoop loop;
    QObject::connect(&interrupts, &Interrupts::interrupted, &loop, [&loop] { loop.exit(1); });
    QObject::connect(&assistants, &Assistants::checkingConnectionsChanged, &loop, [&] {
        if (!assistants.checkingConnections()) loop.exit(0);
    });
    assistants.checkConnections();
    return loop.exec() == 0;
}

QJsonArray asJson(const Assistants& assistants) {
    QJsonArray list;
    for (const Provider& provider : assistants.providers()) {
        QJsonObject object{{QStringLiteral("id"), provider.id},
                           {QStringLiteral("name"), provider.name},
                           {QStringLiteral("executable"), provider.executable},
                           {QStringLiteral("template"), provider.template_},
                           {QStringLiteral("path"), QJsonValue::Null},
                           {QStringLiteral("ready"), assistants.isReady(provider)},
                           {QStringLiteral("receivesTasks"), provider.receivesTasks()},
                           {QStringLiteral("status"), assistants.connectionLabel(provider)}};
        const auto path = assistants.available().constFind(provider.id);
        if (path != assistants.available().constEnd()) insertPath(object, QStringLiteral("path"), *path);
        list.append(object);
    }
    return list;
}

void printTable(const Assistants& assistants) {
    QList<QStringList> rows;
    for (const Provider& provider : assistants.providers()) {
        rows.append({oneLine(provider.id), oneLine(provider.shownName()),
                     assistants.connectionLabel(provider),
                     oneLine(assistants.available().value(provider.id).display())});
    }
    QByteArrayList lines = columns(rows).split('\n');
    for (qsizetype i = 0; wantsColor(STDOUT_FILENO) && i < rows.size(); ++i) {
        if (!assistants.isReady(assistants.providers().at(i))) lines[i] = "\033[2m" + lines[i] + "\033[0m";
    }
    print(lines.join('\n'));
}

ExitStatus providers(const Invocation& invocation) {
    if (!invocation.positional().isEmpty()) {
        return invocation.wrongUsage(QStringLiteral("\"providers\" takes no arguments."));
    }
    StoredState state;
    Assistants& assistants = state.assistants();
    if (invocation.isSet("check") && !waitForChecks(assistants)) return ExitStatus::Interrupted;
    if (invocation.format() == Invocation::Format::Json) {
        Invocation::printJson(QJsonDocument(asJson(assistants)));
    } else {
        printTable(assistants);
    }
    return ExitStatus::Done;
}

constexpr std::array options = {
    Option{"check", nullptr, "ask the installed tools whether they are signed in (sends no AI request)"},
};

}  // namespace

const Verb providersVerb = {
    "providers",
    "",
    "list the connectors and what is installed",
    "Lists the connectors with the path of their program when it is installed, and their\n"
    "status.",
    options,
    providers};

}  // namespace orvo::ctl
