#pragma once

#include <utility>

#include <unistd.h>

namespace orvo {

/// Owns an open file descriptor and closes it.
class FileDescriptor {
public:
    FileDescriptor() = default;
    explicit FileDescriptor(int descriptor) : m_descriptor(descriptor) {}
    FileDescriptor(FileDescriptor&& other) noexcept : m_descriptor(std::exchange(other.m_descriptor, -1)) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept {
        std::swap(m_descriptor, other.m_descriptor);
        return *this;
    }
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;
    ~FileDescriptor() {
        if (m_descriptor >= 0) close(m_descriptor);
    }

    bool isOpen() const { return m_descriptor >= 0; }
    int number() const { return m_descriptor; }

private:
    int m_descriptor = -1;
};

}  // namespace orvo
