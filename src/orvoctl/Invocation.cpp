#include "orvoctl/Invocation.h"

#include "orvoctl/Console.h"
#include "orvoctl/arguments.h"

#include <QCoreApplication>
#include <QJsonObject>

#include <unistd.h>

#include <algorithm>
#include <array>
#include <vector>

namespace orvo::ctl {
namespace {

// Understood by every command.
constexpr std::array commonOptions = {
    Option{"json", nullptr, "print exactly one JSON document and nothing else"},
    Option{"help", nullptr, "show this help"},
};

QString text(const char* utf8) {
    return QString::fromUtf8(utf8);
}

QString optionLabel(const Option& option) {
    const QString name = QStringLiteral("--") + text(option.name);
    return option.value ? name + u' ' + text(option.value) : name;
}

QString helpLine(const QString& label, qsizetype width, const char* description) {
    return QStringLiteral("  ") + label.leftJustified(width + 2) + text(description) + u'\n';
}

QString helpOf(const Verb& verb) {
    QString help =
        QStringLiteral("Usage: orvoctl %1 [options] %2").arg(text(verb.name), text(verb.arguments));
    help =
        help.trimmed() + QStringLiteral("\n\n") + text(verb.description) + QStringLiteral("\n\nOptions:\n");
    std::vector<Option> options(verb.options.begin(), verb.options.end());
    options.insert(options.end(), commonOptions.begin(), commonOptions.end());
    qsizetype width = 0;
    for (const Option& option : options)
        width = std::max(width, optionLabel(option).size());
    for (const Option& option : options) {
        help += helpLine(optionLabel(option), width, option.description);
    }
    return help;
}

QString programHelp() {
    QString help = QStringLiteral(
        "Usage: orvoctl COMMAND [options] [arguments]\n\n"
        "Runs AI coding assistants in your projects without a window.\n\nCommands:\n");
    qsizetype width = 0;
    for (const Verb* verb : allVerbs())
        width = std::max(width, text(verb->name).size());
    for (const Verb* verb : allVerbs()) {
        help += helpLine(text(verb->name), width, verb->summary);
    }
    return help + QStringLiteral(
                      "\nOptions:\n  --help     show this help, or that of a command\n"
                      "  --version  show the version\n\n"
                      "Exit status: 0 done, 1 not successful, 2 wrong usage, 130 interrupted.\n");
}

/// The command whose name the arguments begin with, and how many words that name has.
const Verb* findVerb(const QStringList& arguments, qsizetype& words) {
    for (const Verb* verb : allVerbs()) {
        const QStringList name = text(verb->name).split(u' ');
        if (arguments.mid(0, name.size()) == name) {
            words = name.size();
            return verb;
        }
    }
    return nullptr;
}

ExitStatus wrongCall(const QString& sentence, const QString& help) {
    printError(sentence + QStringLiteral("\nTry \"%1\".").arg(help));
    return ExitStatus::WrongUsage;
}

ExitStatus unknownCommand(const QStringList& arguments) {
    const QString help = QStringLiteral("orvoctl --help");
    if (arguments.isEmpty()) return wrongCall(QStringLiteral("A command is missing."), help);
    const QString& word = arguments.first();
    for (const Verb* verb : allVerbs()) {
        if (text(verb->name).startsWith(word + u' ')) {
            return wrongCall(
                QStringLiteral("\"%1\" needs a second word, such as \"%2\".").arg(word, text(verb->name)),
                help);
        }
    }
    const QString kind = word.startsWith(u'-') ? QStringLiteral("option") : QStringLiteral("command");
    return wrongCall(QStringLiteral("There is no %1 \"%2\".").arg(kind, word), help);
}

}  // namespace

Invocation::Invocation(const Verb& verb, const QStringList& arguments) : m_verb(verb) {
    const auto add = [this](const Option& option) {
        m_parser.addOption(QCommandLineOption(text(option.name), text(option.description),
                                              option.value ? text(option.value) : QString()));
    };
    std::ranges::for_each(verb.options, add);
    std::ranges::for_each(commonOptions, add);
    m_parser.setSingleDashWordOptionMode(QCommandLineParser::ParseAsLongOptions);
    m_parsed = m_parser.parse(QStringList(QStringLiteral("orvoctl")) + arguments);
    m_positional = m_parser.positionalArguments();
}

std::optional<QString> Invocation::usageError() const {
    if (m_parsed) return std::nullopt;
    return m_parser.errorText();
}

bool Invocation::wantsHelp() const {
    return m_parser.isSet(QStringLiteral("help"));
}

Invocation::Format Invocation::format() const {
    return m_parser.isSet(QStringLiteral("json")) ? Format::Json : Format::Text;
}

bool Invocation::isSet(const char* option) const {
    return m_parser.isSet(text(option));
}

QString Invocation::value(const char* option) const {
    return m_parser.value(text(option));
}

QStringList Invocation::values(const char* option) const {
    return m_parser.values(text(option));
}

std::optional<int> Invocation::number(const char* option, int minimum, int maximum, int otherwise) const {
    if (!isSet(option)) return otherwise;
    bool ok = false;
    const int number = value(option).toInt(&ok);
    return ok && number >= minimum && number <= maximum ? std::optional(number) : std::nullopt;
}

FilePath Invocation::path(const QString& argument) {
    const QByteArray bytes = bytesOfArgument(argument);
    if (bytes.startsWith('/')) return FilePath(bytes);
    std::array<char, 4096> current{};
    if (!getcwd(current.data(), current.size())) return FilePath(bytes);
    return bytes.isEmpty() || bytes == "." ? FilePath(current.data()) : FilePath(current.data()).child(bytes);
}

ExitStatus Invocation::wrongUsage(const QString& sentence) const {
    return wrongCall(sentence, QStringLiteral("orvoctl %1 --help").arg(text(m_verb.name)));
}

ExitStatus Invocation::failed(const QString& sentence) const {
    if (format() == Format::Json) {
        printJson(
            QJsonDocument(QJsonObject{{QStringLiteral("ok"), false}, {QStringLiteral("message"), sentence}}));
    } else {
        printError(sentence);
    }
    return ExitStatus::Failed;
}

void Invocation::printJson(const QJsonDocument& document) {
    print(document.toJson(QJsonDocument::Indented));
}

ExitStatus runCommandLine(const QStringList& arguments) {
    if (arguments.value(0) == QLatin1String("--version")) {
        print("orvoctl " ORVO_VERSION "\n");
        return ExitStatus::Done;
    }
    if (arguments.value(0) == QLatin1String("--help")) {
        print(programHelp().toUtf8());
        return ExitStatus::Done;
    }
    qsizetype words = 0;
    const Verb* const verb = findVerb(arguments, words);
    if (!verb) return unknownCommand(arguments);

    const Invocation invocation(*verb, arguments.mid(words));
    if (invocation.wantsHelp()) {
        print(helpOf(*verb).toUtf8());
        return ExitStatus::Done;
    }
    if (const auto error = invocation.usageError()) return invocation.wrongUsage(*error);
    return verb->run(invocation);
}

}  // namespace orvo::ctl
