// Prints how fast the terminal interprets what programs write, beside libvterm, beside libtsm and Alacritty's
// core where those are installed, and beside a reader that throws the same bytes away. One table, whose last
// lines are the geometric means of the ratios, and what the size of pieces and of the screen cost.
#include "bench/Payloads.h"
#include "bench/Reference.h"
#ifdef ORVO_BENCH_TSM
#include "bench/TsmReference.h"
#endif
#ifdef ORVO_BENCH_ALACRITTY
#include "bench/AlacrittyReference.h"
#endif
#include "terminal/core/TerminalScreen.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace orvo::bench {
namespace {

/// What one read from a busy pseudo-terminal's queue hands over at most.
constexpr std::size_t chunkBytes = 65'536;
/// And what one read of a pseudo-terminal gives.
constexpr std::size_t smallChunkBytes = 4'095;
constexpr int rounds = 5;
constexpr double secondsARound = 0.04;

using Feed = std::function<void(std::string_view)>;
using Run = std::function<double()>;

/// A terminal that is measured beside ours.
struct Peer {
    const char* name;
    std::function<Feed(int rows, int columns)> make;
};

template <class Terminal>
Feed feedOf(int rows, int columns) {
    const auto terminal = std::make_shared<Terminal>(rows, columns);
    return [terminal](std::string_view bytes) {
        terminal->feed(bytes);
    };
}

const std::vector<Peer>& peers() {
    static const std::vector<Peer> all = {
        {"vterm", feedOf<Reference>},
#ifdef ORVO_BENCH_TSM
        {"tsm", feedOf<TsmReference>},
#endif
#ifdef ORVO_BENCH_ALACRITTY
        {"alacritty", feedOf<AlacrittyReference>},
#endif
    };
    return all;
}

/// The thread's own time: on a busy machine a long pass would be interrupted more often than a short one.
double processorSeconds() {
    timespec time = {};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

double secondsToFeed(const Feed& feed, std::string_view bytes, std::size_t piece = chunkBytes) {
    const double start = processorSeconds();
    for (; !bytes.empty(); bytes.remove_prefix(std::min(piece, bytes.size()))) {
        feed(bytes.substr(0, piece));
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

struct Mean {
    double logarithms = 0;
    int count = 0;

    void add(double ratio) {
        logarithms += std::log(ratio);
        ++count;
    }
    double value() const { return std::exp(logarithms / std::max(count, 1)); }
};

/// Of our speed to each peer's, in their order.
using Ratios = std::vector<Mean>;

void printHeading() {
    std::printf("%-18s %-9s %9s", "payload", "size", "ours MB/s");
    for (const Peer& peer : peers())
        std::printf(" %9s %7s", peer.name, "ratio");
    std::printf(" %9s\n", "discard");
}

void printMeans(const char* label, const Ratios& ratios) {
    std::printf("%-38s", label);
    for (const Mean& mean : ratios)
        std::printf(" %9s %7.1f", "", mean.value());
    std::printf("\n\n");
}

void measure(int rows, int columns, std::string_view only, Ratios& total) {
    Ratios means(peers().size());
    for (const Payload& payload : payloads(rows, columns)) {
        if (payload.name.find(only) == std::string::npos) continue;
        const Feed screen = feedOf<TerminalScreen>(rows, columns);
        std::vector<Feed> others;
        for (const Peer& peer : peers())
            others.push_back(peer.make(rows, columns));
        double ours = 1e9;
        double discarding = 1e9;
        std::vector<double> theirs(others.size(), 1e9);
        for (int round = 0; round < rounds; ++round) {
            keepBest(ours, [&] { return secondsToFeed(screen, payload.bytes); });
            for (std::size_t index = 0; index < others.size(); ++index)
                keepBest(theirs[index], [&] { return secondsToFeed(others[index], payload.bytes); });
            keepBest(discarding, [&] { return secondsToDiscard(payload.bytes); });
        }
        const double megabytes = static_cast<double>(payload.bytes.size()) / 1e6;
        std::printf("%-18s %3d x %-3d %9.0f", payload.name.c_str(), rows, columns, megabytes / ours);
        for (std::size_t index = 0; index < others.size(); ++index) {
            const double ratio = theirs[index] / ours;
            std::printf(" %9.1f %7.1f", megabytes / theirs[index], ratio);
            means[index].add(ratio);
            total[index].add(ratio);
        }
        std::printf(" %9.0f\n", megabytes / discarding);
        std::fflush(stdout);
    }
    if (means.front().count == 0) return;
    const std::string label = "geometric mean     " + std::to_string(rows) + " x " + std::to_string(columns);
    printMeans(label.c_str(), means);
}

/// Two ways to feed the same bytes: how fast the first is as a share of the second.
double shareOf(const Run& first, const Run& second) {
    double one = 1e9;
    double other = 1e9;
    for (int round = 0; round < rounds; ++round) {
        keepBest(one, first);
        keepBest(other, second);
    }
    return other / one;
}

void measureShares() {
    Mean small;
    double least = 1e9;
    std::string weakest;
    for (const auto& [rows, columns] : {std::pair(24, 80), std::pair(50, 200)}) {
        for (const Payload& payload : payloads(rows, columns)) {
            const Feed screen = feedOf<TerminalScreen>(rows, columns);
            const double share =
                shareOf([&] { return secondsToFeed(screen, payload.bytes, smallChunkBytes); },
                        [&] { return secondsToFeed(screen, payload.bytes); });
            small.add(share);
            if (share >= least) continue;
            least = share;
            weakest = payload.name;
        }
    }
    std::printf("pieces of 4,095 bytes beside 64 KiB: %.2f of the speed, at least %.2f (%s); goal 0.9\n",
                small.value(), least, weakest.c_str());

    // The same lines on both, so that only the size differs.
    const std::vector<Payload> lines = payloads(24, 80);
    const auto scrolling = std::ranges::find(lines, "scrolling", &Payload::name);
    const Feed large = feedOf<TerminalScreen>(50, 200);
    const Feed little = feedOf<TerminalScreen>(24, 80);
    std::printf("scrolling at 50 x 200 beside 24 x 80: %.2f of the speed; goal 0.65\n",
                shareOf([&] { return secondsToFeed(large, scrolling->bytes); },
                        [&] { return secondsToFeed(little, scrolling->bytes); }));
}

}  // namespace
}  // namespace orvo::bench

/// An argument names the payloads to measure: those whose name contains it.
int main(int argc, char** argv) {
    namespace bench = orvo::bench;
    const std::string_view only = argc > 1 ? argv[1] : "";
    bench::printHeading();
    bench::Ratios total(bench::peers().size());
    bench::measure(24, 80, only, total);
    bench::measure(50, 200, only, total);
    if (total.front().count == 0) {
        std::fprintf(stderr, "orvo_bench: no payload's name contains \"%s\".\n", argv[1]);
        return EXIT_FAILURE;
    }
    bench::printMeans("geometric mean of all", total);
    if (only.empty()) bench::measureShares();
    return EXIT_SUCCESS;
}
