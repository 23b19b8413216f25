#include "service/KaXMLParser.h"

#include "service/XmlText.h"

KaResultCode KaXMLParser::parseXML(const QByteArray &data, qint64 xmlType) {
  type = xmlType;
  initProperty();
  const XmlTextEvents events = {
      .startElement = {},
      .text = [this](const QString &, const QString &text) { foundCharacters(text); },
      .endElement = {},
  };
  if (!walkXmlText(data, events)) return KaResultCode::NoBody;
  valueCount = static_cast<quint64>(values.size());
  return KaResultCode::Success;
}

void KaXMLParser::initProperty() {
  values.clear();
  valueCount = 0;
  isTargetValue = false;
}

void KaXMLParser::foundCharacters(const QString &text) {
  if (type != kKeyValueType) return;
  if (isTargetValue) {
    values.insert(currentName, text);
    isTargetValue = false;
  }
  if (!targetNames.contains(text)) return;
  currentName = text;
  isTargetValue = true;
}
