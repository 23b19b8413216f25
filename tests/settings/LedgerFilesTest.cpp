#include "settings/LedgerFiles.h"
#include "identity/KaCryptionUtility.h"
#include "settings/SettingsFiles.h"
#include "tests/support/AgentProcess.h"
#include "tests/support/TestProfile.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QElapsedTimer>
#include <QFile>

using namespace Qt::StringLiterals;
using enum KaLoadedLedger::Outcome;

namespace {

const QString kAccount = u"user-0001"_s;

KaLedger ledgerOf(int number, int count = 3) {
  const auto mark = static_cast<std::uint8_t>(number);
  KaLedger ledger;
  ledger.ordinary = {u"20240501/10"_s, {u"A \u5199"_s, u"\ufeffB"_s}, {}};
  for (int i = 0; i < count; ++i) {
    const KaKeyDigest digest{static_cast<std::uint8_t>(i >> 16), static_cast<std::uint8_t>(i >> 8),
                             static_cast<std::uint8_t>(i), mark};
    ledger.ordinary.days[u"2024050%1"_s.arg(i % 9)].push_back(digest);
  }
  ledger.longTerm = {{}, {u"C"_s}, {{u"20230101"_s, {KaKeyDigest{mark}}}}};
  return ledger;
}

struct LedgerFiles : testing::Test {
  [[nodiscard]] QStringList paths() const {
    QStringList found;
    for (const QString &file : filesBelow(profile.appFolder()))
      if (file.startsWith(u"Ledger_")) found << profile.appFolder() + u'/' + file;
    return found;
  }
  const TestProfile profile;
};

TEST_F(LedgerFiles, keepTheLastTwoGenerationsOfEachAccountOfWhichOneIsEnough) {
  EXPECT_EQ(loadLedger(kAccount).outcome, Absent);
  KaLedger ledger;
  for (const int mark : {1, 2, 3}) {
    const qint64 generation = ledger.generation;
    ledger = ledgerOf(mark);
    ledger.generation = generation;
    ASSERT_TRUE(saveLedger(kAccount, ledger));
    const KaLoadedLedger loaded = loadLedger(kAccount);
    EXPECT_TRUE(loaded.outcome == Read && loaded.ledger == ledger) << mark;
    EXPECT_EQ(paths().size(), std::min(mark, 2));
  }
  EXPECT_EQ(loadLedger(u"user-0002"_s).outcome, Absent);
  for (const QString &path : paths()) {
    EXPECT_FALSE(contentOf(path).contains("20240501"));
    EXPECT_EQ(QFile::permissions(path) & (QFile::ReadGroup | QFile::ReadOther), QFile::Permissions());
  }

  const QString newest = paths().at(1); // generation 3
  writeFile(newest, contentOf(newest).chopped(40));
  const KaLoadedLedger former = loadLedger(kAccount);
  EXPECT_TRUE(former.outcome == Read && former.ledger.longTerm == ledgerOf(2).longTerm);
  KaLedger next = former.ledger;
  ASSERT_TRUE(saveLedger(kAccount, next));
  EXPECT_TRUE(loadLedger(kAccount).ledger == next) << "over the one that could not be read";

  for (const QString &path : paths())
    writeFile(path, "none");
  EXPECT_EQ(loadLedger(kAccount).outcome, Unreadable);
  QFile::remove(paths().first());
  EXPECT_EQ(loadLedger(kAccount).outcome, Unreadable) << "which is not the same as having none";

  ASSERT_TRUE(saveLedger(kAccount, ledger));
  const QString path = paths().first();
  const QString json = KaCryptionUtility::decrypt(QString::fromLatin1(contentOf(path))).value_or(QString());
  for (const QString &missing : {u"Account"_s, u"Generation"_s, u"30days"_s, u"10G"_s, u"Boundary"_s,
                                 u"BoundaryContentIDs"_s, u"Days"_s, u"None"_s}) {
    const QString without = QString(json).replace(u"\"%1\":"_s.arg(missing), u"\"Other\":"_s);
    writeFile(path, KaCryptionUtility::encrypt(without)->toLatin1());
    EXPECT_EQ(loadLedger(kAccount).outcome, missing == u"None" ? Read : Unreadable) << missing.toStdString();
  }
}

TEST_F(LedgerFiles, stayAsTheyAreWhenTheNextGenerationCannotBeWritten) {
  KaLedger ledger = ledgerOf(1);
  ASSERT_TRUE(saveLedger(kAccount, ledger));
  const QString second = QString(paths().first()).replace(u"_1"_s, u"_0"_s);
  ASSERT_TRUE(QDir().mkpath(second)); // in the way
  KaLedger next = ledger;
  next.ordinary.days.clear();
  EXPECT_FALSE(saveLedger(kAccount, next));
  EXPECT_EQ(next.generation, ledger.generation);
  EXPECT_TRUE(loadLedger(kAccount).ledger == ledger);
}

TEST_F(LedgerFiles, ofAHundredThousandObjectsAreReadAndWrittenInHalfASecond) {
  KaLedger ledger = ledgerOf(1, 100'000);
  QElapsedTimer clock;
  clock.start();
  ASSERT_TRUE(saveLedger(kAccount, ledger));
  EXPECT_LT(clock.restart(), 500 * kSlowness);
  EXPECT_TRUE(loadLedger(kAccount).ledger == ledger);
  EXPECT_LT(clock.elapsed(), 500 * kSlowness);
}

} // namespace
