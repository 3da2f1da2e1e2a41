#include "app/CrashHandler.h"

#include "app/CrashReports.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <csignal>
#include <cstddef>
#include <ctime>
#include <exception>
#include <string_view>
#include <typeinfo>

#include <cxxabi.h>
#include <execinfo.h>
#include <fcntl.h>
#include <limits.h>
#include <sys/stat.h>
#include <unistd.h>

namespace orvo {
namespace {

struct Fault {
    int number;
    std::string_view name;
};
constexpr std::array faults = {Fault{SIGSEGV, "SIGSEGV"}, Fault{SIGBUS, "SIGBUS"}, Fault{SIGFPE, "SIGFPE"},
                               Fault{SIGILL, "SIGILL"}, Fault{SIGABRT, "SIGABRT"}};

// The unwinder needs a few KiB of the handler's stack, and more for deep frames.
constexpr std::size_t handlerStackSize = 65'536;
constexpr int deepestFrames = 100;
// Writing takes milliseconds. A handler that hangs, say on the dynamic linker's lock, must not keep the
// process.
constexpr unsigned secondsToWrite = 5;

// All that the handler works with. Filled before the handler is installed; nothing here is allocated later.
alignas(16) std::array<char, handlerStackSize> handlerStack;
std::array<char, PATH_MAX> folderPath;
std::size_t folderLength = 0;
std::array<char, 512> header;
std::size_t headerLength = 0;
std::atomic<pid_t> writingThread = 0;
static_assert(std::atomic<pid_t>::is_always_lock_free);
std::atomic<const char*> terminateReason = nullptr;

/// Text of limited length, made without the heap.
template <std::size_t Size>
class SafeText {
public:
    SafeText& operator<<(std::string_view text) {
        const std::size_t taken = std::min(text.size(), Size - 1 - m_length);
        std::copy_n(text.begin(), taken, m_text.begin() + static_cast<std::ptrdiff_t>(m_length));
        m_length += taken;
        return *this;
    }
    SafeText& operator<<(long long number) {
        std::array<char, 20> digits;
        std::size_t first = digits.size();
        do {
            digits[--first] = static_cast<char>('0' + number % 10);
            number /= 10;
        } while (number > 0);
        return *this << std::string_view(digits.data() + first, digits.size() - first);
    }
    const char* data() const { return m_text.data(); }
    std::string_view view() const { return {m_text.data(), m_length}; }

private:
    std::array<char, Size> m_text = {};
    std::size_t m_length = 0;
};

void writeAll(int file, std::string_view text) {
    while (!text.empty()) {
        const ssize_t written = write(file, text.data(), text.size());
        if (written <= 0) return;
        text.remove_prefix(static_cast<std::size_t>(written));
    }
}

/// Each folder on the way that is missing; the last failure shows when the file is opened.
void makeFolders() {
    for (std::size_t index = 1; index < folderLength; ++index) {
        if (folderPath[index] != '/') continue;
        folderPath[index] = '\0';
        mkdir(folderPath.data(), 0700);
        folderPath[index] = '/';
    }
    mkdir(folderPath.data(), 0700);
}

std::string_view nameOf(int number) {
    for (const Fault& fault : faults) {
        if (fault.number == number) return fault.name;
    }
    return "signal";
}

void writeReport(int number) {
    makeFolders();
    const long long now = time(nullptr);
    SafeText<PATH_MAX> path;
    path << std::string_view(folderPath.data(), folderLength) << "/" << CrashReports::prefix << now << "-"
         << static_cast<long long>(getpid()) << CrashReports::untoldSuffix;
    const int file = open(path.data(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, 0600);
    if (file < 0) return;
    SafeText<1024> text;
    text << std::string_view(header.data(), headerLength);
    text << "Signal: " << static_cast<long long>(number) << " (" << nameOf(number) << ")\n";
    text << "Time: " << now << " seconds since 1970 UTC\n";
    text << "Thread: " << (gettid() == getpid() ? "main" : "other") << "\n";
    if (const char* const reason = terminateReason.load()) text << "Exception: " << reason << "\n";
    text << "\nStack:\n";
    writeAll(file, text.view());
    std::array<void*, deepestFrames> frames;
    const int count = backtrace(frames.data(), deepestFrames);
    backtrace_symbols_fd(frames.data(), count, file);
    close(file);
}

void handleFault(int number) {
    const int saved = errno;
    pid_t nobody = 0;
    if (writingThread.compare_exchange_strong(nobody, gettid())) {
        signal(SIGALRM, SIG_DFL);
        alarm(secondsToWrite);
        writeReport(number);
    } else if (nobody != gettid()) {
        // Another thread's report is being written; it ends the process.
        while (true)
            pause();
    }
    // A fault in the handler itself comes here, too. The signal is blocked until the handler returns.
    signal(number, SIG_DFL);
    raise(number);
    errno = saved;
}

[[noreturn]] void handleTerminate() {
    // The type alone: the message of an exception may hold what the person wrote.
    const std::type_info* const type = abi::__cxa_current_exception_type();
    terminateReason = type != nullptr ? type->name() : "none (std::terminate)";
    std::abort();
}

}  // namespace

void installCrashHandler(const FilePath& folder, const QByteArray& version) {
    // Room for the name of the file.
    constexpr std::size_t longestName = 64;
    const QByteArray& path = folder.bytes();
    if (static_cast<std::size_t>(path.size()) + longestName >= folderPath.size()) return;
    std::ranges::copy(path, folderPath.begin());
    folderLength = static_cast<std::size_t>(path.size());
    const QByteArray first = "Orvo AI " + version + " ended unexpectedly.\nQt: " + qVersion() + '\n';
    headerLength = std::min(header.size(), static_cast<std::size_t>(first.size()));
    std::copy_n(first.begin(), headerLength, header.begin());

    // The first call loads the unwinder, which allocates.
    std::array<void*, 2> frames;
    backtrace(frames.data(), static_cast<int>(frames.size()));

    stack_t stack = {};
    stack.ss_sp = handlerStack.data();
    stack.ss_size = handlerStack.size();
    sigaltstack(&stack, nullptr);
    struct sigaction action = {};
    action.sa_handler = handleFault;
    action.sa_flags = SA_ONSTACK;
    sigemptyset(&action.sa_mask);
    for (const Fault& fault : faults)
        sigaction(fault.number, &action, nullptr);
    std::set_terminate(handleTerminate);
}

}  // namespace orvo
