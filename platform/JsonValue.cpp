#include "platform/JsonValue.h"

#include <QJsonDocument>
#include <QJsonValue>

namespace platform {

std::optional<QJsonObject> parseJsonObject(const QByteArray &body) {
  const QJsonDocument document = QJsonDocument::fromJson(body);
  if (!document.isObject()) return std::nullopt;
  return document.object();
}

std::optional<QString> jsonString(const QJsonObject &object, QLatin1StringView name) {
  const QJsonValue value = object.value(name);
  if (!value.isString()) return std::nullopt;
  return value.toString();
}

QByteArray toCompactJson(const QJsonObject &object) {
  // A text that begins with a byte order mark would lose it when it is read; escaped it stays.
  return QJsonDocument(object).toJson(QJsonDocument::Compact).replace("\xEF\xBB\xBF", "\\ufeff");
}

} // namespace platform
