#pragma once

#include "platform/FilePath.h"

#include <QByteArray>
#include <QJsonObject>
#include <QList>
#include <QString>
#include <QStringList>

namespace orvo::ctl {

/// Writes to standard output.
void print(const QByteArray& text);
/// Writes a sentence to standard error, after the program's name.
void printError(const QString& sentence);

/// Whether colour and moving lines are wanted there (descriptor 1 or 2): on a terminal, unless NO_COLOR is
/// set.
bool wantsColor(int descriptor);

/// A text on one line for a terminal: what could move the cursor or start a sequence becomes a space.
QString oneLine(const QString& text);

/// Rows as columns two spaces apart, without blanks at the end of a line.
QByteArray columns(const QList<QStringList>& rows);

/// Puts a path under `key`, and its exact bytes in base64 under `key` + "Bytes" when they are not UTF-8.
void insertPath(QJsonObject& object, const QString& key, const FilePath& path);

}  // namespace orvo::ctl
