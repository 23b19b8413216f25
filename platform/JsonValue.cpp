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

} // namespace platform
