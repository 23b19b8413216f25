#include "app/log/ExceptionGuard.h"
#include "app/log/KaLogUtility.h"
#include "platform/UserDefaults.h"
#include "tests/log/LogFile.h"

#include <QDate>

#include <gmock/gmock.h>

#include <stdexcept>

using namespace Qt::StringLiterals;

namespace {

struct Log : testing::Test {
  const TestProfile profile;
};

QString titled(const QString &title, QChar fill) {
  return u"[TIME] "_s + (QString(3, fill) + u' ' + title + u' ').leftJustified(58, fill);
}

TEST_F(Log, holdsTheBlocksWrittenWhileItIsOnInADailyFileOfTheUsersAlone) {
  const auto writeAll = [] {
    KaLogUtility::writeStartLog({u"a"_s, u"b"_s});
    KaLogUtility::writeConnectionResultLog(KaLogStep::GetTemporaryCredentials, true, {u"写真"_s});
    KaLogUtility::writeConnectionResultLog(static_cast<KaLogStep>(11), false);
    KaLogUtility::writeEndLog();
  };
  writeAll();
  EXPECT_FALSE(QDir(profile.appFolder()).exists());
  KaLogUtility::switchLogStatus();
  const QDate before = QDate::currentDate();
  writeAll();
  EXPECT_EQ(loggedLines(profile), QStringList({titled(u"[START]"_s, u'*'), u"    a"_s, u"    b"_s,
                                               titled(u"[OK] 004: Get Temporary Credentials"_s, u'-'), u"    写真"_s,
                                               titled(u"[NG] 011: "_s, u'-'), titled(u"[END]"_s, u'*')}));

  const QFileInfo file = QDir(profile.appFolder() + u"/Log"_s).entryInfoList(QDir::Files).value(0);
  const auto name = [](QDate day) { return u"Downloaderpictora_"_s + day.toString(u"yyyyMMdd") + u".log"_s; };
  EXPECT_THAT(file.fileName(), testing::AnyOf(name(before), name(QDate::currentDate())));
  EXPECT_EQ(file.permissions() & (QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther | QFile::WriteOther), 0);
}

TEST_F(Log, cutsNoTitle) {
  const auto framed = [](qsizetype length) { return KaLogUtility::createTitleLine(u"title"_s, u'*', length, 3); };
  EXPECT_EQ(framed(9), u"*** title"_s);
  EXPECT_EQ(framed(6), framed(9));
}

TEST_F(Log, startsSwitchedOffWhateverWasStored) {
  const auto stored = [] { return platform::standardUserDefaults().boolValue(u"OutputLog"_s); };
  KaLogUtility::switchLogStatus();
  EXPECT_TRUE(stored());
  EXPECT_FALSE(KaLogUtility::initialize() || KaLogUtility::outputLog());
  EXPECT_TRUE(stored()) << "only a switch or the end stores";
  EXPECT_TRUE(KaLogUtility::terminate());
  EXPECT_FALSE(stored());
}

TEST_F(Log, tellsWhatAGuardCaught) {
  KaLogUtility::switchLogStatus();
  EXPECT_TRUE(runGuarded([] {}));
  const KaException exception(u"Odd state"_s, u"größer als gedacht"_s);
  EXPECT_FALSE(runGuarded([&exception] { throw exception; }));
  EXPECT_FALSE(exception.stackTrace().isEmpty());
  const QStringList details =
      QStringList{u"Odd state : größer als gedacht"_s, u"<STACK TRACE>"_s} + exception.stackTrace();
  EXPECT_EQ(loggedLines(profile).mid(1).join(u'\n'), u"    "_s + details.join(u"\n    "_s));
  EXPECT_FALSE(runGuarded([] { throw std::out_of_range("too far"); }));
  EXPECT_TRUE(loggedLines(profile).contains(u"    std::out_of_range : too far"_s));
  EXPECT_FALSE(runGuarded([] { throw 7; }));
  EXPECT_EQ(loggedLines(profile).count(titled(u"ERROR"_s, u'#')), 3);
}

} // namespace
