#include "orvoctl/RunRequest.h"

#include "assistants/Assistants.h"
#include "orvoctl/Invocation.h"
#include "workspace/taskRefusal.h"

#include <QFile>
#include <QProcess>

#include <algorithm>

namespace orvo::ctl {
namespace {

// What a model has selected when it is created; the selection is not stored.
const QStringList defaultAssistants = {QStringLiteral("claude"), QStringLiteral("codex")};

tl::unexpected<Error> refuse(const QString& sentence, ExitStatus status = ExitStatus::WrongUsage) {
    return failure(QStringLiteral("orvoctl"), sentence, static_cast<int>(status));
}

std::optional<Provider> parseConnector(const QString& text) {
    const auto equals = text.indexOf(u'=');
    if (equals < 1) return std::nullopt;
    Provider provider;
    provider.id = text.left(equals);
    provider.name = provider.id;
    provider.template_ = text.mid(equals + 1);
    provider.executable = QProcess::splitCommand(provider.template_).value(0);
    return provider;
}

QString readTask(const QString& argument) {
    if (argument != QLatin1String("-")) return argument.trimmed();
    QFile input;
    if (!input.open(stdin, QIODevice::ReadOnly)) return {};
    return QString::fromUtf8(input.readAll()).trimmed();
}

QStringList chosenIds(const Invocation& invocation, const RunRequest& request, const Assistants& assistants) {
    QStringList ids = invocation.values("assistant");
    if (ids.isEmpty()) {
        for (const Provider& connector : request.connectors)
            ids.append(connector.id);
    }
    if (!ids.isEmpty()) {
        ids.removeDuplicates();
        return ids;
    }
    std::ranges::copy_if(defaultAssistants, std::back_inserter(ids), [&](const QString& id) {
        const Provider provider = assistants.provider(id);
        return provider.id == id && assistants.isReady(provider);
    });
    return ids;
}

// Why `provider` cannot work on `task`.
std::optional<QString> refusal(const Assistants& assistants, const Provider& provider, const QString& task) {
    if (!assistants.isReady(provider)) {
        return QStringLiteral("%1 is not ready: %2.")
            .arg(provider.shownName(), assistants.connectionLabel(provider));
    }
    return taskRefusal(provider, task, provider.batchCommand(task));
}

}  // namespace

Result<RunRequest> RunRequest::parse(const Invocation& invocation) {
    RunRequest request;
    if (invocation.positional().size() != 1)
        return refuse(QStringLiteral("Give exactly one TASK (in quotes, or - to read standard input)."));
    for (const QString& text : invocation.values("connector")) {
        const auto connector = parseConnector(text);
        if (!connector)
            return refuse(QStringLiteral("--connector takes NAME=TEMPLATE, not \"%1\".").arg(text));
        request.connectors.append(*connector);
    }
    // A longer limit than a month is a mistake.
    const auto seconds = invocation.number("timeout", 1, 31 * 24 * 3600, 0);
    if (!seconds) return refuse(QStringLiteral("--timeout takes a number of seconds, at least 1."));
    request.timeout = std::chrono::seconds(*seconds);
    request.project = Invocation::path(invocation.value("project"));
    request.task = readTask(invocation.positional().first());
    if (request.task.isEmpty()) return refuse(QStringLiteral("The task is empty."));
    return request;
}

Result<QList<Provider>> chosenProviders(const Invocation& invocation, const RunRequest& request,
                                        const Assistants& assistants) {
    QList<Provider> chosen;
    for (const QString& id : chosenIds(invocation, request, assistants)) {
        const Provider provider = assistants.provider(id);
        if (provider.id != id) return refuse(QStringLiteral("There is no connector \"%1\".").arg(id));
        if (const auto why = refusal(assistants, provider, request.task))
            return refuse(*why, ExitStatus::Failed);
        chosen.append(provider);
    }
    if (chosen.isEmpty())
        return refuse(QStringLiteral("Select at least one installed assistant."), ExitStatus::Failed);
    return chosen;
}

}  // namespace orvo::ctl
