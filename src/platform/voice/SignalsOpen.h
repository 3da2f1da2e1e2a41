#pragma once

#include <csignal>

namespace orvo {

/// Our threads block every signal. A service that one of them happens to start is a process of its own that
/// outlives this one, and must not inherit that: signals are open on this thread as long as this lives.
class SignalsOpen {
public:
    SignalsOpen() {
        sigset_t open;
        sigemptyset(&open);
        // But for this one: writing to a service that has gone is an error, not the end of the process.
        sigaddset(&open, SIGPIPE);
        pthread_sigmask(SIG_SETMASK, &open, &m_before);
    }
    ~SignalsOpen() { pthread_sigmask(SIG_SETMASK, &m_before, nullptr); }
    SignalsOpen(const SignalsOpen&) = delete;
    SignalsOpen& operator=(const SignalsOpen&) = delete;

private:
    sigset_t m_before;
};

}  // namespace orvo
