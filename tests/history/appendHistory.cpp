// appendHistory FILE NAME COUNT SIZE: adds COUNT entries titled NAME-0, NAME-1, … with SIZE characters of
// output.
#include "history/HistoryInbox.h"
#include "history/sampleEntry.h"

#include <cstdlib>

int main(int argc, char** argv) {
    if (argc != 5) return 2;
    using namespace orvo;
    const HistoryInbox inbox{FilePath(QByteArray(argv[1]))};
    for (int i = 0; i < std::atoi(argv[3]); ++i) {
        const QString title = QStringLiteral("%1-%2").arg(QLatin1String(argv[2])).arg(i);
        if (!inbox.append(test::sampleEntry(title, QString(std::atoi(argv[4]), u'o')))) return 1;
    }
    return 0;
}
