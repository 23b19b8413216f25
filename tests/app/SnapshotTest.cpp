#include "app/KaSnapshotKeeper.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using Doing = KaSnapshot::Doing;

namespace {

struct Snapshot : testing::Test {
  /// Both clocks go on.
  void pass(std::chrono::seconds time) {
    wall = wall.addSecs(time.count());
    boot += time;
  }
  [[nodiscard]] std::optional<QDateTime> nextLook() const { return keeper.snapshot().nextLook; }

  QDateTime wall{QDate(2026, 3, 1), QTime(23, 0)};
  platform::BootClock::time_point boot{1h};
  KaSnapshotKeeper keeper{{[this] { return wall; }, [this] { return boot; }}};
};

TEST_F(Snapshot, countsThroughAPassAndTheDayAndKeepsTheLatestSixFiles) {
  keeper.notePass(9);
  keeper.noteFile({});
  for (int number = 1; number <= 7; ++number)
    keeper.noteFile(u"/%1"_s.arg(number));
  const KaSnapshot now = keeper.snapshot();
  EXPECT_TRUE(now.doing == Doing::Fetching && now.fetched == 8 && now.toFetch == 9);
  EXPECT_EQ(now.lastFiles.join(u' '), u"/7 /6 /5 /4 /3 /2");
  EXPECT_EQ(now.cameToday, 7);
  keeper.noteLooking();
  EXPECT_TRUE(keeper.snapshot().doing == Doing::Looking && keeper.snapshot().toFetch == 0);
  pass(1h);
  EXPECT_EQ(keeper.snapshot().cameToday, 0) << "at midnight";
  keeper.noteFile(u"/8"_s);
  EXPECT_EQ(keeper.snapshot().cameToday, 1);
}

TEST_F(Snapshot, tellsWhenItLooksAgainByTheClockAsItIsNow) {
  EXPECT_EQ(nextLook(), std::nullopt);
  keeper.noteWait(30min);
  const QDateTime due = wall.addSecs(1800);
  EXPECT_EQ(nextLook(), due);
  pass(10min);
  EXPECT_EQ(nextLook(), due);
  wall = wall.addDays(1);
  EXPECT_EQ(nextLook(), due.addDays(1)) << "the clock was set";
  pass(1h);
  EXPECT_EQ(nextLook(), wall) << "it is overdue";
  wall = wall.addMSecs(1);
  EXPECT_EQ(nextLook(), wall.addMSecs(-1)) << "two clocks are never read in the same instant";
  keeper.noteWait(std::chrono::milliseconds::max());
  EXPECT_GT(nextLook(), wall.addDays(300));
  for (const auto &end : {&KaSnapshotKeeper::noteLooking, &KaSnapshotKeeper::forgetLink}) {
    keeper.noteWait(1min);
    (keeper.*end)();
    EXPECT_EQ(nextLook(), std::nullopt);
  }
  keeper.noteWait(1min);
  keeper.noteWait({});
  EXPECT_EQ(nextLook(), std::nullopt);
}

TEST_F(Snapshot, keepsTheLastFailureThatWasToldUntilSomethingEndsWell) {
  const KaFault before{KaResultCode::RetryLater};
  for (qint64 code = -1; code <= 25; ++code) {
    const KaFault told{static_cast<KaResultCode>(code), KaFaultCause::Refused};
    keeper.noteResult(before);
    keeper.noteRun();
    keeper.noteResult(told);
    const bool isFailure = (code >= 6 && code <= 17 && code != 10 && code != 15);
    const auto expected = code >= 1 && code <= 4 ? std::nullopt : std::optional(isFailure ? told : before);
    EXPECT_EQ(keeper.snapshot().fault, expected) << code;
    keeper.noteGoodEnd();
    EXPECT_EQ(keeper.snapshot().fault, isFailure ? expected : std::nullopt) << "of the other storage, after " << code;
  }
}

} // namespace
