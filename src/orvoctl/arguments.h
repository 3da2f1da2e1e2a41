#pragma once

#include <QByteArray>
#include <QString>

namespace orvo::ctl {

/// An argument of the process as text, without loss: a byte that is not UTF-8 becomes a lone low surrogate
/// (U+DC80 to U+DCFF), which no valid text has.
QString textOfArgument(const QByteArray& bytes);

/// The bytes that such a text came from.
QByteArray bytesOfArgument(const QString& text);

}  // namespace orvo::ctl
