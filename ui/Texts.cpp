#include "ui/Texts.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QLocale>
#include <QTranslator>

#include <algorithm>
#include <limits>

using namespace Qt::StringLiterals;

QString localised(QLatin1StringView key) {
  return qtTrId(key.data());
}

QString localised(QLatin1StringView key, qsizetype count) {
  return qtTrId(key.data(), static_cast<int>(std::clamp<qsizetype>(count, 0, std::numeric_limits<int>::max())));
}

void installTexts() {
  QCoreApplication *const application = QCoreApplication::instance();
  const auto install = [application](const QLocale &locale, const QString &table, const QString &folder) {
    auto *const translator = new QTranslator(application);
    if (translator->load(locale, table, u"_"_s, folder)) QCoreApplication::installTranslator(translator);
  };
  install(QLocale(QLocale::English), u"pictora"_s, u":/i18n"_s);
  install(QLocale(), u"pictora"_s, u":/i18n"_s);
  // The folder chooser's own words.
  install(QLocale(), u"qtbase"_s, QLibraryInfo::path(QLibraryInfo::TranslationsPath));
}
