// Runs a fuzz target's entry function over the files of a corpus, for builds without libFuzzer.
// Usage: TARGET_replay FOLDER...
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size);

int main(int argc, char** argv) {
    int count = 0;
    for (int index = 1; index < argc; ++index) {
        for (const auto& entry : std::filesystem::directory_iterator(argv[index])) {
            if (!entry.is_regular_file()) continue;
            std::ifstream file(entry.path(), std::ios::binary);
            const std::string bytes{std::istreambuf_iterator<char>(file), {}};
            // The last name is the one to look at when this ends badly.
            std::printf("%s\n", entry.path().c_str());
            std::fflush(stdout);
            LLVMFuzzerTestOneInput(reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size());
            ++count;
        }
    }
    // A folder that has moved must not pass for a corpus without faults.
    return count > 0 ? 0 : 1;
}
