// A page of a listing.
#include "fuzz/Fuzz.h"
#include "service/ListingXml.h"

namespace {

/// Every character as a reference, so that nothing is lost on the way.
QByteArray element(const char *name, const QString &text) {
  QByteArray references;
  for (const uint character : text.toUcs4())
    references += "&#" + QByteArray::number(character) + ';';
  return QByteArray("<") + name + '>' + references + "</" + name + '>';
}

QByteArray written(const ListingAnswer &answer) {
  QByteArray document = "<ListBucketResult>";
  for (const ListedObject &object : answer.page.contents)
    document += element("Key", object.key) + element("Size", QString::number(object.size).prepend(u' '));
  for (const QString &device : answer.page.devices)
    document += "<CommonPrefixes>" + element("Prefix", device + u'/') + "</CommonPrefixes>";
  if (answer.nextContinuationToken) document += element("NextContinuationToken", *answer.nextContinuationToken);
  return document + "</ListBucketResult>";
}

} // namespace

void tryInput(const QByteArray &input) {
  const auto answer = listingPageIn(input);
  if (!answer) return;
  for (const ListedObject &object : answer->page.contents) {
    require(!object.key.isEmpty(), "an object has a key");
    require(object.size >= 0, "no object is smaller than nothing");
  }
  for (const QString &device : answer->page.devices)
    require(device == u"/" || (!device.isEmpty() && !device.contains(u'/')), "a device is one component");

  const auto again = listingPageIn(written(*answer));
  require(again && again->page.contents == answer->page.contents && again->page.devices == answer->page.devices
              && again->nextContinuationToken == answer->nextContinuationToken,
          "a page that is written anew reads the same");
}
