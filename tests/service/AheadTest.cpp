#include "service/AheadWindow.h"
#include "service/LineMeter.h"

#include <gtest/gtest.h>

using namespace std::chrono_literals;

namespace {

constexpr qint64 kMiB = 1024 * 1024;

TEST(AheadWindow, isBoundedByNumberBytesAndWhatTheLineCarries) {
  struct Case {
    const char *name;
    AheadLoad load;
    qint64 size;
    std::optional<double> bytesPerSecond;
    bool may;
  };
  const double fast = 100.0 * kMiB;
  const double slow = 1.0 * kMiB;
  for (const auto &[name, load, size, bytesPerSecond, may] : {
           Case{"the first, on a line that nobody knows", {}, 30 * kMiB, {}, true},
           Case{"a second one on it", {1, 0, 0}, 0, {}, false},
           Case{"the eighth", {7, 7 * kMiB, 0}, kMiB, fast, true},
           Case{"the ninth", {8, 0, 0}, 0, fast, false},
           Case{"as many bytes as there may be", {1, 20 * kMiB, 24 * kMiB}, 20 * kMiB, fast, true},
           Case{"one more", {1, 20 * kMiB, 24 * kMiB}, 20 * kMiB + 1, fast, false},
           Case{"what is small beside them", {1, 40 * kMiB, 24 * kMiB}, 0, fast, true},
           Case{"a giant alone", {}, 300 * kMiB, slow, true},
           Case{"a giant while others wait for their turn", {0, 0, 1}, 300 * kMiB, fast, false},
           Case{"as much as the line carries in time", {1, 2 * kMiB, 0}, 3 * kMiB, slow, true},
           Case{"more than that", {1, 2 * kMiB, 0}, 3 * kMiB + 1, slow, false},
           Case{"what is small beside what takes long", {1, 30 * kMiB, 0}, 0, slow, true},
       })
    EXPECT_EQ(mayBeginAhead(load, size, {.most = 8, .longest = 5s, .bytesPerSecond = bytesPerSecond}), may) << name;
}

TEST(LineMeter, tellsWhatWasCarriedWhileSomethingWasUnderWay) {
  LineMeter meter;
  const LineMeter::TimePoint start;
  meter.begin(start);
  meter.carry(64 * 1024 - 1);
  EXPECT_FALSE(meter.bytesPerSecond(start + 1s)) << "too little to tell";
  meter.carry(1 + 64 * 1024);
  meter.begin(start + 1s); // two at once
  EXPECT_DOUBLE_EQ(meter.bytesPerSecond(start + 1s).value(), 128 * 1024);
  meter.end(start + 1s);
  meter.end(start + 2s);
  EXPECT_DOUBLE_EQ(meter.bytesPerSecond(start + 1h).value(), 64 * 1024) << "rest does not count";

  // A line that has become slow is known for it soon.
  for (auto now = start + 1h; now < start + 1h + 6s; now += 500ms) {
    meter.begin(now);
    meter.carry(16 * 1024);
    meter.end(now + 500ms);
  }
  EXPECT_DOUBLE_EQ(meter.bytesPerSecond(start + 2h).value(), 32 * 1024);
}

} // namespace
