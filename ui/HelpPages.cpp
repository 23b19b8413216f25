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
  for (QString language : QLocale().uiLanguages()) {
    const QString translated = pageIn(language.replace(u'-', u'_'));
    if (!QFileInfo::exists(translated)) continue;
    page = translated;
    break;
  }
  return QUrl::fromLocalFile(page).toString(QUrl::FullyEncoded);
}
