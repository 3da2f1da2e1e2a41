#include "support/QtTestMain.h"

#include <QCoreApplication>

int main(int argc, char** argv) {
    orvo::test::isolateEnvironment();
    QCoreApplication application(argc, argv);
    return orvo::test::runAllTests(argc, argv);
}
