// What a connector's launch command becomes: its check, and the command lines made from it.

#include "assistants/Provider.h"

#include <QCoreApplication>

#include <algorithm>

namespace orvo {
namespace {

constexpr QLatin1String placeholder("{prompt}");

// Two connectors ship without the placeholder, because their tools take a first task only through an option.
struct BareTool {
    QLatin1String id;
    QLatin1String template_;
    QLatin1String taskOption;
};
constexpr BareTool bareTools[] = {
    {QLatin1String("kimi"), QLatin1String("kimi"), QLatin1String("kimi --prompt ")},
    {QLatin1String("antigravity"), QLatin1String("agy"), QLatin1String("agy --prompt-interactive ")},
};

// How the built-in connectors run a task to its end without anybody answering.
struct BatchPrefix {
    QLatin1String id;
    QLatin1String prefix;
};
constexpr BatchPrefix batchPrefixes[] = {
    {QLatin1String("codex"), QLatin1String("codex exec --skip-git-repo-check --sandbox workspace-write ")},
    {QLatin1String("claude"), QLatin1String("claude --print ")},
    {QLatin1String("kimi"), QLatin1String("kimi --prompt ")},
    {QLatin1String("antigravity"), QLatin1String("agy --print ")},
};

const BareTool* bareTool(const Provider& provider) {
    const auto* const found = std::ranges::find_if(bareTools, [&](const BareTool& tool) {
        return provider.id == tool.id && provider.template_ == tool.template_;
    });
    return found == std::ranges::end(bareTools) ? nullptr : found;
}

// A shell separates words at these; line breaks at the ends stay, since they are part of the command.
QString withoutOuterBlanks(const QString& text) {
    const auto isBlank = [](QChar c) {
        return c == u' ' || c == u'\t';
    };
    qsizetype first = 0;
    qsizetype end = text.size();
    while (first < end && isBlank(text[first]))
        ++first;
    while (end > first && isBlank(text[end - 1]))
        --end;
    return text.mid(first, end - first);
}

}  // namespace

QString shellQuote(const QString& text) {
    QString quoted = text;
    quoted.replace(u'\'', QStringLiteral("'\\''"));
    return u'\'' + quoted + u'\'';
}

std::optional<QString> Provider::templateError() const {
    QChar openQuote;
    bool escaped = false;
    for (qsizetype i = 0; i < template_.size();) {
        if (QStringView(template_).sliced(i).startsWith(placeholder)) {
            if (!openQuote.isNull() || escaped) {
                return QCoreApplication::translate(
                    "orvo::Provider",
                    "Place {prompt} outside quotes and without a backslash. Orvo supplies the quotes.");
            }
            i += placeholder.size();
            continue;
        }
        const QChar c = template_[i++];
        if (escaped) {
            escaped = false;
        } else if (c == u'\\' && openQuote != u'\'') {
            escaped = true;
        } else if (!openQuote.isNull()) {
            if (c == openQuote) openQuote = QChar();
        } else if (c == u'\'' || c == u'"') {
            openQuote = c;
        }
    }
    if (openQuote.isNull()) return std::nullopt;
    return QCoreApplication::translate("orvo::Provider", "Close the quotation mark in this command.");
}

bool Provider::receivesTasks() const {
    return !templateError() && (template_.contains(placeholder) || bareTool(*this));
}

QString Provider::command(const QString& prompt) const {
    if (const BareTool* const tool = bareTool(*this)) {
        return prompt.isEmpty() ? template_ : tool->taskOption + shellQuote(prompt);
    }
    QString line = template_;
    line.replace(placeholder, prompt.isEmpty() ? QString() : shellQuote(prompt));
    return withoutOuterBlanks(line);
}

QString Provider::batchCommand(const QString& prompt) const {
    const auto builtIn = std::ranges::find(defaults(), id, &Provider::id);
    if (builtIn == defaults().end() || builtIn->template_ != template_) return command(prompt);
    const auto* const batch =
        std::ranges::find_if(batchPrefixes, [&](const BatchPrefix& entry) { return id == entry.id; });
    return batch == std::ranges::end(batchPrefixes) ? command(prompt) : batch->prefix + shellQuote(prompt);
}

}  // namespace orvo
