#include "workspace/Destination.h"

#include <QStringList>

#include <gtest/gtest.h>

namespace orvo {
namespace {

TEST(Destination, NinePagesInOrderAreFoundByTheirText) {
    QStringList texts;
    for (const Destination destination : allDestinations) {
        texts.append(textOf(destination));
        EXPECT_EQ(destinationNamed(textOf(destination)), destination);
        EXPECT_FALSE(symbolOf(destination).isEmpty());
    }
    EXPECT_EQ(texts.join(u','),
              QStringLiteral("Workspace,Team runs,Assistants,Files & runner,History,Mac actions,Companion,"
                             "Appearance,Settings"));
    EXPECT_FALSE(destinationNamed(QStringLiteral("workspace")));
    EXPECT_FALSE(destinationNamed(QString()));
}

}  // namespace
}  // namespace orvo
