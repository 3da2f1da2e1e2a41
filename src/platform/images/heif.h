#pragma once

#include <QByteArray>
#include <QImage>
#include <QList>
#include <QSize>

#include <optional>

namespace orvo::heif {

/// The bytes begin as an HEIC file does, or as its general kind, HEIF.
bool isHeif(const QByteArray& bytes);
/// Of every top-level picture; empty when the file cannot be read.
QList<std::optional<QSize>> frameSizes(const QByteArray& bytes);
/// The primary picture, upright; null when it does not decode.
QImage decode(const QByteArray& bytes);

}  // namespace orvo::heif
