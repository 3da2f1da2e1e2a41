#include "orvoctl/Interrupts.h"

#include <QSocketNotifier>

#include <sys/signalfd.h>
#include <unistd.h>

#include <csignal>

namespace orvo::ctl {
namespace {

sigset_t watchedSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    for (const int number : {SIGINT, SIGTERM, SIGHUP})
        sigaddset(&signals, number);
    return signals;
}

}  // namespace

// Made before any thread, which inherits the blocked signals; children start with an empty mask.
Interrupts::Interrupts() {
    const sigset_t signals = watchedSignals();
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    m_descriptor = signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK);
    m_notifier = std::make_unique<QSocketNotifier>(m_descriptor, QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, [this] {
        signalfd_siginfo info{};
        while (read(m_descriptor, &info, sizeof info) == sizeof info)
            Q_EMIT interrupted();
    });
}

Interrupts::~Interrupts() {
    m_notifier.reset();
    close(m_descriptor);
    const sigset_t signals = watchedSignals();
    pthread_sigmask(SIG_UNBLOCK, &signals, nullptr);
}

}  // namespace orvo::ctl
