#include "log/ExceptionGuard.h"
#include "log/KaLogUtility.h"
#include "platform/UserDefaults.h"
#include "tests/log/LogFile.h"

#include <QDateTime>

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
    KaLogUtility::writeEndLog();
  };
  const auto today = [] { return u"Downloaderpictora_"_s + QDate::currentDate().toString(u"yyyyMMdd") + u".log"_s; };
  const QString before = today();
  writeAll();
  KaLogUtility::switchLogStatus();
  writeAll();
  EXPECT_EQ(loggedLines(profile), QStringList({titled(u"[START]"_s, u'*'), u"    a"_s, u"    b"_s,
                                               titled(u"[OK] 004: Get Temporary Credentials"_s, u'-'), u"    写真"_s,
                                               titled(u"[END]"_s, u'*')}));
  const QFileInfo file = QDir(profile.appFolder() + u"/Log"_s).entryInfoList(QDir::Files).value(0);
  EXPECT_THAT(file.fileName(), testing::AnyOf(before, today()));
  EXPECT_EQ(file.permissions() & (QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther | QFile::WriteOther), 0);
}

TEST_F(Log, namesEachStep) {
  KaLogUtility::switchLogStatus();
  QStringList expected;
  for (const char *const title :
       {"000: Get ClientId", "001: Get NorvaleId", "002: Get PublicKey", "003: Refresh NorvaleId",
        "004: Get Temporary Credentials", "005: Get DeviceList", "006: Get ExcludeDeviceList", "007: Get ImageList",
        "008: Get Exif", "009: Download", "010: Complete", "011: "}) {
    KaLogUtility::writeConnectionResultLog(static_cast<KaLogStep>(expected.size()), false);
    expected << titled(u"[NG] "_s + QLatin1StringView(title), u'-');
  }
  EXPECT_EQ(loggedLines(profile), expected);
}

TEST_F(Log, fillsItsTitleLinesAndCutsNoTitle) {
  struct Row {
    QString title, expected;
    qsizetype length, start;
  };
  for (const auto &[title, expected, length, start] : {Row{u"T"_s, u"== T ==="_s, 8, 2},
                                                       {u"LONG"_s, u"== LONG "_s, 8, 2},
                                                       {u"LONGE"_s, u"== LONGE"_s, 8, 2},
                                                       {u"LONGER"_s, u"== LONGER"_s, 8, 2},
                                                       {u"T"_s, u"==== T"_s, 6, 4},
                                                       {u"T"_s, u"==== "_s, 5, 4},
                                                       {u"T"_s, u"===="_s, 4, 4},
                                                       {u"T"_s, u"==="_s, 3, 4}})
    EXPECT_EQ(KaLogUtility::createTitleLine(title, u'=', length, start), expected);
}

TEST_F(Log, isStampedWithTheTimeHereAndBeginsANewFileWithTheDay) {
  KaLogUtility::switchLogStatus();
  // At any time these two zones have different days.
  for (const auto &[zone, hours] : {std::pair("<+14>-14", 14), {"<-12>12", -12}}) {
    qputenv("TZ", zone);
    const auto here = [ahead = hours * 3600] { return QDateTime::currentDateTimeUtc().addSecs(ahead); };
    const QDateTime before = here();
    KaLogUtility::writeInfoLog(u"T"_s);
    const QDateTime after = here();
    bool stamped = false;
    for (QDateTime time = before; time < after.addSecs(1); time = time.addSecs(1)) {
      const QString file = profile.appFolder() + time.toString(u"'/Log/Downloaderpictora_'yyyyMMdd'.log'");
      stamped |= contentOf(file).startsWith(time.toString(u"[yyyy/MM/dd HH:mm:ss] === T =").toUtf8());
    }
    EXPECT_TRUE(stamped) << zone;
  }
  EXPECT_EQ(loggedLines(profile).size(), 2) << "the day before stays as it is";
}

TEST_F(Log, startsSwitchedOffWhateverWasStored) {
  const auto stored = [] { return platform::standardUserDefaults().boolValue(u"OutputLog"_s); };
  KaLogUtility::switchLogStatus();
  EXPECT_FALSE(KaLogUtility::initialize() || KaLogUtility::outputLog());
  EXPECT_TRUE(stored()) << "only a switch or the end stores";
  EXPECT_TRUE(KaLogUtility::terminate() && !stored());
}

TEST_F(Log, tellsWhatAGuardCaught) {
  KaLogUtility::switchLogStatus();
  EXPECT_TRUE(runGuarded([] {}));
  EXPECT_FALSE(runGuarded([] { throw KaException(u"Odd state"_s, u"größer als gedacht"_s); }));
  EXPECT_EQ(loggedLines(profile).value(1), u"    Odd state : größer als gedacht"_s);
  EXPECT_EQ(loggedLines(profile).value(2), u"    <STACK TRACE>"_s);
  EXPECT_GT(loggedLines(profile).size(), 3) << "where it happened";
  EXPECT_FALSE(runGuarded([] { throw std::out_of_range("too far"); }));
  EXPECT_TRUE(loggedLines(profile).contains(u"    std::out_of_range : too far"_s));
  EXPECT_FALSE(runGuarded([] { throw 7; }));
  EXPECT_EQ(loggedLines(profile).count(titled(u"ERROR"_s, u'#')), 3);
}

} // namespace
