#include "orvoctl/Invocation.h"

#include <QCoreApplication>

int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    return static_cast<int>(orvo::ctl::runCommandLine(QCoreApplication::arguments().mid(1)));
}
