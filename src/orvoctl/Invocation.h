#pragma once

#include "orvoctl/Verb.h"
#include "platform/FilePath.h"

#include <QCommandLineParser>
#include <QJsonDocument>
#include <QStringList>

#include <optional>

namespace orvo::ctl {

/// One call of a command: its arguments, and the ways to answer.
class Invocation {
public:
    enum class Format { Text, Json };

    /// `arguments` are what follows the command's name.
    Invocation(const Verb& verb, const QStringList& arguments);

    /// The sentence that says what is wrong with the options; nothing when all is well.
    std::optional<QString> usageError() const;
    bool wantsHelp() const;

    Format format() const;
    const QStringList& positional() const { return m_positional; }
    bool isSet(const char* option) const;
    /// The last value given; empty when there is none.
    QString value(const char* option) const;
    QStringList values(const char* option) const;
    /// A whole number from `minimum` to `maximum`; `otherwise` when the option is absent, nothing when the
    /// value is no such number.
    std::optional<int> number(const char* option, int minimum, int maximum, int otherwise) const;
    /// An argument as an absolute path, byte for byte as it was given.
    static FilePath path(const QString& argument);

    /// Says what is wrong with the call.
    ExitStatus wrongUsage(const QString& sentence) const;
    /// Says why the thing asked for did not succeed.
    ExitStatus failed(const QString& sentence) const;
    /// Prints the one JSON document of this call.
    static void printJson(const QJsonDocument& document);

private:
    const Verb& m_verb;
    QCommandLineParser m_parser;
    bool m_parsed;
    QStringList m_positional;
};

/// Runs the command that `arguments` (without the program's name) ask for.
ExitStatus runCommandLine(const QStringList& arguments);

}  // namespace orvo::ctl
