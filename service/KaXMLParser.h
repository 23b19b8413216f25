#pragma once

#include "service/KaResultCode.h"

#include <QByteArray>
#include <QHash>
#include <QString>
#include <QStringList>

/// Picks named values out of a small XML answer: the text node after one that equals a target name is its value.
class KaXMLParser {
public:
  /// The only parsing mode that collects anything.
  static constexpr qint64 kKeyValueType = 2;

  void setTarget(const QStringList &names) { targetNames = names; }

  /// @return Success, or NoBody when the document is malformed (what was found before the error stays in result()).
  [[nodiscard]] KaResultCode parseXML(const QByteArray &data, qint64 xmlType);

  [[nodiscard]] const QHash<QString, QString> &result() const { return values; }
  /// Number of values once a document has ended; 0 before.
  [[nodiscard]] quint64 result_length() const { return valueCount; }

  void resetIsTargetValue() { isTargetValue = false; }
  void initProperty();

private:
  void foundCharacters(const QString &text);

  bool isTargetValue = false;
  qint64 type = 0;
  QString currentName;
  QStringList targetNames;
  QHash<QString, QString> values;
  quint64 valueCount = 0;
};
