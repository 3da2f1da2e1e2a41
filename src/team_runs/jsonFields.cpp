#include "team_runs/jsonFields.h"

#include <QJsonObject>

#include <cmath>
#include <limits>

namespace orvo {
namespace {

QString bytesKey(const char* key) {
    return QLatin1String(key) + QLatin1String("Bytes");
}

}  // namespace

std::optional<QString> textField(const QJsonObject& object, const char* key) {
    const QJsonValue value = object.value(QLatin1String(key));
    if (!value.isString()) return std::nullopt;
    return value.toString();
}

std::optional<int> integerField(const QJsonObject& object, const char* key) {
    const QJsonValue value = object.value(QLatin1String(key));
    if (!value.isDouble()) return std::nullopt;
    const double number = value.toDouble();
    using Limits = std::numeric_limits<int>;
    if (std::trunc(number) != number || number < Limits::min() || number > Limits::max()) return std::nullopt;
    return static_cast<int>(number);
}

void insertBytes(QJsonObject& object, const char* key, const QByteArray& bytes) {
    const QString text = QString::fromUtf8(bytes);
    object.insert(QLatin1String(key), text);
    if (text.toUtf8() != bytes) object.insert(bytesKey(key), QLatin1String(bytes.toBase64()));
}

std::optional<QByteArray> bytesField(const QJsonObject& object, const char* key) {
    const auto text = textField(object, key);
    if (!text) return std::nullopt;
    const QJsonValue exact = object.value(bytesKey(key));
    if (exact.isUndefined() || exact.isNull()) return text->toUtf8();
    if (!exact.isString()) return std::nullopt;
    auto decoded =
        QByteArray::fromBase64Encoding(exact.toString().toLatin1(), QByteArray::AbortOnBase64DecodingErrors);
    if (!decoded) return std::nullopt;
    return *decoded;
}

}  // namespace orvo
