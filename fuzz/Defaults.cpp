// The file of the user defaults; and any text as one of them.
#include "fuzz/Fuzz.h"
#include "platform/UserDefaults.h"
#include "tests/support/TestProfile.h"

#include <QFile>

using namespace Qt::StringLiterals;

void tryInput(const QByteArray &input) {
  // A name of its own each time, as what was read is kept by name.
  static quint64 count = 0;
  const QString path = home().path(u"defaults-%1"_s.arg(++count));
  writeFile(path, input);
  platform::UserDefaults defaults(path);
  for (const QString &key : {u"timeoutIntervalForRequest"_s, u"PollingNormalWaitTime"_s, u"section/key"_s}) {
    static_cast<void>(defaults.integerValue(key));
    static_cast<void>(defaults.boolValue(key));
    require(!defaults.doubleValue(key) || defaults.string(key), "a number was a text");
  }
  const QString text = QString::fromUtf8(input);
  defaults.setString(u"key"_s, text);
  require(platform::UserDefaults(path).string(u"key"_s) == text, "a value is read as it was stored");
  QFile::remove(path);
}
