#include "service/XmlText.h"

#include "platform/ReleasedBy.h"

#include <expat.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <exception>
#include <memory>
#include <string>

namespace {

constexpr qsizetype kMostBytes = 16 * 1024 * 1024;
constexpr std::size_t kDeepest = 32;
/// What the parser may take in one walk, given back or not: it keeps every name it has met, so that a document of
/// nothing but names would make it many times as large.
constexpr std::size_t kMostParserBytes = 24 * 1024 * 1024;
/// The parser copies what it is fed; a piece this large stays in the processor's cache.
constexpr qsizetype kPiece = 256 * 1024;

using Parser = std::unique_ptr<XML_ParserStruct, platform::ReleasedBy<&XML_ParserFree>>;

/// Taken so far by the walk that is under way on this thread.
thread_local std::size_t parserBytes = 0;

bool mayTake(std::size_t size) {
  if (size > kMostParserBytes - parserBytes) return false;
  parserBytes += size;
  return true;
}

void *take(std::size_t size) {
  return mayTake(size) ? std::malloc(size) : nullptr;
}

void *takeAnew(void *taken, std::size_t size) {
  return mayTake(size) ? std::realloc(taken, size) : nullptr;
}

Parser makeParser() {
  parserBytes = 0;
  const XML_Memory_Handling_Suite memory = {.malloc_fcn = &take, .realloc_fcn = &takeAnew, .free_fcn = &std::free};
  return Parser(XML_ParserCreate_MM(nullptr, &memory, nullptr));
}

/// Gathers the pieces of a text node and tells it when an element starts or ends. Buffers are kept from node to node:
/// a listing has a dozen of them for every object.
class TextWalk {
public:
  explicit TextWalk(KaXmlTextTaker &told) : taker(told), parser(makeParser()) {
    if (!parser) return;
    XML_SetUserData(parser.get(), this);
    XML_SetElementHandler(parser.get(), &startElement, &endElement);
    XML_SetCharacterDataHandler(parser.get(), &addText);
    XML_SetStartDoctypeDeclHandler(parser.get(), &refuseDocumentType);
  }

  [[nodiscard]] bool run(const QByteArray &document) {
    if (!parser || document.size() > kMostBytes) return false;
    // No text is longer, and growing up to it would leave the smaller rooms behind. Untouched room costs nothing.
    text.reserve(static_cast<std::size_t>(document.size()));
    for (qsizetype begin = 0; begin == 0 || begin < document.size(); begin += kPiece) {
      const qsizetype size = std::min(kPiece, document.size() - begin);
      const bool isLast = begin + size == document.size();
      const XML_Status parsed = XML_Parse(parser.get(), document.constData() + begin, static_cast<int>(size), isLast);
      if (thrown) std::rethrow_exception(thrown);
      if (parsed != XML_STATUS_OK || stopped) return false;
    }
    return true;
  }

private:
  static void startElement(void *walk, const XML_Char *name, const XML_Char **) {
    static_cast<TextWalk *>(walk)->step([name](TextWalk &self) { self.open(name); });
  }

  static void endElement(void *walk, const XML_Char *) {
    static_cast<TextWalk *>(walk)->step([](TextWalk &self) { self.close(); });
  }

  static void addText(void *walk, const XML_Char *piece, int size) {
    static_cast<TextWalk *>(walk)->step(
        [piece, size](TextWalk &self) { self.text.append(piece, static_cast<std::size_t>(size)); });
  }

  static void refuseDocumentType(void *walk, const XML_Char *, const XML_Char *, const XML_Char *, int) {
    static_cast<TextWalk *>(walk)->stop();
  }

  /// Nothing may be thrown through the parser, which is C; and it calls a little longer after a stop.
  template <class Step> void step(const Step &taken) {
    if (stopped) return;
    try {
      taken(*this);
    } catch (...) {
      thrown = std::current_exception();
      stop();
    }
  }

  void open(std::string_view name) {
    tellText();
    if (depth == kDeepest) return stop();
    name.remove_prefix(name.rfind(':') + 1);
    names[depth++].assign(name);
    taker.startElement(name);
  }

  void close() {
    tellText();
    taker.endElement(names[--depth]);
  }

  void tellText() {
    if (!text.empty()) taker.foundText(names[depth - 1], text);
    text.clear();
  }

  void stop() {
    stopped = true;
    XML_StopParser(parser.get(), XML_FALSE);
  }

  KaXmlTextTaker &taker;
  const Parser parser;
  std::array<std::string, kDeepest> names{}; ///< of the open elements
  std::size_t depth = 0;
  std::string text;
  bool stopped = false;
  std::exception_ptr thrown;
};

} // namespace

bool walkXmlText(const QByteArray &document, KaXmlTextTaker &taker) {
  return TextWalk(taker).run(document);
}
