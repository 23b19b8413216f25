#include "engine/OutputFolder.h"

#include <QDir>

#include <algorithm>

using namespace Qt::StringLiterals;

QString getOutputDateFolderString(const QDateTime &captureDate, qint64 childFolder) {
  const QDateTime local = captureDate.toLocalTime();
  const QString day = u'/' + local.toString(u"yyyy_MM_dd"_s);
  const QString year = u'/' + local.toString(u"yyyy"_s);
  const QString month = u'/' + local.toString(u"MM"_s);
  switch (childFolder) {
  case 0:
    return day;
  case 1:
    return year + month;
  case 2:
    return year + day;
  case 3:
    return year + month + day;
  default:
    return {};
  }
}

QStringList getOutputRuleFolderArray(const QStringList &ruleNames) {
  QStringList folders;
  for (const QString &name : ruleNames)
    folders << u'/' + name;
  return folders;
}

bool staysInParentFolder(const QString &destination, const QString &parentFolder) {
  const QString parent = QDir::cleanPath(parentFolder);
  const QString cleaned = QDir::cleanPath(destination);
  return cleaned == parent || cleaned.startsWith(parent.endsWith(u'/') ? parent : parent + u'/');
}

QString defaultFilePath(const QString &folder, const QDateTime &date, const QString &extension) {
  const QString path = folder + u'/' + date.toLocalTime().toString(u"yyyy-MM-dd"_s);
  return extension.isEmpty() ? path : path + u'.' + extension;
}

QStringView getFolderNameFromPath(QStringView path, qint64 level) {
  // From its end, without splitting all of it: every listed object comes through here.
  QStringView rest = path;
  QStringView component;
  for (qint64 above = std::max<qint64>(level, 0);; --above) {
    while (rest.endsWith(u'/'))
      rest.chop(1);
    if (rest.isEmpty()) break;
    component = rest.mid(rest.lastIndexOf(u'/') + 1);
    if (above == 0) return component;
    rest.chop(component.size());
  }
  return path.startsWith(u'/') ? QStringView(u"/") : component;
}
