#include "log/ExceptionGuard.h"
#include "log/KaLogUtility.h"
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
  const auto today = [] { return u"Downloaderpictora_"_s + QDate::currentDate().toString(u"yyyyMMdd") + u".log"_s; };
  const QString before = today();
  writeAll();
  KaLogUtility::switchLogStatus();
  writeAll();
  EXPECT_EQ(loggedLines(profile), QStringList({titled(u"[START]"_s, u'*'), u"    a"_s, u"    b"_s,
                                               titled(u"[OK] 004: Get Temporary Credentials"_s, u'-'), u"    写真"_s,
                                               titled(u"[NG] 011: "_s, u'-'), titled(u"[END]"_s, u'*')}));
  const QFileInfo file = QDir(profile.appFolder() + u"/Log"_s).entryInfoList(QDir::Files).value(0);
  EXPECT_THAT(file.fileName(), testing::AnyOf(before, today()));
  EXPECT_EQ(file.permissions() & (QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther | QFile::WriteOther), 0);
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
  EXPECT_GT(loggedLines(profile).size(), 3) << "where it happened";
  EXPECT_FALSE(runGuarded([] { throw std::out_of_range("too far"); }));
  EXPECT_TRUE(loggedLines(profile).contains(u"    std::out_of_range : too far"_s));
  EXPECT_FALSE(runGuarded([] { throw 7; }));
  EXPECT_EQ(loggedLines(profile).count(titled(u"ERROR"_s, u'#')), 3);
}

} // namespace
