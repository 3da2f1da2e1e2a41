#include "orvoctl/arguments.h"

namespace orvo::ctl {
namespace {

constexpr char16_t escapedBytes = 0xDC00;

bool isUtf8(const QByteArray& bytes) {
    return QString::fromUtf8(bytes).toUtf8() == bytes;
}

}  // namespace

QString textOfArgument(const QByteArray& bytes) {
    if (isUtf8(bytes)) return QString::fromUtf8(bytes);
    constexpr qsizetype longestSequence = 4;
    QString text;
    for (qsizetype i = 0; i < bytes.size();) {
        qsizetype length = 1;
        while (length <= longestSequence && !isUtf8(bytes.mid(i, length)))
            ++length;
        if (length > longestSequence || i + length > bytes.size()) {
            text += QChar(static_cast<char16_t>(escapedBytes + static_cast<unsigned char>(bytes[i++])));
        } else {
            text += QString::fromUtf8(bytes.mid(i, length));
            i += length;
        }
    }
    return text;
}

QByteArray bytesOfArgument(const QString& text) {
    QByteArray bytes;
    qsizetype start = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char16_t unit = text[i].unicode();
        const bool follows = i > 0 && text[i - 1].isHighSurrogate();
        if (follows || unit < escapedBytes + 0x80 || unit > escapedBytes + 0xFF) continue;
        bytes += text.mid(start, i - start).toUtf8();
        bytes += static_cast<char>(unit - escapedBytes);
        start = i + 1;
    }
    return bytes + text.mid(start).toUtf8();
}

}  // namespace orvo::ctl
