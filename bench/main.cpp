// Prints how fast the terminal interprets what programs write, beside libvterm, beside libtsm where that is
// installed, and beside a reader that throws the same bytes away. One table; the last lines are the geometric
// means of the ratios.
#include "bench/Payloads.h"
#include "bench/Reference.h"
#ifdef ORVO_BENCH_TSM
#include "bench/TsmReference.h"
#endif
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

#ifdef ORVO_BENCH_TSM
constexpr bool withTsm = true;
#else
constexpr bool withTsm = false;
#endif

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

/// Of our speed to each peer's.
struct Ratios {
    Means vterm;
    Means tsm;
};

/// A peer that is not there has no figures.
void printFigure(int width, double figure, bool present) {
    if (present) {
        std::printf(" %*.1f", width, figure);
    } else {
        std::printf(" %*s", width, "-");
    }
}

void measure(int rows, int columns, std::string_view only, Ratios& total) {
    Ratios means;
    for (const Payload& payload : payloads(rows, columns)) {
        if (payload.name.find(only) == std::string::npos) continue;
        TerminalScreen screen(rows, columns);
        Reference reference(rows, columns);
        double ours = 1e9;
        double vterm = 1e9;
        double tsm = 1e9;
        double discarding = 1e9;
#ifdef ORVO_BENCH_TSM
        TsmReference tsmReference(rows, columns);
#endif
        for (int round = 0; round < rounds; ++round) {
            keepBest(ours, [&] { return secondsToFeed(screen, payload.bytes); });
            keepBest(vterm, [&] { return secondsToFeed(reference, payload.bytes); });
#ifdef ORVO_BENCH_TSM
            keepBest(tsm, [&] { return secondsToFeed(tsmReference, payload.bytes); });
#endif
            keepBest(discarding, [&] { return secondsToDiscard(payload.bytes); });
        }
        const double megabytes = static_cast<double>(payload.bytes.size()) / 1e6;
        std::printf("%-18s %3d x %-3d %6.1f MB %9.0f %9.1f %7.1f", payload.name.c_str(), rows, columns,
                    megabytes, megabytes / ours, megabytes / vterm, vterm / ours);
        printFigure(9, megabytes / tsm, withTsm);
        printFigure(7, tsm / ours, withTsm);
        std::printf(" %9.0f\n", megabytes / discarding);
        std::fflush(stdout);
        for (Ratios* const ratios : {&means, &total}) {
            ratios->vterm.add(vterm / ours);
            ratios->tsm.add(tsm / ours);
        }
    }
    if (means.vterm.count == 0) return;
    std::printf("%-18s %3d x %-3d %37.1f", "geometric mean", rows, columns, means.vterm.value());
    printFigure(17, means.tsm.value(), withTsm);
    std::printf("\n\n");
}

}  // namespace
}  // namespace orvo::bench

/// An argument names the payloads to measure: those whose name contains it.
int main(int argc, char** argv) {
    const std::string_view only = argc > 1 ? argv[1] : "";
    std::printf("%-18s %-9s %9s %9s %9s %7s %9s %7s %9s\n", "payload", "size", "bytes", "ours MB/s", "vterm",
                "ratio", "tsm", "ratio", "discard");
    orvo::bench::Ratios total;
    orvo::bench::measure(24, 80, only, total);
    orvo::bench::measure(50, 200, only, total);
    if (total.vterm.count == 0) {
        std::fprintf(stderr, "orvo_bench: no payload's name contains \"%s\".\n", argv[1]);
        return EXIT_FAILURE;
    }
    std::printf("%-28s %37.1f", "geometric mean of all", total.vterm.value());
    orvo::bench::printFigure(17, total.tsm.value(), orvo::bench::withTsm);
    std::printf("\n");
    return EXIT_SUCCESS;
}
