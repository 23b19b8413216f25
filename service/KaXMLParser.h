#pragma once

#include "service/KaResultCode.h"
#include "service/XmlText.h"

#include <QByteArray>
#include <QByteArrayList>
#include <QHash>
#include <QString>
#include <QStringList>

/// Picks named values out of a small XML answer: the text node after one that equals a target name is its value.
class KaXMLParser : private KaXmlTextTaker {
public:
  /// The only parsing mode that collects anything.
  static constexpr qint64 kKeyValueType = 2;

  void setTarget(const QStringList &names);

  /// @return Success, or NoBody when the document cannot be parsed (see walkXmlText; what was found before stays in
  /// result()).
  [[nodiscard]] KaResultCode parseXML(const QByteArray &data, qint64 xmlType);

  [[nodiscard]] const QHash<QString, QString> &result() const { return values; }
  /// Number of values once a document has ended; 0 before.
  [[nodiscard]] quint64 result_length() const { return valueCount; }

  void resetIsTargetValue() { isTargetValue = false; }
  void initProperty();

private:
  void foundText(std::string_view element, std::string_view text) override;

  bool isTargetValue = false;
  qint64 type = 0;
  QString currentName;
  QByteArrayList targetNames; ///< UTF-8
  QHash<QString, QString> values;
  quint64 valueCount = 0;
};
