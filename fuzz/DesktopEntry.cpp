// The program's path in the Exec line of a desktop entry.
#include "platform/linux/DesktopEntry.h"

#include "fuzz/Fuzz.h"

using namespace Qt::StringLiterals;

namespace {

/// What a desktop reads: the text of the entry, then the argument in it.
QString argumentIn(const QString &value) {
  QString text;
  for (qsizetype i = 0; i < value.size(); ++i) {
    const qsizetype escape = value[i] == u'\\' ? u"sntr\\"_s.indexOf(value.mid(i + 1, 1)) : -1;
    require(value[i] != u'\\' || (escape >= 0 && i + 1 < value.size()), "an entry's escapes are known ones");
    text += escape < 0 ? value[i] : u" \n\t\r\\"[escape];
    if (escape >= 0) ++i;
  }
  const bool isQuoted = text.startsWith(u'"');
  require(!isQuoted || (text.size() > 1 && text.endsWith(u'"')), "quotes come in pairs");
  if (isQuoted) text = text.mid(1, text.size() - 2);
  QString argument;
  for (qsizetype i = 0; i < text.size(); ++i) {
    const bool isEscaped = (isQuoted && text[i] == u'\\') || text[i] == u'%';
    if (isEscaped) require(++i < text.size(), "nothing ends with an escape");
    argument += text[i];
  }
  return argument;
}

} // namespace

void tryInput(const QByteArray &input) {
  const QString path = QString::fromUtf8(input).remove(QChar(u'\0'));
  const QString written = platform::execArgument(path);
  require(!written.contains(u'\n') && !written.contains(u'\r'), "an entry is one line");
  require(argumentIn(written) == path, "a desktop reads the path that was written");
}
