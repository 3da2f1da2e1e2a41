// Prints what the copies of a team run and the search for changes cost beside the everyday tools, on four
// generated projects: orvo_team_runs_bench [FOLDER [changes|copies]]. Wall and processor time of whole
// processes, medians of interleaved rounds, warm cache. FOLDER (the system's temporary one by default)
// decides the file system. The changes are found by the program orvoctl beside this one, started as its peers
// are; the copies, which a run makes within the running window, by a fork of this process.
#include "team_runs/Snapshot.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace orvo::bench {
namespace {

constexpr int copies = 5;  // the baseline, and four assistants
constexpr size_t copyRounds = 3;
constexpr size_t changeRounds = 15;

struct Project {
    const char* name;
    int files;
    int leastBytes;
    int mostBytes;
    int depth;
    /// Of the files, those that are as large as in the large project.
    int largeFiles = 0;
};

constexpr std::pair largeBytes{24'000'000, 30'000'000};

constexpr std::array projects = {
    Project{"small", 5000, 200, 8'000, 2},    Project{"large", 5, 0, 0, 0, 5},
    Project{"mixed", 2003, 200, 8'000, 3, 3}, Project{"medium", 600, 200, 90'000, 3},
    Project{"deep", 600, 200, 8'000, 24},
};

FilePath pathOf(const fs::path& path) {
    return FilePath(QByteArray::fromStdString(path.string()));
}

struct Cost {
    double wall = 0;       // milliseconds
    double processor = 0;  // milliseconds, of the process and those it waited for
    double memory = 0;     // megabytes at most
};

/// What the process costs that `start` makes. An exit status above `mostStatus` is a failure.
Cost costOf(const std::function<pid_t()>& start, int mostStatus) {
    const auto begin = std::chrono::steady_clock::now();
    const pid_t child = start();
    int status = 0;
    rusage used{};
    if (child <= 0 || wait4(child, &status, 0, &used) != child || !WIFEXITED(status) ||
        WEXITSTATUS(status) > mostStatus) {
        std::fprintf(stderr, "a measured process failed\n");
        std::exit(1);
    }
    const std::chrono::duration<double, std::milli> wall = std::chrono::steady_clock::now() - begin;
    const auto milliseconds = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_usec) * 1e-3;
    };
    return {wall.count(), milliseconds(used.ru_utime) + milliseconds(used.ru_stime),
            static_cast<double>(used.ru_maxrss) / 1024};
}

/// A copy of this process that does `work`.
pid_t forked(const std::function<int()>& work) {
    const pid_t child = fork();
    if (child == 0) _exit(work());
    return child;
}

/// Another program, whose output goes nowhere.
pid_t spawned(std::vector<std::string> words) {
    std::vector<char*> arguments;
    arguments.reserve(words.size() + 1);
    for (std::string& word : words)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    pid_t child = 0;
    const int error = posix_spawnp(&child, arguments[0], &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    return error == 0 ? child : -1;
}

pid_t shell(const std::string& command) {
    return spawned({"sh", "-c", command});
}

std::string quoted(const fs::path& path) {
    std::string text(1, '\'');
    text += path.string();
    text += '\'';
    return text;
}

void generate(const Project& project, const fs::path& root) {
    std::mt19937 random(4711);
    std::string text(1 << 16, ' ');
    for (char& letter : text)
        letter = static_cast<char>(' ' + random() % 95);
    for (int index = 0; index < project.files; ++index) {
        fs::path folder = root;
        for (int level = 0; level < project.depth; ++level)
            folder /= "folder-" + std::to_string((index >> (2 * std::min(level, 6))) % 7);
        fs::create_directories(folder);
        std::ofstream stream(folder / ("file-" + std::to_string(index) + ".txt"), std::ios::binary);
        const auto [least, most] =
            index < project.largeFiles ? largeBytes : std::pair(project.leastBytes, project.mostBytes);
        auto size = static_cast<size_t>(least) + random() % static_cast<unsigned>(most - least);
        for (; size > 0; size -= std::min(size, text.size()))
            stream.write(text.data(), static_cast<std::streamsize>(std::min(size, text.size())));
    }
}

/// Changes one file in a hundred, at least one, by a line in the middle.
void edit(const fs::path& root) {
    std::vector<fs::path> files;
    for (const auto& entry : fs::recursive_directory_iterator(root)) {
        if (entry.is_regular_file()) files.push_back(entry.path());
    }
    std::ranges::sort(files);
    for (size_t index = 0; index < files.size(); index += 100) {
        std::fstream stream(files[index], std::ios::binary | std::ios::in | std::ios::out);
        stream.seekp(static_cast<std::streamoff>(fs::file_size(files[index]) / 2));
        stream << "edited";
    }
}

// Gives the disk its room back without deleting: where many files were just deleted, ext4 creates new ones
// several times slower for minutes.
void empty(const fs::path& root) {
    for (const auto& entry : fs::recursive_directory_iterator(root)) {
        // A clone shares the files of the repository that it was made of.
        if (entry.is_regular_file() && entry.hard_link_count() == 1 && truncate(entry.path().c_str(), 0) != 0)
            std::perror("truncate");
    }
}

/// The least that copies can cost: as many files made and as many bytes moved within memory.
int creation(const fs::path& project, const fs::path& root) {
    std::vector<char> from(1 << 18);
    std::vector<char> to(1 << 18);
    for (const auto& entry : fs::recursive_directory_iterator(project)) {
        const fs::path relative = fs::relative(entry.path(), project);
        for (int copy = 0; copy < copies; ++copy) {
            const fs::path target = root / std::to_string(copy) / relative;
            if (entry.is_directory()) {
                fs::create_directories(target);
                continue;
            }
            fs::create_directories(target.parent_path());
            close(open(target.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600));
            for (auto size = fs::file_size(entry.path()); size > 0;
                 size -= std::min<std::uintmax_t>(size, from.size()))
                std::memcpy(to.data(), from.data(), std::min<std::uintmax_t>(size, from.size()));
        }
    }
    return 0;
}

// Under a hypervisor the first use of a page of memory costs many times its later uses: what is measured
// finds enough pages that have been used.
void touchMemory(const fs::path& folder) {
    constexpr size_t bytes = 1 << 30;
    const fs::path file = folder / "touched";
    {
        const std::string block(1 << 20, 'x');
        std::ofstream stream(file, std::ios::binary);
        for (size_t written = 0; written < bytes; written += block.size())
            stream.write(block.data(), static_cast<std::streamsize>(block.size()));
    }
    fs::remove(file);
}

class Table {
public:
    Table(fs::path folder, const std::string& only) : m_folder(std::move(folder)), m_only(only) {}

    void measure(const Project& project) {
        const fs::path source = m_folder / project.name;
        generate(project, source);
        const std::string git =
            "git -C " + quoted(source) + " -c init.defaultBranch=main -c user.name=n -c user.email=e ";
        run(git + "init -q && " + git + "add -A && " + git + "commit -qm all");
        const fs::path baseline = m_folder / (std::string(project.name) + "-baseline");
        const fs::path edited = m_folder / (std::string(project.name) + "-edited");
        if (!RunFiles::snapshot(pathOf(source), {pathOf(baseline), pathOf(edited)})) std::exit(1);
        edit(edited);
        if (m_only != "changes") measureCopies(project, source);
        if (m_only != "copies") measureChanges(project, baseline, edited);
        for (const fs::path& folder : {source, baseline, edited})
            empty(folder);
    }

private:
    static void run(const std::string& command) {
        (void)costOf([&] { return shell(command); }, 0);
    }

    fs::path fresh() {
        const fs::path folder = m_folder / std::string("round-").append(std::to_string(m_rounds++));
        fs::create_directory(folder);
        return folder;
    }

    using Peer = std::pair<const char*, std::function<pid_t(const fs::path&)>>;

    void compare(const char* project, const char* work, const std::vector<Peer>& peers, size_t rounds,
                 int mostStatus) {
        std::vector<std::vector<Cost>> costs(peers.size());
        for (size_t round = 0; round <= rounds; ++round) {
            for (size_t place = 0; place < peers.size(); ++place) {
                // Nobody is always the first.
                const size_t index = (place + round) % peers.size();
                const fs::path folder = fresh();
                touchMemory(m_folder);
                const Cost cost = costOf([&] { return peers[index].second(folder); }, mostStatus);
                empty(folder);
                // The first round fills the caches.
                if (round > 0) costs[index].push_back(cost);
            }
        }
        const auto median = [&](size_t index, double Cost::* part) {
            std::ranges::sort(costs[index], {}, part);
            return costs[index][costs[index].size() / 2].*part;
        };
        for (size_t index = 0; index < peers.size(); ++index) {
            std::printf("%-6s %-8s %-28s %9.1f %9.1f %7.1f %8.2f %8.2f\n", project, work, peers[index].first,
                        median(index, &Cost::wall), median(index, &Cost::processor),
                        median(index, &Cost::memory), median(0, &Cost::wall) / median(index, &Cost::wall),
                        median(0, &Cost::processor) / median(index, &Cost::processor));
        }
        std::fflush(stdout);
    }

    void measureCopies(const Project& project, const fs::path& source) {
        compare(project.name, "copies",
                {{"orvo",
                  [&](const fs::path& folder) {
                      QList<FilePath> targets;
                      for (int copy = 0; copy < copies; ++copy)
                          targets.append(pathOf(folder / std::to_string(copy)));
                      return forked([&] { return RunFiles::snapshot(pathOf(source), targets) ? 0 : 1; });
                  }},
                 {"5 x cp -a",
                  [&](const fs::path& folder) {
                      std::string command;
                      // Without the repository, which takes no part in a run.
                      for (int copy = 0; copy < copies; ++copy)
                          command += "mkdir " + quoted(folder / std::to_string(copy)) + " && cp -a " +
                                     quoted(source) + "/* " + quoted(folder / std::to_string(copy)) + " && ";
                      return shell(command + "true");
                  }},
                 {"git clone, 4 worktrees",
                  [&](const fs::path& folder) {
                      const fs::path clone = folder / "0";
                      std::string command = "git clone -q " + quoted(source) + " " + quoted(clone);
                      for (int copy = 1; copy < copies; ++copy)
                          command += " && git -C " + quoted(clone) + " worktree add -q -f --detach " +
                                     quoted(folder / std::to_string(copy)) + " 2>/dev/null";
                      return shell(command);
                  }},
                 {"(empty files, memory)",
                  [&](const fs::path& folder) {
                      return forked([&] { return creation(source, folder); });
                  }}},
                copyRounds, 0);
    }

    void measureChanges(const Project& project, const fs::path& baseline, const fs::path& edited) {
        const std::string program = fs::read_symlink("/proc/self/exe").parent_path() / "orvoctl";
        const std::string before = baseline;
        const std::string after = edited;
        // The peers say with 1 that there are differences; so would orvoctl that it failed, which is asked
        // first.
        (void)costOf([&] { return spawned({program, "changes", before, after}); }, 0);
        compare(project.name, "changes",
                {{"orvo",
                  [&](const fs::path&) {
                      return spawned({program, "changes", before, after});
                  }},
                 {"git diff --no-index --stat",
                  [&](const fs::path&) {
                      return spawned({"git", "diff", "--no-index", "--stat", before, after});
                  }},
                 {"diff -rq",
                  [&](const fs::path&) {
                      return spawned({"diff", "-rq", before, after});
                  }}},
                changeRounds, 1);
    }

    const fs::path m_folder;
    // Nothing, or the one work to measure.
    const std::string m_only;
    int m_rounds = 0;
};

int main(const fs::path& parent, const std::string& only) {
    std::string folder = (fs::absolute(parent) / "orvo-bench-XXXXXX").string();
    if (!mkdtemp(folder.data())) {
        std::perror("orvo_team_runs_bench");
        return 1;
    }
    // Within a repository git would look at that one too.
    fs::current_path(folder);
    std::printf("%-6s %-8s %-28s %9s %9s %7s %8s %8s\n", "files", "work", "by", "wall ms", "cpu ms", "MB",
                "orvo/it", "cpu/cpu");
    Table table(folder, only);
    for (const Project& project : projects)
        table.measure(project);
    fs::current_path("/");
    fs::remove_all(folder);
    return 0;
}

}  // namespace
}  // namespace orvo::bench

int main(int argc, char** argv) {
    return orvo::bench::main(argc > 1 ? argv[1] : fs::temp_directory_path(), argc > 2 ? argv[2] : "");
}
