#include "tests/support/Image.h"
#include "tests/sweep/SweepFixture.h"

#include <iostream>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

struct Way {
  const char *name;
  Around around;
  bool isLaterRun; ///< of an account of which much was taken before
};

/// The agent dies at each single change that it makes to the disk, one after the other, from a start to the saving at
/// the end of its runs; then it is started again. Every change with KA_SWEEP in the environment, else some.
class CrashSweep : public SweepTest, public testing::WithParamInterface<Way> {
protected:
  CrashSweep() {
    addPictures();
    addPreviews(2);
    if (!GetParam().isLaterRun) return;
    beginAnew();
    const auto before = start({.isPlain = GetParam().around.isPlain});
    if (!waitForRuns(*before)) throw std::runtime_error("no runs");
    before->terminate();
    static_cast<void>(before->waitForEnd(10s));
    putAside();
    add(image(u"14"_s, u"G.JPG"_s));
    add(image(u"11"_s, u"LATE.JPG"_s));
    addPreviews(3);
  }

  void addPictures() {
    for (const auto &[hour, name] : {std::pair{u"10"_s, u"A.JPG"_s}, {u"11"_s, u"B.JPG"_s}, {u"12"_s, u"C.JPG"_s}})
      add(image(hour, name));
    sandbox::LibraryObject other = image(u"11"_s, u"B.JPG"_s);
    other.deviceId = u"dev2"_s;
    add(other);
    sandbox::LibraryObject expanded = image(u"13"_s, u"E.JPG"_s);
    expanded.expandBody = QByteArray(7000, 'e');
    add(expanded);
    sandbox::LibraryObject ordinary = image(u"13"_s, u"F.JPG"_s);
    ordinary.tags.insert(u"x-strata-storage-period"_s, u"30"_s);
    add(ordinary);
  }

  /// @return whether the agent came to a change of that number.
  [[nodiscard]] bool dieAt(int number) {
    Around around = GetParam().around;
    around.endAt = number;
    GetParam().isLaterRun ? beginAgain() : beginAnew();
    const auto dying = start(around);
    const bool survives = waitForRuns(*dying);
    EXPECT_TRUE(survives || !dying->isRunning()) << "neither dead nor at work";
    dying->terminate();
    // The saving at the end belongs to it.
    const bool hasSurvived = dying->waitForEnd(10s) == 0 && survives;
    if (around.isCut && !hasSurvived) takeUpWhatIsLeft();
    return !hasSurvived;
  }
  [[nodiscard]] Losses startAgain() {
    service.resetRequestCounts();
    const auto again = start({.isPlain = GetParam().around.isPlain});
    const bool isSilent = !waitForRuns(*again);
    again->terminate();
    EXPECT_EQ(again->waitForEnd(10s), 0);
    Losses found = losses();
    found.silent = isSilent && !found.linkLost;
    return found;
  }
};

TEST_P(CrashSweep, losesAndDoublesNothing) {
  const int step = qEnvironmentVariableIsSet("KA_SWEEP") ? 1 : 29;
  Losses all;
  int points = 0;
  for (int number = 1; dieAt(number); number += step, ++points) {
    const Losses found = startAgain();
    EXPECT_EQ(found, Losses()) << "after its end at change " << number << ' ' << qPrintable(leftOver().join(u' '));
    all += found;
  }
  EXPECT_EQ(losses(), Losses()) << "without a death";
  EXPECT_GT(points, 1);
  std::cout << GetParam().name << ": " << points << " points, " << all << '\n';
}

INSTANTIATE_TEST_SUITE_P(
    Agent, CrashSweep,
    testing::Values(Way{"killed", {}, false}, Way{"killedLater", {}, true},
                    Way{"killedPlain", {.isPlain = true}, false}, Way{"killedPlainLater", {.isPlain = true}, true},
                    Way{"cutAlone", {.isCut = true}, false},
                    Way{"cutPictures", {.isCut = true, .keepsPictures = true}, false},
                    Way{"cutOwn", {.isCut = true, .keepsOwn = true}, false},
                    Way{"cutAll", {.isCut = true, .keepsPictures = true, .keepsOwn = true}, false},
                    Way{"cutAloneLater", {.isCut = true}, true},
                    Way{"cutOwnLater", {.isCut = true, .keepsOwn = true}, true},
                    Way{"cutPlain", {.isCut = true, .keepsPictures = true, .keepsOwn = true, .isPlain = true}, false}),
    [](const auto &row) { return row.param.name; });

} // namespace
