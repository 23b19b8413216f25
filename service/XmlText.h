#pragma once

#include <QByteArray>

#include <string_view>

/// Is told what a walk over a document's text comes across. Names come without their prefix; names and texts are UTF-8
/// and hold until the call returns.
class KaXmlTextTaker {
public:
  virtual ~KaXmlTextTaker() = default;

  virtual void startElement(std::string_view) {}
  /// @param element  the innermost open one. @param text  a whole text node, however entities, comments and CDATA
  /// sections cut it; never empty.
  virtual void foundText(std::string_view element, std::string_view text) = 0;
  virtual void endElement(std::string_view) {}
};

/// A document comes from outside: it may cost half a second and a few times its size in memory, no more.
/// @return false when it cannot be parsed: malformed, over 16 MiB, deeper than 32 elements, with a document type or an
/// entity of its own, or with more names and attributes than any answer has. What came before has been told.
[[nodiscard]] bool walkXmlText(const QByteArray &document, KaXmlTextTaker &taker);
