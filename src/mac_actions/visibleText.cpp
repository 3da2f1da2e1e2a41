#include "mac_actions/visibleText.h"

#include <QChar>
#include <QList>

namespace orvo {
namespace {

// Blank letters that are no spaces to Unicode, and marks that draw nothing.
bool isBlankLetter(char32_t c) {
    return c == 0x034F || c == 0x115F || c == 0x1160 || c == 0x17B4 || c == 0x17B5 || c == 0x2800 ||
           c == 0x3164 || c == 0xFFA0 || (c >= 0x180B && c <= 0x180F) || (c >= 0xE0100 && c <= 0xE01EF);
}

bool isHidden(char32_t c) {
    if (c == U' ') return false;
    switch (QChar::category(c)) {
        case QChar::Other_Control:
        case QChar::Other_Format:
        case QChar::Other_Surrogate:
        case QChar::Other_PrivateUse:
        case QChar::Other_NotAssigned:
        case QChar::Separator_Space:
        case QChar::Separator_Line:
        case QChar::Separator_Paragraph:
            return true;
        default:
            return isBlankLetter(c);
    }
}

}  // namespace

QString visibleText(const QString& text) {
    QString visible;
    visible.reserve(text.size());
    for (const char32_t c : text.toUcs4()) {
        if (isHidden(c))
            visible +=
                QStringLiteral("⟨U+%1⟩").arg(static_cast<quint32>(c), 4, 16, QLatin1Char('0')).toUpper();
        else
            visible += QString::fromUcs4(&c, 1);
    }
    return visible;
}

}  // namespace orvo
