#include "team_runs/Tree.h"

#include "platform/listFolder.h"
#include "platform/readFile.h"

#include <QDir>
#include <QRandomGenerator>

#include <array>
#include <climits>
#include <cstdlib>
#include <filesystem>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace orvo::test {
namespace {

void require(bool done, const char* what, const FilePath& path) {
    if (done) return;
    perror(what);
    fprintf(stderr, "  at %s\n", path.bytes().constData());
    abort();
}

void draw(const FilePath& folder, const QByteArray& prefix, QMap<QByteArray, QByteArray>& drawing) {
    const auto names = listFolder(folder);
    require(names.has_value(), "list", folder);
    for (const QByteArray& name : *names) {
        const FilePath file = folder.child(name);
        const QByteArray path = prefix + name;
        struct stat status{};
        require(lstat(file.bytes().constData(), &status) == 0, "lstat", file);
        if (S_ISDIR(status.st_mode)) {
            drawing.insert(path, "folder");
            draw(file, path + '/', drawing);
        } else if (S_ISLNK(status.st_mode)) {
            std::array<char, PATH_MAX> target{};
            const ssize_t length = readlink(file.bytes().constData(), target.data(), target.size());
            drawing.insert(path, "-> " + QByteArray(target.data(), length));
        } else if (S_ISREG(status.st_mode)) {
            const auto content = readFile(file, INT_MAX);
            require(content.has_value(), "read", file);
            drawing.insert(path, QByteArray::number(status.st_mode & 07777, 8) + ' ' + *content);
        } else {
            drawing.insert(path, "other");
        }
    }
}

}  // namespace

QByteArray noise(qsizetype size, quint32 seed) {
    QRandomGenerator generator(seed);
    QByteArray bytes(size, Qt::Uninitialized);
    for (char& byte : bytes)
        byte = static_cast<char>(generator.generate());
    return bytes;
}

Tree::Tree(Place place) {
    const QByteArray memory("/dev/shm");
    const bool inMemory = place == Place::Memory && access(memory.constData(), W_OK) == 0;
    QByteArray pattern = (inMemory ? memory : QDir::tempPath().toLocal8Bit()) + "/orvo-tree-XXXXXX";
    require(mkdtemp(pattern.data()) != nullptr, "mkdtemp", FilePath(pattern));
    m_root = FilePath(pattern);
}

Tree::~Tree() {
    std::error_code ignored;
    std::filesystem::remove_all(m_root.bytes().constData(), ignored);
}

FilePath Tree::path(const QByteArray& relative) const {
    return relative.isEmpty() ? m_root : m_root.child(relative);
}

void Tree::write(const QByteArray& relative, const QByteArray& content, int mode) const {
    const FilePath file = path(relative);
    makeFolder(relative.left(std::max<qsizetype>(relative.lastIndexOf('/'), 0)));
    const int descriptor = open(file.bytes().constData(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    require(descriptor >= 0, "open", file);
    require(::write(descriptor, content.constData(), static_cast<size_t>(content.size())) == content.size(),
            "write", file);
    require(fchmod(descriptor, static_cast<mode_t>(mode)) == 0, "fchmod", file);
    close(descriptor);
}

void Tree::makeFolder(const QByteArray& relative) const {
    std::error_code error;
    std::filesystem::create_directories(path(relative).bytes().constData(), error);
    require(!error, "mkdir", path(relative));
}

void Tree::link(const QByteArray& relative, const QByteArray& target) const {
    require(symlink(target.constData(), path(relative).bytes().constData()) == 0, "symlink", path(relative));
}

void Tree::pipe(const QByteArray& relative) const {
    require(mkfifo(path(relative).bytes().constData(), 0644) == 0, "mkfifo", path(relative));
}

void Tree::remove(const QByteArray& relative) const {
    std::error_code error;
    std::filesystem::remove_all(path(relative).bytes().constData(), error);
    require(!error, "remove", path(relative));
}

void Tree::sparse(const QByteArray& relative, qint64 size) const {
    write(relative, {});
    require(truncate(path(relative).bytes().constData(), size) == 0, "truncate", path(relative));
}

std::optional<QByteArray> Tree::read(const QByteArray& relative) const {
    const auto content = readFile(path(relative), INT_MAX);
    if (!content) return std::nullopt;
    return *content;
}

int Tree::mode(const QByteArray& relative) const {
    struct stat status{};
    require(lstat(path(relative).bytes().constData(), &status) == 0, "lstat", path(relative));
    return static_cast<int>(status.st_mode & 07777);
}

bool Tree::exists(const QByteArray& relative) const {
    struct stat status{};
    return lstat(path(relative).bytes().constData(), &status) == 0;
}

QMap<QByteArray, QByteArray> Tree::drawing(const QByteArray& relative) const {
    QMap<QByteArray, QByteArray> result;
    draw(path(relative), {}, result);
    return result;
}

}  // namespace orvo::test
