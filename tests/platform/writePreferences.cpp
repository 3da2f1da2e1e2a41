// writePreferences FOLDER: changes preferences without end, for tests that kill it at any moment. Round N
// stores the number N, a text and a data value of N % 40,000 letters each.
#include "platform/linux/FilePreferences.h"

#include <cstdio>

int main(int argc, char** argv) {
    if (argc != 2) return 2;
    using namespace orvo;
    FilePreferences preferences(FilePath(QByteArray(argv[1])), FilePreferences::Access::ReadWrite);
    for (int round = 1;; ++round) {
        std::puts("next");
        std::fflush(stdout);
        const int length = round * 7919 % 40'000;
        if (!preferences.setValue(preference::petX, round)) return 1;
        if (!preferences.setValue(preference::workspace, QString(length, u'w'))) return 1;
        if (!preferences.setValue(preference::history, QByteArray(length, 'h') + '.')) return 1;
    }
}
