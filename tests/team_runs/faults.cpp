#include "team_runs/faults.h"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <utility>

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

std::atomic<int> countdown{0};
std::atomic<int> effectCode{0};
std::atomic<orvo::test::faults::Effect> effect{};
std::atomic<bool> hit{false};
std::atomic<bool> renameFlags{true};

using orvo::test::faults::Effect;

/// Makes the call, unless it is the one that fails.
template <class Call>
auto passOn(Call call) -> decltype(call()) {
    const int left = countdown > 0 ? --countdown : -1;
    if (left != 0) return call();
    hit = true;
    if (effect == Effect::Fail) {
        errno = effectCode;
        return -1;
    }
    call();
    raise(SIGKILL);
    return -1;
}

template <class Function>
Function* next(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

}  // namespace

#define ORVO_NEXT(name) static const auto real = next<decltype(::name)>(#name)

extern "C" {

int open(const char* path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    ORVO_NEXT(open);
    return passOn([&] { return real(path, flags, mode); });
}

int openat(int folder, const char* path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    ORVO_NEXT(openat);
    return passOn([&] { return real(folder, path, flags, mode); });
}

// Only the one that opens below a folder; the C++ library waits on others. Six are read however many were
// passed, as the C library's own does, which the sanitizer would take for a fault.
[[gnu::no_sanitize_address]] long syscall(long number, ...) noexcept {
    va_list arguments;
    va_start(arguments, number);
    long values[6];
    for (long& value : values)
        value = va_arg(arguments, long);
    va_end(arguments);
    static const auto real = next<long(long, ...)>("syscall");
    const auto call = [&] {
        return real(number, values[0], values[1], values[2], values[3], values[4], values[5]);
    };
    return number == SYS_openat2 ? passOn(call) : call();
}

ssize_t read(int file, void* buffer, size_t size) {
    ORVO_NEXT(read);
    return passOn([&] { return real(file, buffer, size); });
}

ssize_t write(int file, const void* data, size_t size) {
    ORVO_NEXT(write);
    return passOn([&] { return real(file, data, size); });
}

int fsync(int file) {
    ORVO_NEXT(fsync);
    return passOn([&] { return real(file); });
}

int fstat(int file, struct stat* status) noexcept {
    ORVO_NEXT(fstat);
    return passOn([&] { return real(file, status); });
}

int fstatat(int folder, const char* path, struct stat* status, int flags) noexcept {
    ORVO_NEXT(fstatat);
    return passOn([&] { return real(folder, path, status, flags); });
}

int fchmod(int file, mode_t mode) noexcept {
    ORVO_NEXT(fchmod);
    return passOn([&] { return real(file, mode); });
}

int mkdir(const char* path, mode_t mode) noexcept {
    ORVO_NEXT(mkdir);
    return passOn([&] { return real(path, mode); });
}

int mkdirat(int folder, const char* path, mode_t mode) noexcept {
    ORVO_NEXT(mkdirat);
    return passOn([&] { return real(folder, path, mode); });
}

int unlink(const char* path) noexcept {
    ORVO_NEXT(unlink);
    return passOn([&] { return real(path); });
}

int unlinkat(int folder, const char* path, int flags) noexcept {
    ORVO_NEXT(unlinkat);
    return passOn([&] { return real(folder, path, flags); });
}

int linkat(int fromFolder, const char* from, int toFolder, const char* to, int flags) noexcept {
    ORVO_NEXT(linkat);
    return passOn([&] { return real(fromFolder, from, toFolder, to, flags); });
}

int renameat(int fromFolder, const char* from, int toFolder, const char* to) noexcept {
    ORVO_NEXT(renameat);
    return passOn([&] { return real(fromFolder, from, toFolder, to); });
}

int renameat2(int fromFolder, const char* from, int toFolder, const char* to, unsigned flags) noexcept {
    ORVO_NEXT(renameat2);
    if (!renameFlags && flags != 0) {
        errno = EINVAL;
        return -1;
    }
    return passOn([&] { return real(fromFolder, from, toFolder, to, flags); });
}

off_t lseek(int file, off_t offset, int from) noexcept {
    ORVO_NEXT(lseek);
    return passOn([&] { return real(file, offset, from); });
}

int flock(int file, int operation) noexcept {
    ORVO_NEXT(flock);
    return passOn([&] { return real(file, operation); });
}

}  // extern "C"

namespace orvo::test::faults {

void arm(int number, Effect chosen, int code) {
    hit = false;
    effect = chosen;
    effectCode = code;
    countdown = number;
}

void withoutRenameFlags() {
    renameFlags = false;
}
bool fired() {
    return hit;
}

void disarm() {
    countdown = 0;
    renameFlags = true;
}

}  // namespace orvo::test::faults
