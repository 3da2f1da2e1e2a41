#pragma once

#include <QByteArray>
#include <QList>
#include <QSize>

#include <optional>

namespace orvo::tiff {

/// Of every page of a TIFF file, read in one walk from first to last; empty when these bytes are none. A page
/// that cannot be read has no size, and is the last one looked at.
QList<std::optional<QSize>> frameSizes(const QByteArray& bytes);

}  // namespace orvo::tiff
