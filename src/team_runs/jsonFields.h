#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

class QJsonObject;

namespace orvo {

/// Fields of JSON objects, read strictly: a value of another type or out of range is no value.

std::optional<QString> textField(const QJsonObject& object, const char* key);
/// Whole numbers that fit an int only; 1.5 and 2^63 are none.
std::optional<int> integerField(const QJsonObject& object, const char* key);

/// File names are bytes. What is not UTF-8 is stored readable under its key (U+FFFD for what cannot be read)
/// and exactly, in base64, under the key with the suffix "Bytes".
void insertBytes(QJsonObject& object, const char* key, const QByteArray& bytes);
/// The exact bytes when their key is there, otherwise the text's UTF-8.
std::optional<QByteArray> bytesField(const QJsonObject& object, const char* key);

}  // namespace orvo
