#include "app/TerminationSignals.h"

#include <QSocketNotifier>

#include <array>
#include <cerrno>
#include <csignal>

#include <fcntl.h>
#include <unistd.h>

namespace orvo {
namespace {

constexpr std::array handledSignals = {SIGTERM, SIGINT, SIGHUP};

// The one thing a handler may touch: a pipe's descriptor, set before the handlers are and reset after.
volatile std::sig_atomic_t pipeForHandler = -1;

void passOn(int) {
    const int saved = errno;
    const char byte = 0;
    // A full pipe has said enough already.
    [[maybe_unused]] const ssize_t written = write(pipeForHandler, &byte, 1);
    errno = saved;
}

void setHandler(void (*handler)(int)) {
    struct sigaction action = {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    for (const int number : handledSignals)
        sigaction(number, &action, nullptr);
}

}  // namespace

TerminationSignals::TerminationSignals(QObject* parent) : QObject(parent) {
    std::array<int, 2> ends = {-1, -1};
    if (pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK) != 0) return;
    m_readEnd = ends[0];
    m_writeEnd = ends[1];
    auto* const notifier = new QSocketNotifier(m_readEnd, QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, [this] {
        std::array<char, 16> bytes;
        while (read(m_readEnd, bytes.data(), bytes.size()) > 0) {
        }
        Q_EMIT received();
    });
    pipeForHandler = m_writeEnd;
    setHandler(passOn);
}

TerminationSignals::~TerminationSignals() {
    if (m_writeEnd < 0) return;
    setHandler(SIG_DFL);
    pipeForHandler = -1;
    close(m_writeEnd);
    close(m_readEnd);
}

}  // namespace orvo
