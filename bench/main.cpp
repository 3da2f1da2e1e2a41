// Prints how fast the terminal interprets what programs write, beside libvterm and beside a reader that
// throws the same bytes away. One table; the last lines are the geometric means of the ratios.
#include "bench/Payloads.h"
#include "bench/Reference.h"
#include "terminal/core/TerminalScreen.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <functional>
#include <string_view>

namespace orvo::bench {
namespace {

/// What one read from a busy pseudo-terminal's queue hands over at most.
constexpr std::size_t chunkBytes = 65'536;
constexpr int rounds = 5;
constexpr double secondsARound = 0.04;

using Run = std::function<double()>;

/// The thread's own time: on a busy machine a long pass would be interrupted more often than a short one.
double processorSeconds() {
    timespec time = {};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

template <class Terminal>
double secondsToFeed(Terminal& terminal, std::string_view bytes) {
    const double start = processorSeconds();
    for (; !bytes.empty(); bytes.remove_prefix(std::min(chunkBytes, bytes.size()))) {
        terminal.feed(bytes.substr(0, chunkBytes));
    }
    return processorSeconds() - start;
}

/// The shortest time of one pass. Other work on the machine only ever makes a pass longer.
void keepBest(double& best, const Run& run) {
    double spent = 0;
    do {
        const double seconds = run();
        best = std::min(best, seconds);
        spent += seconds;
    } while (spent < secondsARound);
}

struct Means {
    double logarithms = 0;
    int count = 0;

    void add(double ratio) {
        logarithms += std::log(ratio);
        ++count;
    }
    double value() const { return std::exp(logarithms / std::max(count, 1)); }
};

void measure(int rows, int columns, std::string_view only, Means& total) {
    Means means;
    for (const Payload& payload : payloads(rows, columns)) {
        if (payload.name.find(only) == std::string::npos) continue;
        TerminalScreen screen(rows, columns);
        Reference reference(rows, columns);
        double ours = 1e9;
        double theirs = 1e9;
        double discarding = 1e9;
        for (int round = 0; round < rounds; ++round) {
            keepBest(ours, [&] { return secondsToFeed(screen, payload.bytes); });
            keepBest(theirs, [&] { return secondsToFeed(reference, payload.bytes); });
            keepBest(discarding, [&] { return secondsToDiscard(payload.bytes); });
        }
        const double megabytes = static_cast<double>(payload.bytes.size()) / 1e6;
        std::printf("%-18s %3d x %-3d %6.1f MB %9.0f %9.1f %8.1f %9.0f\n", payload.name.c_str(), rows,
                    columns, megabytes, megabytes / ours, megabytes / theirs, theirs / ours,
                    megabytes / discarding);
        std::fflush(stdout);
        means.add(theirs / ours);
        total.add(theirs / ours);
    }
    if (means.count == 0) return;
    std::printf("%-18s %3d x %-3d %38.1f\n\n", "geometric mean", rows, columns, means.value());
}

}  // namespace
}  // namespace orvo::bench

/// An argument names the payloads to measure: those whose name contains it.
int main(int argc, char** argv) {
    const std::string_view only = argc > 1 ? argv[1] : "";
    std::printf("%-18s %-9s %9s %9s %9s %8s %9s\n", "payload", "size", "bytes", "ours MB/s", "vterm", "ratio",
                "discard");
    orvo::bench::Means total;
    orvo::bench::measure(24, 80, only, total);
    orvo::bench::measure(50, 200, only, total);
    if (total.count == 0) {
        std::fprintf(stderr, "orvo_bench: no payload's name contains \"%s\".\n", argv[1]);
        return EXIT_FAILURE;
    }
    std::printf("%-18s %48.1f\n", "geometric mean of all", total.value());
    return EXIT_SUCCESS;
}
