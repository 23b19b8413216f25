#include "ui/Texts.h"
#include "tests/ui/UiProfile.h"
#include "ui/Mnemonics.h"

#include <gmock/gmock.h>

#include <QDir>
#include <QRegularExpression>
#include <QXmlStreamReader>

using namespace Qt::StringLiterals;

namespace {

const QString kTables = QStringLiteral(KA_SOURCE "/resources/i18n");
const QString kEntry = QStringLiteral(KA_SOURCE "/resources/com.norvale.Downloaderpictora.desktop");
const QString kStorePage = QStringLiteral(KA_SOURCE "/resources/com.norvale.downloaderpictora.metainfo.xml");
const QString kHelp = QStringLiteral(KA_SOURCE "/resources/help/");

QMap<QString, QString> textsIn(const QString &table) {
  QMap<QString, QString> texts;
  QString id;
  QXmlStreamReader xml(contentOf(kTables + u'/' + table));
  while (!xml.atEnd()) {
    if (xml.readNext() != QXmlStreamReader::StartElement) continue;
    if (xml.name() == u"message") id = xml.attributes().value(u"id"_s).toString();
    if (xml.name() == u"translation") texts[id] = xml.readElementText(QXmlStreamReader::IncludeChildElements);
  }
  return texts;
}

/// What is put in later.
QSet<QString> places(const QString &text) {
  static const QRegularExpression place(u"%(\\d|Ln|.)"_s);
  QSet<QString> found;
  for (auto match = place.globalMatch(text); match.hasNext();)
    found << match.next().captured();
  return found;
}

TEST(Texts, areThereForEveryKeyInUse) {
  const auto english = textsIn(u"pictora_en.ts"_s);
  static const QRegularExpression key(u"\"((?:APP|CHK|DLG|MENU|MSG|STATUS|TOOL_TIP)_[A-Z0-9_]+)\"_L1"_s);
  QSet<QString> used;
  for (const QString &folder : {u"/ui"_s, u"/main"_s})
    for (const QFileInfo &source : QDir(QStringLiteral(KA_SOURCE) + folder).entryInfoList({u"*.cpp"_s}))
      for (auto match = key.globalMatch(QString::fromUtf8(contentOf(source.filePath()))); match.hasNext();)
        used << match.next().captured(1);
  const QStringList keys = english.keys();
  EXPECT_EQ(used, QSet<QString>(keys.begin(), keys.end()));
}

TEST(Texts, areWholeInEveryLanguage) {
  const auto english = textsIn(u"pictora_en.ts"_s);
  const QString entry = QString::fromUtf8(contentOf(kEntry));
  const QStringList tables = QDir(kTables).entryList({u"*.ts"_s});
  EXPECT_GE(tables.size(), 8);
  for (const QString &table : tables) {
    SCOPED_TRACE(table.toStdString());
    const auto texts = textsIn(table);
    EXPECT_EQ(texts.keys(), english.keys());
    const QString language = table.section(u"pictora_"_s, 1).chopped(3);
    const QString name = u"\nName"_s + (language == u"en" ? QString() : u'[' + language + u']') + u'=';
    QStringList mnemonics;
    for (auto text = texts.begin(); text != texts.end(); ++text) {
      EXPECT_FALSE(text->trimmed().isEmpty()) << qPrintable(text.key());
      EXPECT_EQ(places(*text), places(english[text.key()])) << qPrintable(text.key());
      EXPECT_EQ(text->count(u'&'), english[text.key()].count(u'&')) << qPrintable(text.key());
      if (text.key().startsWith(u"MENU_"_s)) {
        EXPECT_TRUE(entry.contains(name + *text + u'\n')) << qPrintable(text.key()) << " is no action of the launcher";
      }
      if (!mnemonicOf(*text).isEmpty()) mnemonics << mnemonicOf(*text);
      static const QRegularExpression ofLogin(u"^MSG_ERR_(UNLINK|LINK_INVALID|VALIDATION|CLOCK)"_s);
      if (!text.key().contains(ofLogin)) continue;
      // By the menu's own entry; a login that is merely not checked must not be thrown away.
      EXPECT_EQ(text->contains(texts[u"MENU_LOGIN"_s]), text.key() != u"MSG_ERR_VALIDATION_NO_ANSWER")
          << qPrintable(text.key());
    }
    EXPECT_EQ(mnemonics.removeDuplicates(), 0);
  }
}

/// The elements of a help page, without what each language words in its own way.
QStringList elementsOf(const QString &page, const QString &language) {
  static const QRegularExpression element(u"<[^>]+>"_s);
  static const QRegularExpression worded(u" (?:alt|aria-label|lang)=\"[^\"]*\""_s);
  QStringList elements;
  for (auto match = element.globalMatch(page); match.hasNext();)
    elements << match.next().captured().remove(worded).replace(u"pictures/"_s + language + u'/', u"pictures/"_s);
  return elements;
}

/// Which texts a page names, each told from the way it stands in the table: as scripts/help-texts writes them.
QSet<QString> quotesIn(const QString &page, const QMap<QString, QString> &texts) {
  static const QRegularExpression quote(u"data-text=\"(\\w+)\">([^<]*)"_s);
  static const QRegularExpression marks(u"\\(&\\w\\)|&|[\\s:\uFF1A]+$"_s,
                                        QRegularExpression::UseUnicodePropertiesOption);
  QSet<QString> keys;
  for (auto match = quote.globalMatch(page); match.hasNext();) {
    const auto found = match.next();
    keys << found.captured(1);
    EXPECT_EQ(found.captured(2), QString(texts[found.captured(1)]).remove(marks)) << qPrintable(found.captured(1));
  }
  return keys;
}

TEST(Help, isAlikeInEveryLanguageAndNamesTheTextsAsTheyAre) {
  const QRegularExpression picture(u"src=\"([^\"]+)\""_s);
  const QStringList english = elementsOf(QString::fromUtf8(contentOf(kHelp + u"en/index.html"_s)), u"en"_s);
  for (const QString &table : QDir(kTables).entryList({u"*.ts"_s})) {
    SCOPED_TRACE(table.toStdString());
    const QString language = table.section(u"pictora_"_s, 1).chopped(3);
    const QString page = QString::fromUtf8(contentOf(kHelp + language + u"/index.html"_s));
    EXPECT_EQ(elementsOf(page, language), english);
    const auto texts = textsIn(table);
    const QSet<QString> quotes = quotesIn(page, texts);
    for (const QString &key : texts.keys()) {
      const bool isTold = key.startsWith(u"MSG"_s) || key.startsWith(u"TOOL_TIP"_s);
      EXPECT_TRUE(!isTold || quotes.contains(key)) << qPrintable(key) << " is not explained";
    }
    for (auto match = picture.globalMatch(page); match.hasNext();) {
      const QString file = match.next().captured(1);
      EXPECT_TRUE(QFileInfo::exists(kHelp + language + u'/' + file)) << qPrintable(file);
    }
  }
}

/// What a store's page says: texts and pictures by what they are, in the order of the page, each by its language.
QList<std::pair<QString, QMap<QString, QString>>> wordedOf(const QString &page) {
  QList<std::pair<QString, QMap<QString, QString>>> worded;
  QXmlStreamReader xml(contentOf(page));
  while (!xml.atEnd()) {
    if (xml.readNext() != QXmlStreamReader::StartElement) continue;
    const QString element = xml.name().toString();
    if (!QStringList{u"summary"_s, u"p"_s, u"li"_s, u"caption"_s, u"image"_s}.contains(element)) continue;
    const QString language = xml.attributes().value(u"xml:lang"_s).toString();
    if (language.isEmpty()) worded.append({element, {}});
    worded.last().second[language.isEmpty() ? u"en"_s : language] = xml.readElementText();
  }
  return worded;
}

TEST(StorePage, speaksEveryLanguageAndShowsPicturesThatThereAre) {
  const QString entry = QString::fromUtf8(contentOf(kEntry));
  const auto worded = wordedOf(kStorePage);
  EXPECT_GE(worded.size(), 11);
  const QString address = u"https://www.norvale.example/downloaderpictora/pictures/"_s;
  for (const QString &table : QDir(kTables).entryList({u"*.ts"_s})) {
    const QString language = table.section(u"pictora_"_s, 1).chopped(3);
    SCOPED_TRACE(language.toStdString());
    for (const auto &[element, texts] : worded) {
      const QString text = texts[language];
      EXPECT_FALSE(text.isEmpty()) << "of " << qPrintable(element) << ' ' << qPrintable(texts[u"en"_s]);
      if (element == u"summary") {
        const QString key = u"\nComment"_s + (language == u"en" ? QString() : u'[' + language + u']') + u'=';
        EXPECT_TRUE(entry.contains(key + text + u'\n')) << "the launcher says something else";
      }
      if (element != u"image") continue;
      EXPECT_TRUE(text.startsWith(address + language + u'/')) << qPrintable(text);
      EXPECT_TRUE(QFileInfo::exists(kHelp + u"pictures/"_s + text.mid(address.size()))) << qPrintable(text);
    }
  }
}

TEST(Texts, followTheDesktopAndFallBackToEnglish) {
  const UiProfile profile;
  for (const auto &[locale, text] : {std::pair(u"de_AT"_s, textsIn(u"pictora_de.ts"_s)),
                                     {u"zh_CN"_s, textsIn(u"pictora_zh_CN.ts"_s)},
                                     {u"eo"_s, textsIn(u"pictora_en.ts"_s)},
                                     {u"C"_s, textsIn(u"pictora_en.ts"_s)}}) {
    QLocale::setDefault(QLocale(locale));
    installTexts();
    EXPECT_EQ(localised("MENU_LOGOUT"_L1), text[u"MENU_LOGOUT"_s]) << qPrintable(locale);
  }
  QLocale::setDefault(QLocale(u"en"_s));
  EXPECT_EQ(localised("STATUS_TODAY"_L1, 1), u"1 picture today"_s);
  EXPECT_EQ(localised("STATUS_TODAY"_L1, 1200), u"1,200 pictures today"_s);
}

} // namespace
