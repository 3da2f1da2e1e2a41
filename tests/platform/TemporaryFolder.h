#pragma once

#include "platform/FilePath.h"

#include <gtest/gtest.h>

#include <QByteArray>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>

#include <sys/stat.h>

namespace orvo::test {

/// An empty folder for one test, removed with whatever it holds; names may be any bytes.
class TemporaryFolder {
public:
    TemporaryFolder() {
        std::string name = (std::filesystem::temp_directory_path() / "orvo-test-XXXXXX").string();
        if (mkdtemp(name.data()) == nullptr) std::abort();
        m_path = FilePath(QByteArray::fromStdString(name));
    }
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(m_path.bytes().toStdString(), ignored);
    }
    Q_DISABLE_COPY_MOVE(TemporaryFolder)

    const FilePath& path() const { return m_path; }
    FilePath child(const QByteArray& name) const { return m_path.child(name); }

    /// Names of everything in the folder, hidden ones included.
    std::set<std::string> names() const {
        std::set<std::string> found;
        for (const auto& entry : std::filesystem::directory_iterator(m_path.bytes().toStdString())) {
            found.insert(entry.path().filename().string());
        }
        return found;
    }

private:
    FilePath m_path;
};

inline void writeFile(const FilePath& file, const QByteArray& content) {
    std::ofstream stream(file.bytes().toStdString(), std::ios::binary | std::ios::trunc);
    stream.write(content.constData(), content.size());
    ASSERT_TRUE(stream.flush()) << file.bytes().constData();
}

inline QByteArray readFile(const FilePath& file) {
    std::ifstream stream(file.bytes().toStdString(), std::ios::binary);
    EXPECT_TRUE(stream) << file.bytes().constData();
    return QByteArray::fromStdString(std::string(std::istreambuf_iterator<char>(stream), {}));
}

/// Permission bits of the file itself; a link is not followed.
inline mode_t modeOf(const FilePath& file) {
    struct stat status{};
    EXPECT_EQ(lstat(file.bytes().constData(), &status), 0) << file.bytes().constData();
    return status.st_mode & 07777;
}

}  // namespace orvo::test
