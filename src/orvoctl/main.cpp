#include "orvoctl/Invocation.h"
#include "orvoctl/arguments.h"

#include <QCoreApplication>

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    QStringList arguments;
    for (int i = 1; i < argc; ++i)
        arguments.append(orvo::ctl::textOfArgument(argv[i]));
    return static_cast<int>(orvo::ctl::runCommandLine(arguments));
}
