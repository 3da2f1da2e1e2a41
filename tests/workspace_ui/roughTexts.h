#pragma once

#include <QStringList>

namespace orvo::test {

/// What names and titles may be, though nobody would choose them: one without end, markup, writing from right
/// to left with an override that turns the rest around, letters under a tower of marks, one beyond the basic
/// plane.
inline QStringList roughTexts() {
    return {QString(10'000, u'W'), QStringLiteral("<b>bold</b> & <img src='x'> &amp; %1"),
            QString::fromUtf8("\u05e9\u05dc\u05d5\u05dd \u0639\u0627\u0644\u0645 \u202eabc 123"),
            QStringLiteral("Z") + QString(100, QChar(0x0301)) + QStringLiteral("algo ") +
                QString(40, QChar(0x0323)),
            QString::fromUtf8("\U0001F469\u200d\U0001F680 \t tab")};
}

}  // namespace orvo::test
