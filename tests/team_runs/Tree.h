#pragma once

#include "platform/FilePath.h"

#include <QByteArray>
#include <QMap>
#include <QTemporaryDir>

#include <optional>

namespace orvo::test {

/// Bytes without an order; the same for the same seed.
QByteArray noise(qsizetype size, quint32 seed);

/// A private temporary folder with shorthands for what tests put into folders. Names are bytes. Failures of
/// the shorthands themselves end the test program: nothing after them would mean anything.
class Tree {
public:
    /// Memory holds the tree of tests that synchronise often; where it is missing, a disk does.
    enum class Place { Disk, Memory };

    explicit Tree(Place place = Place::Disk);
    ~Tree();
    Tree(const Tree&) = delete;
    Tree& operator=(const Tree&) = delete;

    FilePath path(const QByteArray& relative = {}) const;

    /// Writes a file and the folders above it.
    void write(const QByteArray& relative, const QByteArray& content, int mode = 0644) const;
    void makeFolder(const QByteArray& relative) const;
    void link(const QByteArray& relative, const QByteArray& target) const;
    void pipe(const QByteArray& relative) const;
    void remove(const QByteArray& relative) const;
    /// Makes a file of `size` zero bytes that takes no room.
    void sparse(const QByteArray& relative, qint64 size) const;

    std::optional<QByteArray> read(const QByteArray& relative) const;
    int mode(const QByteArray& relative) const;
    bool exists(const QByteArray& relative) const;

    /// Everything below `relative`, by path: "644 content" of files, "-> target" of links, "folder", "other".
    QMap<QByteArray, QByteArray> drawing(const QByteArray& relative) const;

private:
    FilePath m_root;
};

}  // namespace orvo::test
