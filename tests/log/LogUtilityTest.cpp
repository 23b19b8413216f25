#include "app/log/KaLogUtility.h"

#include "platform/UserDefaults.h"
#include "tests/log/LogFile.h"
#include "tests/support/TestProfile.h"

#include <QDate>
#include <QFileInfo>

#include <gmock/gmock.h>

#include <thread>

using namespace Qt::StringLiterals;

namespace {

struct TitleLine {
  const char *name;
  QString title;
  qsizetype length;
  qsizetype start;
  QString expected;
};

class TitleLines : public testing::TestWithParam<TitleLine> {};

TEST_P(TitleLines, frameTheTitle) {
  const TitleLine &row = GetParam();
  EXPECT_EQ(KaLogUtility::createTitleLine(row.title, u'*', row.length, row.start), row.expected);
}

INSTANTIATE_TEST_SUITE_P(Log, TitleLines,
                         testing::Values(TitleLine{"usual", u"[START]"_s, 58, 3, u"*** [START] "_s + QString(46, u'*')},
                                         TitleLine{"emptyTitle", u""_s, 8, 3, u"***  ***"_s},
                                         TitleLine{"noLength", u"T"_s, 0, 3, u""_s},
                                         TitleLine{"shorterThanTheStart", u"T"_s, 2, 3, u"**"_s},
                                         TitleLine{"endsAtTheStart", u"T"_s, 3, 3, u"***"_s},
                                         TitleLine{"endsAfterTheFirstBlank", u"T"_s, 4, 3, u"*** "_s},
                                         TitleLine{"endsWithTheTitle", u"abcd"_s, 8, 3, u"*** abcd"_s},
                                         TitleLine{"endsWithTheSecondBlank", u"abcd"_s, 9, 3, u"*** abcd "_s},
                                         TitleLine{"longTitleIsNotCut", u"abcdefgh"_s, 9, 3, u"*** abcdefgh"_s},
                                         TitleLine{"startsAtOnce", u"T"_s, 5, 0, u" T **"_s}),
                         [](const auto &row) { return row.param.name; });

struct Block {
  const char *name;
  std::function<void()> write;
  QStringList expected;
};

QString titled(const QString &title, QChar fill) {
  return u"[TIME] "_s + (QString(3, fill) + u' ' + title + u' ').leftJustified(58, fill);
}

class Blocks : public testing::TestWithParam<Block> {
protected:
  const TestProfile profile;
};

TEST_P(Blocks, areAppendedWhileLoggingIsOn) {
  GetParam().write();
  EXPECT_FALSE(QFileInfo::exists(profile.appFolder())) << "written with logging off";
  KaLogUtility::switchLogStatus();
  GetParam().write();
  GetParam().write();
  EXPECT_EQ(loggedLines(profile), GetParam().expected + GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Log, Blocks,
    testing::Values(
        Block{"start",
              [] {
                KaLogUtility::writeStartLog({u"a"_s, u"b"_s});
              },
              {titled(u"[START]"_s, u'*'), u"    a"_s, u"    b"_s}},
        Block{"end", [] { KaLogUtility::writeEndLog(); }, {titled(u"[END]"_s, u'*')}},
        Block{"info",
              [] { KaLogUtility::writeInfoLog(u"Grüße"_s, {u"写真"_s}); },
              {titled(u"Grüße"_s, u'='), u"    写真"_s}},
        Block{"infoWithoutDetails", [] { KaLogUtility::writeInfoLog(u"T"_s); }, {titled(u"T"_s, u'=')}},
        Block{"stepThatWorked",
              [] { KaLogUtility::writeConnectionResultLog(KaLogStep::GetTemporaryCredentials, true, {u"d"_s}); },
              {titled(u"[OK] 004: Get Temporary Credentials"_s, u'-'), u"    d"_s}},
        Block{"stepThatFailed",
              [] { KaLogUtility::writeConnectionResultLog(KaLogStep::Complete, false); },
              {titled(u"[NG] 010: Complete"_s, u'-')}},
        Block{"stepBeyondTheTable",
              [] { KaLogUtility::writeConnectionResultLog(static_cast<KaLogStep>(11), true); },
              {titled(u"[OK] 011: "_s, u'-')}},
        Block{"error",
              [] {
                KaLogUtility::writeErrorLog(u"broken"_s, QStringList{u"f1"_s, u"f2"_s});
              },
              {titled(u"ERROR"_s, u'#'), u"    broken"_s, u"    <STACK TRACE>"_s, u"    f1"_s, u"    f2"_s}},
        Block{"errorWithEmptyStack",
              [] { KaLogUtility::writeErrorLog(u"broken"_s, QStringList()); },
              {titled(u"ERROR"_s, u'#'), u"    broken"_s, u"    <STACK TRACE>"_s}},
        Block{"bareError", [] { KaLogUtility::writeErrorLog({}); }, {titled(u"ERROR"_s, u'#')}}),
    [](const auto &row) { return row.param.name; });

class Log : public testing::Test {
protected:
  const TestProfile profile;
};

TEST_F(Log, isADailyFileThatOnlyTheUserCanRead) {
  const QDate before = QDate::currentDate();
  KaLogUtility::switchLogStatus();
  KaLogUtility::writeEndLog();
  const QString folder = profile.appFolder() + u"/Log"_s;
  EXPECT_EQ(KaLogUtility::outputLogFilePath(), folder);
  const QStringList files = QDir(folder).entryList(QDir::Files);
  ASSERT_EQ(files.size(), 1);
  EXPECT_THAT(QStringList({before.toString(u"yyyyMMdd"), QDate::currentDate().toString(u"yyyyMMdd")}),
              testing::Contains(QString(files[0]).remove(u"Downloaderpictora_"_s).remove(u".log"_s)));

  constexpr auto others =
      QFile::ReadGroup | QFile::WriteGroup | QFile::ExeGroup | QFile::ReadOther | QFile::WriteOther | QFile::ExeOther;
  EXPECT_EQ(QFile::permissions(folder + u'/' + files[0]) & others, 0);
  EXPECT_EQ(QFile::permissions(folder) & others, 0);
}

TEST_F(Log, startsSwitchedOffWhateverWasStored) {
  KaLogUtility::switchLogStatus();
  EXPECT_TRUE(platform::standardUserDefaults().boolValue(u"OutputLog"_s));
  EXPECT_TRUE(KaLogUtility::terminate());

  EXPECT_FALSE(KaLogUtility::initialize());
  EXPECT_FALSE(KaLogUtility::outputLog());
  EXPECT_TRUE(platform::standardUserDefaults().boolValue(u"OutputLog"_s)) << "stored only by a switch or the end";
  EXPECT_TRUE(KaLogUtility::terminate());
  EXPECT_FALSE(platform::standardUserDefaults().boolValue(u"OutputLog"_s));
}

TEST_F(Log, dropsBlocksWithoutAFolder) {
  ASSERT_TRUE(QDir().mkpath(profile.dataFolder()));
  QFile inTheWay(profile.dataFolder() + u"/NORVALE INC"_s);
  ASSERT_TRUE(inTheWay.open(QFile::WriteOnly));
  KaLogUtility::switchLogStatus();
  KaLogUtility::writeEndLog();
  EXPECT_EQ(KaLogUtility::outputLogFilePath(), std::nullopt);
}

TEST_F(Log, keepsBlocksOfSeveralThreadsWhole) {
  constexpr int kBlocks = 200;
  KaLogUtility::switchLogStatus();
  const auto write = [](const QString &mark) {
    for (int i = 0; i < kBlocks; ++i)
      KaLogUtility::writeInfoLog(mark, {mark, mark});
  };
  std::thread first(write, u"first"_s);
  std::thread second(write, u"second"_s);
  first.join();
  second.join();

  const QStringList lines = loggedLines(profile);
  ASSERT_EQ(lines.size(), 2 * kBlocks * 3);
  for (qsizetype i = 0; i < lines.size(); i += 3) {
    const QString mark = lines[i + 1].trimmed();
    EXPECT_EQ(lines.mid(i, 3), QStringList({titled(mark, u'='), u"    "_s + mark, u"    "_s + mark}));
  }
}

} // namespace
