#pragma once

#include <QByteArray>
#include <QImage>
#include <QList>
#include <QSize>

#include <optional>

namespace orvo::heif {

/// Of every top-level picture; empty when the file cannot be read.
QList<std::optional<QSize>> frameSizes(const QByteArray& bytes);
/// The primary picture, upright; null when it does not decode.
QImage decode(const QByteArray& bytes);

}  // namespace orvo::heif
