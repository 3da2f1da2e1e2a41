#include "support/QtTestMain.h"

#include <QApplication>

int main(int argc, char** argv) {
    orvo::test::isolateEnvironment();
    QApplication application(argc, argv);
    return orvo::test::runAllTests(argc, argv);
}
