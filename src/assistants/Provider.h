#pragma once

#include <QList>
#include <QString>
#include <QUrl>

#include <optional>

namespace orvo {

/// Connector record of one command-line assistant, or of the plain shell. A value; identified by `id`.
struct Provider {
    QString id;
    QString name;
    QString subtitle;
    /// Symbol name, see resources/symbols.tsv.
    QString icon;
    QString colorHex;
    /// A command name, an absolute path, or a path that begins with "~".
    QString executable;
    /// Launch command; may contain "{prompt}" outside quotes.
    QString template_;
    QString documentation;

    bool operator==(const Provider&) const = default;

    /// The six built-in connectors in display order; the Terminal is always last.
    static const QList<Provider>& defaults();

    /// What it is called on the screen: its name, or where that is blank the file name of its executable.
    QString shownName() const;
    /// A web link with a host, or nothing.
    std::optional<QUrl> documentationURL() const;
    /// The sentence that says what is wrong with the launch command, or nothing.
    std::optional<QString> templateError() const;
    bool receivesTasks() const;
    /// The interactive command line.
    QString command(const QString& prompt) const;
    /// The command line for runs that must finish by themselves.
    QString batchCommand(const QString& prompt) const;
};

/// Wraps a text in apostrophes so that a shell reads it as one word of data.
QString shellQuote(const QString& text);

/// JSON array of records, keys as the field names ("template" for `template_`).
QByteArray encodeProviders(const QList<Provider>& providers);
/// Nothing when the data is not such a list (every key is required and must be a text). Ids are unique: where
/// a hand-edited list repeats one, the first record counts and the later ones are left out.
std::optional<QList<Provider>> decodeProviders(const QByteArray& json);

}  // namespace orvo
