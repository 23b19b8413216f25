#include "service/ListingXml.h"

#include "service/XmlText.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

/// The store sends a thousand. Each costs more memory than its text, which a hostile answer would use.
constexpr std::size_t kMostEntries = 100'000;

/// "/" when there is nothing else, as paths have it.
QString lastComponent(const QString &path) {
  QStringView rest(path);
  while (rest.endsWith(u'/'))
    rest.chop(1);
  return rest.isEmpty() ? path.left(1) : rest.mid(rest.lastIndexOf(u'/') + 1).toString();
}

QString textOf(std::string_view utf8) {
  return QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
}

/// 0 for what is no size.
qint64 sizeOf(std::string_view text) {
  const QByteArrayView digits(text.data(), static_cast<qsizetype>(text.size()));
  return std::max<qint64>(digits.toLongLong(), 0);
}

/// Collects one page while the walk goes over its text.
class PageCollector final : public KaXmlTextTaker {
public:
  void startElement(std::string_view element) override {
    if (element == "CommonPrefixes") isCommonPrefixesElement = true;
  }

  void endElement(std::string_view element) override {
    if (element == "CommonPrefixes") isCommonPrefixesElement = false;
  }

  void foundText(std::string_view element, std::string_view text) override {
    if (element == "Key") {
      keyName = textOf(text);
    } else if (element == "Size") {
      if (text != "0" && takesOneMore() && !keyName.isEmpty()) answer.page.contents.push_back({keyName, sizeOf(text)});
    } else if (element == "Prefix") {
      if (isCommonPrefixesElement && takesOneMore()) answer.page.devices << lastComponent(textOf(text));
    } else if (element == "NextContinuationToken") {
      answer.nextContinuationToken = textOf(text);
    }
  }

  [[nodiscard]] bool isOverfull() const { return entryCount > kMostEntries; }

  ListingAnswer answer;

private:
  [[nodiscard]] bool takesOneMore() {
    ++entryCount;
    return !isOverfull();
  }

  bool isCommonPrefixesElement = false;
  QString keyName;
  std::size_t entryCount = 0;
};

} // namespace

std::optional<ListingAnswer> listingPageIn(const QByteArray &document) {
  PageCollector collector;
  if (!walkXmlText(document, collector) || collector.isOverfull()) return std::nullopt;
  return std::move(collector.answer);
}
