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

} // namespace

QString helpPageUrl() {
  QString page = pageIn(u"en"_s);
  // As string tables are found: the locale by its whole name, then by what is left of it.
  for (QString name = QLocale().name(); !name.isEmpty(); name.truncate(qMax<qsizetype>(0, name.lastIndexOf(u'_')))) {
    if (!QFileInfo::exists(pageIn(name))) continue;
    page = pageIn(name);
    break;
  }
  return QUrl::fromLocalFile(page).toString(QUrl::FullyEncoded);
}
