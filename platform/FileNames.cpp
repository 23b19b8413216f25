#include "platform/FileNames.h"

#include "platform/NoDestructor.h"

#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace platform {
namespace {

/// Without what vfat, exFAT and NTFS refuse, or drop in silence.
QString portableName(QString name) {
  for (QChar &c : name)
    if (c < u' ' || c == u'\x7f' || u"\"*/:<>?\\|"_s.contains(c)) c = u'_';
  while (name.endsWith(u'.') || name.endsWith(u' '))
    name.chop(1);
  static const NoDestructor<QRegularExpression> device(u"^(con|prn|aux|nul|(com|lpt)[0-9])(?=\\.|$)"_s,
                                                       QRegularExpression::CaseInsensitiveOption);
  return name.isEmpty() || device->match(name).hasMatch() ? u'_' + name : name;
}

} // namespace

QByteArray cutAtCodePoint(const QByteArray &utf8, qsizetype size) {
  const auto isContinuation = [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0) == 0x80; };
  if (utf8.size() <= size) return utf8;
  while (size > 0 && isContinuation(utf8[size]))
    --size;
  return utf8.left(size);
}

QString plainerName(const QString &name) {
  QString plainer = portableName(name);
  if (plainer != name) return plainer;
  for (QChar &c : plainer)
    if (c > u'~') c = u'_';
  return plainer;
}

} // namespace platform
