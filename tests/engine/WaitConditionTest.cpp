#include "engine/KaWaitCondition.h"

#include <gtest/gtest.h>

#include <thread>

using namespace std::chrono_literals;

namespace {

using Clock = std::chrono::steady_clock;

TEST(WaitCondition, endsAWaitBySignal) {
  const std::atomic<bool> ended = false;
  KaWaitCondition condition(ended);
  std::jthread signaller([&] {
    condition.awaitWaiter();
    condition.signal();
  });
  condition.wait(/*kept=*/ended);
}

TEST(WaitCondition, doesNotWaitForWhatIsKept) {
  const std::atomic<bool> ended = false;
  KaWaitCondition condition(ended);
  const std::atomic<bool> kept = true;
  condition.wait(kept);
}

TEST(WaitCondition, losesASignalWithoutAWaiter) {
  const std::atomic<bool> ended = false;
  KaWaitCondition condition(ended);
  condition.signal();
  const auto start = Clock::now();
  condition.wait(30ms);
  EXPECT_GE(Clock::now() - start, 30ms);
}

TEST(WaitCondition, neverLosesTheEnd) {
  std::atomic<bool> ended = false;
  KaWaitCondition condition(ended);
  ended = true;
  condition.signal();
  const std::atomic<bool> kept = false;
  condition.wait(kept);
  condition.wait(std::chrono::hours(1));
}

TEST(WaitCondition, survivesWaitsBeyondTheClock) {
  const std::atomic<bool> ended = false;
  KaWaitCondition condition(ended);
  KaWaitCondition pause(ended);
  std::atomic<bool> signalled = false;
  std::jthread signaller([&] {
    condition.awaitWaiter();
    pause.wait(20ms);
    signalled = true;
    condition.signal();
  });
  condition.wait(std::chrono::milliseconds::max());
  EXPECT_TRUE(signalled);
}

TEST(WaitCondition, tellsOfAThreadThatNeverCameToWait) {
  const std::atomic<bool> ended = false;
  KaWaitCondition condition(ended);
  std::jthread leaving([&] { condition.retire(); });
  condition.awaitWaiter();
}

} // namespace
