#include "engine/ListingParser.h"

#include "engine/OutputFolder.h"
#include "service/XmlText.h"

using namespace Qt::StringLiterals;

namespace {

/// Collects one page while the walk goes over its text.
class PageCollector {
public:
  explicit PageCollector(ListingPage &collected) : page(collected) {}

  void startElement(const QString &element) {
    if (element == u"CommonPrefixes") isCommonPrefixesElement = true;
  }

  void endElement(const QString &element) {
    if (element == u"CommonPrefixes") isCommonPrefixesElement = false;
  }

  void foundText(const QString &element, const QString &text) {
    if (element == u"Key") {
      keyName = text;
    } else if (element == u"Size") {
      if (text != u"0") page.contents.push_back({keyName, text.toLongLong()});
    } else if (element == u"IsTruncated") {
      page.isTruncated = text == u"true";
    } else if (element == u"Prefix" && isCommonPrefixesElement) {
      page.devices << getFolderNameFromPath(text, 0);
    } else if (element == u"NextContinuationToken") {
      page.nextContinuationToken = text;
    }
  }

private:
  ListingPage &page;
  bool isCommonPrefixesElement = false;
  QString keyName;
};

void collectCredential(const QString &element, const QString &text, KaCredential &credential) {
  if (text.trimmed().isEmpty()) return;
  if (element == u"SessionToken") credential.sessionToken = text;
  if (element == u"SecretAccessKey") credential.secretAccessKey = text;
  if (element == u"Expiration") credential.expiration = text;
  if (element == u"AccessKeyId") credential.accessKeyId = text;
}

KaResultCode parsed(const QByteArray &document, const XmlTextEvents &events) {
  return walkXmlText(document, events) ? KaResultCode::Success : KaResultCode::NoBody;
}

} // namespace

KaResultCode parseXML(const QByteArray &document, ListingPage &page) {
  PageCollector collector(page);
  return parsed(document,
                {.startElement = [&](const QString &element) { collector.startElement(element); },
                 .text = [&](const QString &element, const QString &text) { collector.foundText(element, text); },
                 .endElement = [&](const QString &element) { collector.endElement(element); }});
}

KaResultCode parseXML(const QByteArray &document, KaCredential &credential) {
  return parsed(document, {.startElement = {},
                           .text = [&](const QString &element,
                                       const QString &text) { collectCredential(element, text, credential); },
                           .endElement = {}});
}
