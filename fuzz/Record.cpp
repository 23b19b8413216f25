// A record file: as it lies on disk, and what is enciphered in it.
#include "fuzz/Fuzz.h"
#include "identity/KaCryptionUtility.h"
#include "settings/SettingsFiles.h"
#include "tests/support/TestProfile.h"

using namespace Qt::StringLiterals;

void tryInput(const QByteArray &input) {
  const QString name = u"GetImageInfo"_s;
  const auto enciphered = KaCryptionUtility::encrypt(QString::fromUtf8(input));
  require(enciphered.has_value(), "any text can be enciphered");
  for (const QByteArray &content : {input, enciphered->toUtf8()}) {
    writeFile(appFolder() + u'/' + name, content);
    const auto records = loadBookkeeping(name);
    if (!records) continue;
    for (auto record = records->begin(); record != records->end(); ++record) {
      require(saveBookkeeping(name, record.key(), *record), "a record can be saved");
      const auto again = loadBookkeeping(name);
      require(again && again->size() == 1 && again->value(record.key()) == *record, "a record is read as it was saved");
    }
  }
}
