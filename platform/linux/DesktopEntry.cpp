#include "platform/linux/DesktopEntry.h"

using namespace Qt::StringLiterals;

namespace platform {

QString execArgument(const QString &argument) {
  QString quoted;
  for (const QChar character : argument) {
    // Read twice: as a string of the entry, then as a quoted argument.
    if (character == u'\\') {
      quoted += u"\\\\\\\\"_s;
    } else if (u"\"`$"_s.contains(character)) {
      quoted += u"\\\\"_s + character;
    } else if (character == u'%') {
      quoted += u"%%"_s;
    } else {
      quoted += character;
    }
  }
  return u'"' + quoted + u'"';
}

} // namespace platform
