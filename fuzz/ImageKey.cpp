// An object's key.
#include "engine/KaImageKey.h"
#include "fuzz/Fuzz.h"

using namespace Qt::StringLiterals;

void tryInput(const QByteArray &input) {
  const KaImageKey key(QString::fromUtf8(input));
  require(key.path() == QString::fromUtf8(input), "a key is kept as it came");
  for (const QStringView part : {key.date(), key.hour(), key.fileName()})
    require(!part.contains(u'/'), "a part is one component");
  const QString extension = key.extension();
  require(key.contentId() + (extension.isEmpty() ? u""_s : u'.' + extension) == key.fileName(),
          "content id and extension make the file name");
  require(key.exifPathFromImagePath(false).endsWith(key.contentId() + u".json"_s),
          "metadata is found by the content id");

  require(key.uploadHour().isValid() == key.hasUploadHour(), "an upload hour is there, or it is not");
  if (!key.hasUploadHour()) return;
  const QString hour = key.date().toString() + u'/' + key.hour().toString();
  require(key.uploadHour().toString(u"yyyyMMdd/HH") == hour, "an upload hour is written as it is read");
  require(key.order().startsWith(hour + u'/') || key.path().contains(u"//"), "keys sort by upload hour");
  const KaImageKey rebuilt(u"images/original/account/device/"_s + hour + u'/' + key.fileName().toString());
  require(rebuilt.hasUploadHour() && rebuilt.fileName() == key.fileName() && rebuilt.uploadHour() == key.uploadHour(),
          "a key of the usual form has the same parts");
  require(rebuilt.expandImagePathFromImagePath().order() == rebuilt.order(), "a variant keeps its place in the order");
}
