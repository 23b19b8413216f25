#include "ui/Texts.h"

#include <QCoreApplication>
#include <QLocale>
#include <QTranslator>

using namespace Qt::StringLiterals;

QString localised(QLatin1StringView key) {
  return qtTrId(key.data());
}

void installTexts() {
  QCoreApplication *const application = QCoreApplication::instance();
  const auto install = [application](QLocale locale) {
    auto *const table = new QTranslator(application);
    if (table->load(locale, u"pictora"_s, u"_"_s, u":/i18n"_s)) QCoreApplication::installTranslator(table);
  };
  install(QLocale(QLocale::English));
  install(QLocale());
}
