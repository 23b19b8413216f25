#pragma once

#include <QByteArray>
#include <QString>

#include <functional>

/// What a walk over a document's text tells. @p element is the name of the innermost open element; a text node arrives
/// whole, however entities and CDATA sections cut it.
struct XmlTextEvents {
  std::function<void(const QString &element)> startElement;
  std::function<void(const QString &element, const QString &text)> text;
  std::function<void(const QString &element)> endElement;
};

/// @return false when the document is malformed; what came before the error has been told.
[[nodiscard]] bool walkXmlText(const QByteArray &document, const XmlTextEvents &events);
