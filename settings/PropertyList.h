#pragma once

#include <QByteArray>
#include <QString>

#include <optional>
#include <utility>
#include <variant>
#include <vector>

/// The flat dictionary that an XML property list of ours holds: texts and whole numbers.
class PropertyList {
public:
  void set(QLatin1StringView key, const QString &value) { entries.emplace_back(key, value); }
  void set(QLatin1StringView key, qint64 value) { entries.emplace_back(key, value); }

  /// Absent, a null text or 0, when the key is missing or holds a value of another type.
  [[nodiscard]] QString text(QLatin1StringView key) const;
  [[nodiscard]] qint64 integer(QLatin1StringView key) const;

  /// The document; absent when it cannot be made.
  [[nodiscard]] std::optional<QByteArray> toXml() const;
  /// Absent when @p xml is no property list, deeper than 16 elements or declares entities, or its root is no
  /// dictionary; members of other types are left out.
  [[nodiscard]] static std::optional<PropertyList> fromXml(const QByteArray &xml);

private:
  using Value = std::variant<QString, qint64>;
  std::vector<std::pair<QString, Value>> entries;
};
