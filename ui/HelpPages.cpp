#include "ui/HelpPages.h"

#include "platform/Folders.h"

#include <QFileInfo>
#include <QLocale>
#include <QUrl>

using namespace Qt::StringLiterals;

namespace {

QString pageIn(const QString &language) {
  return platform::installedDataFolder() + u"/help/"_s + language + u"/index.html"_s;
}

/// As string tables are found: each of the user's languages by its whole name, then by what is left of it.
QString pageInUsersLanguage() {
  for (QString name : QLocale().uiLanguages())
    for (name.replace(u'-', u'_'); !name.isEmpty(); name.truncate(qMax<qsizetype>(0, name.lastIndexOf(u'_'))))
      if (QFileInfo::exists(pageIn(name))) return pageIn(name);
  return pageIn(u"en"_s);
}

} // namespace

QString helpPageUrl() {
  return QUrl::fromLocalFile(pageInUsersLanguage()).toString(QUrl::FullyEncoded);
}
