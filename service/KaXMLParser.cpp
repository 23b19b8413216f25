#include "service/KaXMLParser.h"

void KaXMLParser::setTarget(const QStringList &names) {
  targetNames.clear();
  for (const QString &name : names)
    targetNames << name.toUtf8();
}

KaResultCode KaXMLParser::parseXML(const QByteArray &data, qint64 xmlType) {
  type = xmlType;
  initProperty();
  if (!walkXmlText(data, *this)) return KaResultCode::NoBody;
  valueCount = static_cast<quint64>(values.size());
  return KaResultCode::Success;
}

void KaXMLParser::initProperty() {
  values.clear();
  valueCount = 0;
  isTargetValue = false;
}

void KaXMLParser::foundText(std::string_view, std::string_view text) {
  if (type != kKeyValueType) return;
  const auto bytes = QByteArray::fromRawData(text.data(), static_cast<qsizetype>(text.size()));
  if (isTargetValue) {
    values.insert(currentName, QString::fromUtf8(bytes));
    isTargetValue = false;
  }
  if (!targetNames.contains(bytes)) return;
  currentName = QString::fromUtf8(bytes);
  isTargetValue = true;
}
