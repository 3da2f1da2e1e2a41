// Saves a file as the tests tell it, so that they can kill it, limit it or make its system calls fail.
// saveRepeatedly FILE SIZE ROUNDS: round N writes SIZE bytes, all of them the letter 'a' + N % 26.
#include "platform/saveAtomically.h"

#include <QByteArray>

#include <cstdio>
#include <cstdlib>

int main(int argc, char** argv) {
    if (argc != 4) return 2;
    const orvo::FilePath file{QByteArray(argv[1])};
    const qsizetype size = std::atoi(argv[2]);
    const int rounds = std::atoi(argv[3]);
    std::puts("ready");
    std::fflush(stdout);
    for (int round = 0; round < rounds; ++round) {
        const orvo::Result<void> saved =
            orvo::saveAtomically(file, QByteArray(size, static_cast<char>('a' + round % 26)));
        if (!saved) return 1;
    }
    return 0;
}
