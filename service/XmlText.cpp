#include "service/XmlText.h"

#include <QStringList>
#include <QXmlStreamReader>

namespace {

/// Gathers the pieces of a text node and tells it when an element starts or ends.
class TextWalk {
public:
  explicit TextWalk(const XmlTextEvents &told) : events(told) {}

  void startElement(const QString &name) {
    tellText();
    openElements << name;
    if (events.startElement) events.startElement(name);
  }

  void endElement() {
    tellText();
    const QString name = openElements.takeLast();
    if (events.endElement) events.endElement(name);
  }

  void addText(QStringView piece) {
    if (openElements.isEmpty()) return;
    // Most texts come in one piece; an appended one would keep room for more, which a million keys fill memory with.
    if (text.isEmpty())
      text = piece.toString();
    else
      text += piece;
  }

private:
  void tellText() {
    if (!text.isEmpty() && events.text) events.text(openElements.last(), text);
    text.clear();
  }

  const XmlTextEvents &events;
  QStringList openElements;
  QString text;
};

} // namespace

bool walkXmlText(const QByteArray &document, const XmlTextEvents &events) {
  QXmlStreamReader reader(document);
  TextWalk walk(events);
  while (!reader.atEnd()) {
    switch (reader.readNext()) {
    case QXmlStreamReader::StartElement:
      walk.startElement(reader.name().toString());
      break;
    case QXmlStreamReader::EndElement:
      walk.endElement();
      break;
    case QXmlStreamReader::Characters:
      walk.addText(reader.text());
      break;
    case QXmlStreamReader::EntityReference:
      return false; // a text that is not in the document; nothing is ever fetched
    case QXmlStreamReader::NoToken:
    case QXmlStreamReader::Invalid:
    case QXmlStreamReader::StartDocument:
    case QXmlStreamReader::EndDocument:
    case QXmlStreamReader::Comment:
    case QXmlStreamReader::DTD:
    case QXmlStreamReader::ProcessingInstruction:
      break;
    }
  }
  return !reader.hasError();
}
