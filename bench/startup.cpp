// Prints how long a start takes until the window's middle is painted, and what the programs weigh then,
// beside a bare Qt Widgets window. Both start in turn, each in a home of its own, under an X server without a
// window manager; the memory is measured with a shell idle in our window.
#include <xcb/xcb.h>

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

extern char** environ;

namespace orvo::bench {
namespace {

using Clock = std::chrono::steady_clock;

constexpr int rounds = 15;
constexpr int memoryRounds = 3;
constexpr std::chrono::seconds patience{20};
/// The root window's colour: what the middle of a window shows until it is painted.
constexpr std::uint32_t unpainted = 0xff00ff;

class Screen {
public:
    Screen() : m_connection(xcb_connect(nullptr, nullptr)) {
        if (xcb_connection_has_error(m_connection) != 0) {
            std::fputs("orvo_startup_bench: no display\n", stderr);
            std::exit(1);
        }
        m_screen = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data;
        const std::array<std::uint32_t, 1> colour = {unpainted};
        xcb_change_window_attributes(m_connection, m_screen->root, XCB_CW_BACK_PIXEL, colour.data());
        xcb_clear_area(m_connection, 0, m_screen->root, 0, 0, 0, 0);
        xcb_flush(m_connection);
    }
    ~Screen() { xcb_disconnect(m_connection); }
    Screen(const Screen&) = delete;
    Screen& operator=(const Screen&) = delete;

    /// Whether a window's paint covers the place that is the middle of the first window of either program:
    /// both are put at the upper left corner where no window manager runs.
    bool isPainted() {
        // A little off the middle, beside the text that both show there.
        const xcb_get_image_cookie_t asked =
            xcb_get_image(m_connection, XCB_IMAGE_FORMAT_Z_PIXMAP, m_screen->root, 640, 500, 1, 1, ~0U);
        xcb_get_image_reply_t* const reply = xcb_get_image_reply(m_connection, asked, nullptr);
        if (reply == nullptr) return false;
        std::uint32_t pixel = unpainted;
        if (xcb_get_image_data_length(reply) >= 4)
            std::copy_n(xcb_get_image_data(reply), 4, reinterpret_cast<std::uint8_t*>(&pixel));
        std::free(reply);
        return (pixel & 0xffffff) != unpainted;
    }

private:
    xcb_connection_t* m_connection;
    xcb_screen_t* m_screen;
};

/// A started program with a home that is thrown away.
class Program {
public:
    explicit Program(const std::vector<std::string>& command)
        : m_home(std::filesystem::temp_directory_path() / "orvo-bench-XXXXXX") {
        if (mkdtemp(m_home.data()) == nullptr) std::abort();
        for (const char* const name :
             {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME", "XDG_RUNTIME_DIR"})
            setenv(name, m_home.c_str(), 1);
        std::ofstream(m_home + "/.zshrc").put('\n');
        std::vector<char*> arguments;
        for (const std::string& argument : command)
            arguments.push_back(const_cast<char*>(argument.c_str()));
        arguments.push_back(nullptr);
        if (posix_spawn(&m_process, arguments[0], nullptr, nullptr, arguments.data(), environ) != 0) {
            std::fprintf(stderr, "orvo_startup_bench: cannot start %s\n", arguments[0]);
            std::exit(1);
        }
    }
    ~Program() {
        kill(m_process, SIGTERM);
        waitpid(m_process, nullptr, 0);
        std::error_code ignored;
        std::filesystem::remove_all(m_home, ignored);
    }
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    /// Proportional set size in MB; the shell in our window is a process of its own and not counted.
    double megabytes() const {
        std::ifstream rollup("/proc/" + std::to_string(m_process) + "/smaps_rollup");
        for (std::string word; rollup >> word;) {
            double kilobytes = 0;
            if (word == "Pss:" && rollup >> kilobytes) return kilobytes / 1024;
        }
        return 0;
    }

private:
    std::string m_home;
    pid_t m_process = 0;
};

bool waitFor(Screen& screen, bool painted) {
    const auto end = Clock::now() + patience;
    while (screen.isPainted() != painted) {
        if (Clock::now() > end) return false;
        std::this_thread::sleep_for(std::chrono::microseconds(300));
    }
    return true;
}

double millisecondsToPaint(Screen& screen, const std::vector<std::string>& command) {
    const auto begin = Clock::now();
    double milliseconds = 0;
    {
        const Program program(command);
        if (!waitFor(screen, true)) {
            std::fprintf(stderr, "orvo_startup_bench: %s painted nothing\n", command[0].c_str());
            std::exit(1);
        }
        milliseconds = std::chrono::duration<double, std::milli>(Clock::now() - begin).count();
    }
    waitFor(screen, false);
    return milliseconds;
}

double megabytesAtRest(Screen& screen, const std::vector<std::string>& command) {
    double megabytes = 0;
    {
        const Program program(command);
        waitFor(screen, true);
        std::this_thread::sleep_for(std::chrono::seconds(4));
        megabytes = program.megabytes();
    }
    waitFor(screen, false);
    return megabytes;
}

double median(std::vector<double> values) {
    std::ranges::sort(values);
    return values[values.size() / 2];
}

void printRow(const char* what, double ours, double bare) {
    std::printf("%-44s %8.1f %8.1f %8.2f\n", what, ours, bare, ours / bare);
}

void printTable(const std::string& folder) {
    const std::vector<std::string> ours = {folder + "/orvo"};
    const std::vector<std::string> withShell = {folder + "/orvo", "--new-terminal"};
    const std::vector<std::string> bare = {folder + "/orvo_bare_window"};
    Screen screen;
    std::vector<double> times;
    std::vector<double> bareTimes;
    for (int round = 0; round < rounds; ++round) {
        times.push_back(millisecondsToPaint(screen, ours));
        bareTimes.push_back(millisecondsToPaint(screen, bare));
    }
    std::vector<double> sizes;
    std::vector<double> bareSizes;
    for (int round = 0; round < memoryRounds; ++round) {
        sizes.push_back(megabytesAtRest(screen, withShell));
        bareSizes.push_back(megabytesAtRest(screen, bare));
    }
    std::printf("%-44s %8s %8s %8s\n", "", "ours", "bare Qt", "ratio");
    printRow("start to painted window, ms (median)", median(times), median(bareTimes));
    printRow("start to painted window, ms (best)", *std::ranges::min_element(times),
             *std::ranges::min_element(bareTimes));
    printRow("memory with a shell idle, MB (PSS)", median(sizes), median(bareSizes));
}

}  // namespace
}  // namespace orvo::bench

/// The only argument is the folder of the programs; its default is where this one lies.
int main(int count, char** arguments) {
    const std::filesystem::path self = std::filesystem::read_symlink("/proc/self/exe");
    orvo::bench::printTable(count > 1 ? arguments[1] : self.parent_path().string());
}
