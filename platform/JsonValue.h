#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QString>

#include <optional>

namespace platform {

/// JSON from outside: a body that is no object, or a member of another type than asked for, is a missing value. Any
/// thread.

[[nodiscard]] std::optional<QJsonObject> parseJsonObject(const QByteArray &body);
[[nodiscard]] std::optional<QString> jsonString(const QJsonObject &object, QLatin1StringView name);

/// One line, which reads as it was written.
[[nodiscard]] QByteArray toCompactJson(const QJsonObject &object);

} // namespace platform
